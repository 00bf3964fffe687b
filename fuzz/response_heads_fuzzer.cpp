// Response-head synthesis over arbitrary raw heads, and the response text built from them. A
// server chooses the raw heads and the body; the client chooses the query text and the version.
// Serialising invalid UTF-8 is allowed to fail with the JSON library's type error, as the engine
// expects; anything else is a finding.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>
#include <nlohmann/json.hpp>

#include "quiet_service_initialize.h"
#include "vorn_http_logic.h"
#include "vorn_server_logic.h"

using OHOS::Vorn::HttpLogic;
using OHOS::Vorn::VornInitConfigParser;
using OHOS::Vorn::VornServerLogic;

namespace {
bool EndsWith(const std::string &text, const std::string &suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void CheckHeads(const VornInitConfigParser::VornRequestInfo &info, const std::string &rawHeads,
    const std::string &heads)
{
    if (info.saType == "gns") {
        if (heads != rawHeads) {
            std::abort();
        }
        return;
    }
    const std::string firstLine = "Rule: " + info.queryHeaders + "\r\n";
    if (heads.compare(0, firstLine.size(), firstLine) != 0 || !EndsWith(heads, "\r\n\r\n")) {
        std::abort();
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    VornInitConfigParser::VornRequestInfo info;
    info.saType = provider.ConsumeBool() ? "gns" : provider.ConsumeRandomLengthString(8);
    info.queryHeaders = provider.ConsumeRandomLengthString(64);
    info.appVersion = provider.ConsumeRandomLengthString(16);
    const std::string postBody = provider.ConsumeRandomLengthString(64);
    const std::string body = provider.ConsumeRandomLengthString(256);
    const int64_t code = provider.ConsumeIntegral<int64_t>();
    const std::string rawHeads = provider.ConsumeRemainingBytesAsString();

    const std::string heads = HttpLogic::BuildResponseHeads(info, postBody, rawHeads);
    CheckHeads(info, rawHeads, heads);

    auto statistics = std::make_shared<VornServerLogic::VornRequestStatistics>();
    statistics->hasStatistics = (code & 1) != 0;
    statistics->domain = info.appVersion;
    try {
        const std::string response = VornServerLogic::GetResponse(code, "Request success", heads, body, statistics);
        // What the engine sends must read back as the same strings.
        const nlohmann::json parsed = nlohmann::json::parse(response);
        if (parsed.at("header") != heads || parsed.at("body") != body || parsed.at("code") != code) {
            std::abort();
        }
    } catch (const nlohmann::json::type_error &) {
        // Invalid UTF-8 in the heads or the body: the engine drops that response.
    }
    return 0;
}
