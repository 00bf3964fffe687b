#include "vorn_http_logic.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "ca_store_cache.h"
#include "http_proxy.h"
#include "net_conn_client.h"
#include "string_utils.h"
#include "transfer_loop.h"
#include "vorn_log.h"
#include "vorn_metrics.h"

namespace OHOS {
namespace Vorn {
namespace {
constexpr const char *GNS_SA_TYPE = "gns";
constexpr long HTTP_OK = 200;
constexpr const char *HEAD_BLOCK_SEPARATOR = "\r\n\r\n";
constexpr const char *LINE_SEPARATOR = "\r\n";
constexpr const char *CACHE_CONTROL = "Cache-Control";
constexpr const char *HTTPS_SCHEME = "https://";

// libcurl takes a proxy from these variables when none is set on the handle.
bool EnvironmentNamesHttpsProxy()
{
    for (const char *name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        const char *value = std::getenv(name);
        if (value != nullptr && StringUtils::ToLowerCase(value).rfind(HTTPS_SCHEME, 0) == 0) {
            return true;
        }
    }
    return false;
}

// libcurl opens a CA file itself when it reads it; opening a FIFO blocks until someone writes
// to it, and a device may never end, which would stall the one transfer loop for every client.
// A name that does not exist is left to libcurl, which fails the transfer with its own code.
bool NamesSomethingElseThanAFile(const std::string &caFile)
{
    struct stat info {};
    return !caFile.empty() && stat(caFile.c_str(), &info) == 0 && !S_ISREG(info.st_mode);
}

// libcurl also takes its proxy, and the hosts that bypass it, from these variables.
std::string ProxyEnvironment()
{
    std::string values;
    for (const char *name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
        const char *value = std::getenv(name);
        values.append(name).append("=").append(value == nullptr ? "" : value).append(";");
    }
    return values;
}

HttpLogic::ProtocolSetters SettersFor(CURL *curl)
{
    return {[curl](CURLoption option, const char *names) { return curl_easy_setopt(curl, option, names); },
        [curl](CURLoption option, long bitmask) { return curl_easy_setopt(curl, option, bitmask); }};
}
} // namespace

std::mutex HttpLogic::globalInitMutex_;
bool HttpLogic::globalInited_ = false;

HttpLogic::HttpLogic(VornInitConfigParser::VornRequestInfo info, std::string url)
    : requestInfo_(std::move(info)), url_(std::move(url))
{
}

bool HttpLogic::GlobalInit()
{
    std::lock_guard<std::mutex> lock(globalInitMutex_);
    if (globalInited_) {
        return true;
    }
    globalInited_ = curl_global_init(CURL_GLOBAL_ALL) == CURLE_OK;
    return globalInited_;
}

int HttpLogic::InitHttpLogic()
{
    curl_.reset(curl_easy_init());
    caStore_.reset();
    if (curl_ == nullptr) {
        VORN_LOGI("HttpLogic:: curl_easy_init failed");
        return -1;
    }
    for (const std::string &header : requestInfo_.requestHeaders) {
        curl_slist *list = curl_slist_append(headerList_.get(), header.c_str());
        if (list != nullptr) {
            (void)headerList_.release();
            headerList_.reset(list);
        }
    }
    if (requestInfo_.saType != GNS_SA_TYPE) {
        url_ += "?" + requestInfo_.queryHeaders;
        VORN_LOGI("HttpLogic request mHostName:%{private}s", url_.c_str());
    }
    nlohmann::json body;
    body["services"] = requestInfo_.requestBody;
    postBody_ = body.dump();
    return 0;
}

bool HttpLogic::SetRequiredOption(CURLoption option, const void *value, const char *failureLog) const
{
    CURLcode code = curl_easy_setopt(curl_.get(), option, value);
    if (code != CURLE_OK) {
        VORN_LOGI(failureLog, static_cast<int>(code));
        return false;
    }
    return true;
}

long HttpLogic::PostHttpsRequest()
{
    VORN_LOGI("HttpLogic::PostHttpsRequest, enter");
    if (curl_ == nullptr) {
        VORN_LOGI("HttpLogic::PostHttpsRequest, m_pcurl not init, InitHttpLogic must call first");
        return -1;
    }
    if (!SetRequiredOption(CURLOPT_HTTPHEADER, headerList_.get(), "CURLOPT_HTTPHEADER Failed code = %{public}d") ||
        !SetRequiredOption(CURLOPT_URL, url_.c_str(), "CURLOPT_URL Failed code = %{public}d") ||
        !SetRequiredOption(CURLOPT_POSTFIELDS, postBody_.c_str(), "CURLOPT_POSTFIELDS Failed code = %{public}d")) {
        return -1;
    }
    if (NamesSomethingElseThanAFile(requestInfo_.caFile)) {
        VORN_LOGE("HttpLogic: caFile is not a regular file, refused: %{private}s", requestInfo_.caFile.c_str());
        return -1;
    }
    if (!SetTransferOptions()) {
        return -1;
    }
    SetLoopOptions();

    // The transfer runs on the transfer loop; this task is suspended, not its worker held,
    // until the loop has finished with the handle and handed it back.
    const std::string trustContext = CaStoreCache::IsEnabled() ? TrustContext() : "";
    CURLcode code = TransferLoop::Perform(curl_.get(), trustContext).get();
    CountConnections();
    if (code != CURLE_OK) {
        VORN_LOGI("Failed to access the server, code = %{public}d", static_cast<int>(code));
        return -1;
    }
    long status = 0;
    (void)curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
    if (status != HTTP_OK) {
        VORN_LOGI("Failed to access the server, http code = %{public}ld", status);
    }
    VORN_LOGI("HttpLogic::PostHttpsRequest out");
    return status;
}

// Options whose failure does not stop the transfer: libcurl keeps its default for them. The
// HTTPS restriction is the exception, as libcurl's default allows every protocol.
bool HttpLogic::SetTransferOptions()
{
    CURL *curl = curl_.get();
    (void)curl_easy_setopt(curl, CURLOPT_POST, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_READFUNCTION, nullptr);
    (void)curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, OnWriteHead);
    (void)curl_easy_setopt(curl, CURLOPT_HEADERDATA, this);
    (void)curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, OnWriteBody);
    (void)curl_easy_setopt(curl, CURLOPT_WRITEDATA, this);
    (void)curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_HTTPAUTH, CURLAUTH_ANY);
    // HTTPS only, also after a redirect: a client must not make the service read file:// URLs
    // or fall back to plain HTTP.
    if (!RestrictToHttps(SettersFor(curl))) {
        return false;
    }
    proxy_ = ChooseProxy();
    SetCurlHttpProxy();
    (void)curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, VERIFY_HOST_NAME);
    SetCaOptions();
    if (!requestInfo_.interfaceName.empty()) {
        (void)curl_easy_setopt(curl, CURLOPT_INTERFACE, requestInfo_.interfaceName.c_str());
        VORN_LOGI("HttpLogic::PostHttpsRequest, curl_easy_setopt for CURLOPT_INTERFACE");
    }
    SetupOtherCurlOptions();
    return true;
}

bool HttpLogic::RestrictToHttps(const ProtocolSetters &set)
{
    // The bitmask options are deprecated where the names options exist, but they are all an
    // older libcurl understands; never fall back to leaving the protocols open.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    const std::pair<CURLoption, CURLoption> options[] = {
        {CURLOPT_PROTOCOLS_STR, CURLOPT_PROTOCOLS},
        {CURLOPT_REDIR_PROTOCOLS_STR, CURLOPT_REDIR_PROTOCOLS},
    };
#pragma GCC diagnostic pop
    for (const auto &[byNames, byBitmask] : options) {
        if (set.byNames(byNames, ALLOWED_PROTOCOLS) == CURLE_OK) {
            continue;
        }
        const CURLcode code = set.byBitmask(byBitmask, CURLPROTO_HTTPS);
        if (code != CURLE_OK) {
            VORN_LOGE("HttpLogic cannot restrict the transfer to HTTPS, code = %{public}d", static_cast<int>(code));
            return false;
        }
    }
    return true;
}

// Verifies against the cached store of "caFile" where possible; otherwise libcurl reads the
// file itself, and reports a missing or broken one the same way. Not through
// a TLS proxy: libcurl runs the SSL context callback for the proxy's handshake as well, and
// the proxy's certificate must still be checked against libcurl's own CA settings.
void HttpLogic::SetCaOptions()
{
    CURL *curl = curl_.get();
    if (caStore_ == nullptr && CaStoreCache::IsEnabled() && proxy_.type != CURLPROXY_HTTPS &&
        !EnvironmentNamesHttpsProxy()) {
        caStore_ = CaStoreCache::GetInstance().Acquire(requestInfo_.caFile);
    }
    if (caStore_ != nullptr && caStore_->ApplyTo(curl)) {
        return;
    }
    caStore_.reset();
    (void)curl_easy_setopt(curl, CURLOPT_CAINFO, requestInfo_.caFile.c_str());
}

// Everything that decides how a connection is verified and routed, beyond what libcurl
// compares itself: the CA file's version (a changed file is a new context), the proxy with its
// exclusions, the interface or none, and the TLS settings.
std::string HttpLogic::TrustContext() const
{
    std::string context;
    if (caStore_ != nullptr) {
        context.append("store=").append(caStore_->Version());
    } else {
        context.append("file=").append(CaStoreCache::VersionOf(requestInfo_.caFile).value_or(requestInfo_.caFile));
    }
    if (!proxy_.host.empty()) {
        context.append("\nproxy=").append(proxy_.host).append(":").append(std::to_string(proxy_.port));
        context.append(";").append(proxy_.exclusions).append(";").append(std::to_string(proxy_.type));
    }
    context.append("\nenv=").append(ProxyEnvironment());
    context.append("\ninterface=").append(requestInfo_.interfaceName.empty() ? "-" : "+" + requestInfo_.interfaceName);
    context.append("\ntls=").append(std::to_string(CURL_SSLVERSION_TLSv1_2)).append(";").append(CIPHER_LIST);
    context.append(";").append(std::to_string(VERIFY_HOST_NAME));
    return context;
}

// libcurl reads "caFile" for every connection it opens when no cached store is installed.
void HttpLogic::CountConnections() const
{
    long opened = 0;
    if (curl_easy_getinfo(curl_.get(), CURLINFO_NUM_CONNECTS, &opened) != CURLE_OK) {
        return;
    }
    if (opened > 0) {
        VornMetrics::Add(VornMetrics::Counter::CONNECTIONS_OPENED, static_cast<uint64_t>(opened));
        if (caStore_ == nullptr) {
            VornMetrics::Add(VornMetrics::Counter::CA_LOADS, static_cast<uint64_t>(opened));
        }
        return;
    }
    long status = 0;
    if (curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status) == CURLE_OK && status != 0) {
        VornMetrics::Add(VornMetrics::Counter::CONNECTIONS_REUSED);
    }
}

// What running on the shared multi handle adds, results ignored. With the transport cache,
// connections are kept per trust context by the transfer loop; without it each transfer opens
// a connection of its own and leaves none behind. libcurl's own CA cache stays off either way:
// it belongs to the multi handle and knows a CA file only by its path, so it would go on
// trusting a file's old content; our own cache checks the file's version.
void HttpLogic::SetLoopOptions()
{
    CURL *curl = curl_.get();
    (void)curl_easy_setopt(curl, CURLOPT_CA_CACHE_TIMEOUT, 0L);
    if (CaStoreCache::IsEnabled()) {
        return;
    }
    (void)curl_easy_setopt(curl, CURLOPT_FRESH_CONNECT, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_FORBID_REUSE, 1L);
}

void HttpLogic::SetupOtherCurlOptions() const
{
    CURL *curl = curl_.get();
    (void)curl_easy_setopt(curl, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    (void)curl_easy_setopt(curl, CURLOPT_SSL_CIPHER_LIST, CIPHER_LIST);
    (void)curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_MAXREDIRS, MAX_REDIRECTS);
    (void)curl_easy_setopt(curl, CURLOPT_AUTOREFERER, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_ACCEPT_ENCODING, "gzip");
    (void)curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, CONNECT_TIMEOUT_SECONDS);
    (void)curl_easy_setopt(curl, CURLOPT_TIMEOUT, TRANSFER_TIMEOUT_SECONDS);
}

void HttpLogic::LimitResponseSize(size_t limit)
{
    sizeGuard_.SetLimit(limit);
    if (PassesRawHeads()) {
        return;
    }
    // Synthetic heads hold at least the lines made from the request; the Cache-Control values
    // added later only make them longer, and the finished response is measured again anyway.
    const std::string fromRequest = BuildResponseHeads(requestInfo_, postBody_, "");
    (void)sizeGuard_.Take(fromRequest.data(), fromRequest.size());
}

// Returning short makes libcurl abort the transfer, which also stops gzip decoding from
// producing more than fits.
size_t HttpLogic::OnWriteBody(const char *data, size_t size, size_t nmemb, HttpLogic *logic)
{
    const size_t length = size * nmemb;
    if (!logic->sizeGuard_.Take(data, length)) {
        return 0;
    }
    logic->responseBody_.append(data, length);
    return length;
}

size_t HttpLogic::OnWriteHead(const char *data, size_t size, size_t nmemb, HttpLogic *logic)
{
    const size_t length = size * nmemb;
    // Other clients get only Cache-Control values of the heads, and libcurl bounds their size.
    if (logic->PassesRawHeads() && !logic->sizeGuard_.Take(data, length)) {
        return 0;
    }
    logic->responseHeads_.append(data, length);
    return length;
}

bool HttpLogic::ResponseTooLarge() const
{
    return sizeGuard_.Exceeded();
}

size_t HttpLogic::ResponseSizeReached() const
{
    return sizeGuard_.Reached();
}

long HttpLogic::GetResponseStatus() const
{
    long status = 0;
    if (curl_ != nullptr) {
        (void)curl_easy_getinfo(curl_.get(), CURLINFO_RESPONSE_CODE, &status);
    }
    return status;
}

bool HttpLogic::PassesRawHeads() const
{
    return requestInfo_.saType == GNS_SA_TYPE;
}

std::string HttpLogic::GetResponseBody() const
{
    return responseBody_;
}

std::string HttpLogic::GetResponseHeads() const
{
    return BuildResponseHeads(requestInfo_, postBody_, responseHeads_);
}

std::string HttpLogic::BuildResponseHeads(const VornInitConfigParser::VornRequestInfo &info,
    const std::string &postBody, const std::string &rawHeads)
{
    if (info.saType == GNS_SA_TYPE) {
        return rawHeads;
    }
    const auto cacheTime =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    std::string heads;
    heads.append("Rule: ").append(info.queryHeaders).append(LINE_SEPARATOR);
    heads.append("Version: ").append(info.appVersion).append(LINE_SEPARATOR);
    heads.append("Service-List: ").append(postBody).append(LINE_SEPARATOR);
    heads.append("Cache-time: ").append(std::to_string(cacheTime)).append(LINE_SEPARATOR);
    heads.append("Cache-status: success").append(LINE_SEPARATOR);

    // After redirects libcurl has collected one block per response; only the final one counts.
    std::vector<std::string> blocks = StringUtils::SplitAllByString(rawHeads, HEAD_BLOCK_SEPARATOR);
    const std::string &lastBlock = blocks.empty() ? rawHeads : blocks.back();
    const std::string cacheControlKey = StringUtils::ToLowerCase(CACHE_CONTROL);
    for (const std::string &line : StringUtils::SplitAllByString(lastBlock, LINE_SEPARATOR)) {
        if (StringUtils::ToLowerCase(line).find(cacheControlKey) == std::string::npos) {
            continue;
        }
        // Clients read the value after the first '='; a line without one is passed on whole.
        std::string value = line.substr(line.find('=') + 1);
        StringUtils::Trim(value);
        heads.append(CACHE_CONTROL).append(": ").append(value).append(LINE_SEPARATOR);
    }
    heads.append(LINE_SEPARATOR);
    return heads;
}

void HttpLogic::GetHttpProxyInfo(std::string &host, int &port, std::string &exclusions)
{
    NetManagerStandard::HttpProxy proxy;
    int32_t status = NetManagerStandard::NetConnClient::GetInstance().GetDefaultHttpProxy(proxy);
    if (status != 0) {
        VORN_LOGE("GetHttpProxy fail, status: %{public}d", status);
        return;
    }
    host = proxy.GetHost();
    port = static_cast<uint16_t>(proxy.GetPort());
    std::list<std::string> exclusionList = proxy.GetExclusionList();
    exclusions = StringUtils::ToString(std::vector<std::string>(exclusionList.begin(), exclusionList.end()), ',');
}

HttpLogic::ProxyChoice HttpLogic::ChooseProxy()
{
    ProxyChoice proxy;
    GetHttpProxyInfo(proxy.host, proxy.port, proxy.exclusions);
    proxy.type = proxy.host.find(HTTPS_SCHEME) != std::string::npos ? CURLPROXY_HTTPS : CURLPROXY_HTTP;
    return proxy;
}

void HttpLogic::SetCurlHttpProxy() const
{
    if (proxy_.host.empty()) {
        return;
    }
    VORN_LOGI("Set default proxy");
    CURL *curl = curl_.get();
    (void)curl_easy_setopt(curl, CURLOPT_PROXY, proxy_.host.c_str());
    (void)curl_easy_setopt(curl, CURLOPT_PROXYPORT, static_cast<long>(proxy_.port));
    if (!proxy_.exclusions.empty()) {
        (void)curl_easy_setopt(curl, CURLOPT_NOPROXY, proxy_.exclusions.c_str());
    }
    (void)curl_easy_setopt(curl, CURLOPT_HTTPPROXYTUNNEL, 1L);
    (void)curl_easy_setopt(curl, CURLOPT_PROXYTYPE, proxy_.type);
}
} // namespace Vorn
} // namespace OHOS
