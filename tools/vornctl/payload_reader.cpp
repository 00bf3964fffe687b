#include "payload_reader.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

namespace Vornctl {
namespace {
std::optional<std::string> ReadStream(std::istream &in)
{
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) {
        return std::nullopt;
    }
    return text.str();
}
} // namespace

std::optional<std::string> ReadPayload(const std::string &argument, std::string &error)
{
    if (argument == "-") {
        std::optional<std::string> text = ReadStream(std::cin);
        if (!text) {
            error = "cannot read standard input";
        }
        return text;
    }
    if (argument.empty() || argument[0] != '@') {
        return argument;
    }
    std::string path = argument.substr(1);
    std::ifstream file(path, std::ios::binary);
    std::optional<std::string> text = file ? ReadStream(file) : std::nullopt;
    if (!text) {
        error = "cannot read " + path + ": " + std::strerror(errno);
    }
    return text;
}
} // namespace Vornctl
