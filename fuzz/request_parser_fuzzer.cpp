// The JSON readers over arbitrary text, checked and parsed as their callers do (accept, then a
// strict parse, comments off) and with the library's exceptions caught where the callers catch
// them: the request and event texts of the IPC front, the server configuration of the engine.
#include <cstddef>
#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

#include "vorn_init_config_parser.h"
#include "vorn_omsa_info.h"

using OHOS::Vorn::VornInitConfigParser;
using OHOS::Vorn::VornOmsaInfo;

namespace {
template <typename Fill> void ReadCaught(const nlohmann::json &json, Fill fill)
{
    try {
        fill(json);
    } catch (const nlohmann::json::exception &) {
        // A mistyped key: the callers answer with a code or a log line.
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    if (!nlohmann::json::accept(text, false)) {
        return 0;
    }
    nlohmann::json json;
    try {
        json = nlohmann::json::parse(text, nullptr, true, false);
    } catch (const nlohmann::json::exception &) {
        return 0;
    }
    ReadCaught(json, [](const nlohmann::json &j) {
        VornInitConfigParser::VornRequestInfo info;
        VornInitConfigParser::FromJson(j, info);
    });
    ReadCaught(json, [](const nlohmann::json &j) {
        VornInitConfigParser::HttpProxyInfo proxy;
        VornInitConfigParser::ProxyInfoFromJson(j, proxy);
    });
    ReadCaught(json, [](const nlohmann::json &j) {
        VornInitConfigParser::ServerConfig config;
        VornInitConfigParser::ServerConfigFromJson(j, config);
    });
    ReadCaught(json, [](const nlohmann::json &j) {
        VornOmsaInfo::OmsaInfo event;
        VornOmsaInfo::FromJson(j, event);
    });
    return 0;
}
