#include "http_message.h"

#include <strings.h>

namespace VornTestbed {
std::optional<std::string> HttpRequest::Header(const std::string &name) const
{
    for (const auto &header : headers) {
        if (::strcasecmp(header.name.c_str(), name.c_str()) == 0) {
            return header.value;
        }
    }
    return std::nullopt;
}

HttpResponse HttpResponse::Text(int status, std::string body)
{
    HttpResponse response;
    response.status = status;
    response.headerLines.push_back("Content-Type: text/plain");
    response.body = std::move(body);
    return response;
}

HttpResponse HttpResponse::Redirect(int status, const std::string &location)
{
    HttpResponse response;
    response.status = status;
    response.headerLines.push_back("Location: " + location);
    return response;
}

std::string ReasonPhrase(int status)
{
    switch (status) {
        case 100:
            return "Continue";
        case 200:
            return "OK";
        case 201:
            return "Created";
        case 204:
            return "No Content";
        case 301:
            return "Moved Permanently";
        case 302:
            return "Found";
        case 303:
            return "See Other";
        case 304:
            return "Not Modified";
        case 307:
            return "Temporary Redirect";
        case 308:
            return "Permanent Redirect";
        case 400:
            return "Bad Request";
        case 401:
            return "Unauthorized";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 408:
            return "Request Timeout";
        case 413:
            return "Content Too Large";
        case 429:
            return "Too Many Requests";
        case 431:
            return "Request Header Fields Too Large";
        case 500:
            return "Internal Server Error";
        case 501:
            return "Not Implemented";
        case 502:
            return "Bad Gateway";
        case 503:
            return "Service Unavailable";
        case 504:
            return "Gateway Timeout";
        default:
            return "Unknown";
    }
}
} // namespace VornTestbed
