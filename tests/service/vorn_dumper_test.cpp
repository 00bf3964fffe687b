#include <string>

#include <gtest/gtest.h>

#include "vorn_dumper.h"
#include "vorn_metrics.h"

using namespace OHOS::Vorn;

namespace {
std::string LineOf(const std::string &text, const std::string &key)
{
    size_t at = text.find("\n" + key + ": ");
    if (at == std::string::npos) {
        return "";
    }
    size_t end = text.find('\n', at + 1);
    return text.substr(at + 1, end - at - 1);
}
} // namespace

TEST(VornDumperTest, WithoutOptionsShowsStateGaugesAndEveryCounter)
{
    VornMetrics::Add(VornMetrics::Counter::ATTEMPTS_OVERTAKEN, 3);
    const uint64_t overtaken = VornMetrics::Get(VornMetrics::Counter::ATTEMPTS_OVERTAKEN);
    std::string text = VornDumper::Render({}, true);
    EXPECT_NE(text.find("state: running\n"), std::string::npos);
    EXPECT_NE(VornDumper::Render({}, false).find("state: not running\n"), std::string::npos);
    EXPECT_EQ(LineOf(text, "attempts_overtaken"), "attempts_overtaken: " + std::to_string(overtaken));
    for (size_t i = 0; i < static_cast<size_t>(VornMetrics::Counter::COUNT); ++i) {
        const char *name = VornMetrics::Name(static_cast<VornMetrics::Counter>(i));
        EXPECT_FALSE(LineOf(text, name).empty()) << name;
    }
    {
        VornMetrics::InFlight attempt(VornMetrics::Gauge::ATTEMPTS_IN_FLIGHT);
        EXPECT_EQ(VornMetrics::Get(VornMetrics::Gauge::ATTEMPTS_IN_FLIGHT), 1);
    }
    EXPECT_EQ(LineOf(VornDumper::Render({}, true), "attempts_in_flight"), "attempts_in_flight: 0");
}

TEST(VornDumperTest, ResponsesAreCountedByCodeClass)
{
    const uint64_t ok = VornMetrics::Get(VornMetrics::Counter::RESPONSES_2XX);
    const uint64_t moved = VornMetrics::Get(VornMetrics::Counter::RESPONSES_3XX);
    const uint64_t client = VornMetrics::Get(VornMetrics::Counter::RESPONSES_4XX);
    const uint64_t failed = VornMetrics::Get(VornMetrics::Counter::RESPONSES_FAILED);
    for (int64_t code : {200, 204, 301, 404, -1, 0, 999}) {
        VornMetrics::CountResponse(code);
    }
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::RESPONSES_2XX), ok + 2);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::RESPONSES_3XX), moved + 1);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::RESPONSES_4XX), client + 1);
    EXPECT_EQ(VornMetrics::Get(VornMetrics::Counter::RESPONSES_FAILED), failed + 3);
}

TEST(VornDumperTest, HelpListsTheOptionsAndUnknownOptionsAreNamed)
{
    std::string help = VornDumper::Render({u"-h"}, true);
    EXPECT_NE(help.find("-h"), std::string::npos);
    EXPECT_EQ(help.find("state:"), std::string::npos);
    std::string unknown = VornDumper::Render({u"-x", u"\u00e9"}, true);
    EXPECT_EQ(unknown.rfind("unknown option: -x ?\n", 0), 0u);
    EXPECT_NE(unknown.find(help), std::string::npos);
}
