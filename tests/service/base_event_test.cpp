#include <chrono>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "eventhandler_host.h"
#include "hilog_host.h"
#include "ipc_host.h"
#include "log_lines.h"
#include "omsa_log.h"
#include "omsa_util.h"
#include "scoped_env.h"

using namespace OHOS::Vorn;
using namespace std::chrono_literals;
using HostPlatform::LogCapture;
using Pairs = std::map<std::string, std::string>;

namespace {
// A uid that no thread carries by default: finding it in an event shows it was read on the
// calling thread, not on the executor's.
constexpr pid_t CALLER_UID = 20017777;
const std::string CALLER_UID_TEXT = std::to_string(CALLER_UID);
const std::string ACCEPT_FAILED = "BaseEvent::EventDataJsonToMap json accept failed";
const std::string PARSE_FAILED = "BaseEvent::EventDataJsonToMap json parse failed";

struct Case {
    std::string content;
    Pairs pairs; // what the content yields, before the caller's uid is added
    std::string error; // the flattener's error line, if any
};

// Every event goes the whole way: flattened and stamped on this thread, reported on the
// analytics thread. The client accepts everything (no VORN_OMSA_RESULT).
class EventFlatteningTest : public testing::Test {
protected:
    Pairs Report(const std::string &eventId, const std::string &content)
    {
        {
            HostPlatform::ScopedCallerIdentity caller(HostPlatform::SystemAppCaller(CALLER_UID));
            OMSAUtil::OnOmsaEvent(eventId, content);
        }
        EXPECT_TRUE(HostPlatform::EventRunnersWaitIdle(5s));
        for (const auto &call : omsa_.Calls("OnEvent")) {
            if (call["eventId"] == eventId) {
                return call["data"].get<Pairs>();
            }
        }
        ADD_FAILURE() << "event " << eventId << " was not reported";
        return {};
    }

    VornTest::ScopedEnv accept_ {"VORN_OMSA_RESULT", std::nullopt};
    VornTest::ScopedEnv hidePrivate_ {"VORN_HILOG_PRIVATE", std::nullopt};
    VornTest::OmsaLog omsa_;
};

TEST_F(EventFlatteningTest, StringMembersBecomePairsUntilTheFirstOtherValue)
{
    const std::vector<Case> cases = {
        {R"({"c":"z","b":1,"a":"x"})", {{"a", "x"}}, PARSE_FAILED}, // walked in key order: a, b, ...
        {R"({"a":"x","b":true,"c":"z"})", {{"a", "x"}}, PARSE_FAILED},
        {R"({"a":{"n":"x"},"b":"y"})", {}, PARSE_FAILED},
        {R"({"m":"tab\there \u00e9"})", {{"m", "tab\there \xC3\xA9"}}, ""},
        {"{}", {}, ""},
        {R"({"kitUid":"0","page":"home"})", {{"page", "home"}}, ""}, // the caller's uid replaces a forged one
        {R"(["p","q"])", {{"0", "p"}, {"1", "q"}}, ""},
        {R"("solo")", {{"", "solo"}}, ""},
        {"42", {}, PARSE_FAILED},
        {"null", {}, ""},
        {"", {}, ACCEPT_FAILED},
        {R"({"a":"x"} // no comments)", {}, ACCEPT_FAILED},
    };
    for (size_t i = 0; i < cases.size(); i++) {
        const Case &c = cases[i];
        const std::string eventId = "flat." + std::to_string(i);
        LogCapture logs;
        Pairs expected = c.pairs;
        expected["kitUid"] = CALLER_UID_TEXT;
        EXPECT_EQ(Report(eventId, c.content), expected) << c.content;
        EXPECT_EQ(VornTest::ServiceLines(logs, LOG_INFO,
                      "OmsaClientCoreInnerApi OnOmsaEvent, eventid:" + eventId +
                          ", content:<private>, kvCount:" + std::to_string(expected.size())),
            1u)
            << c.content;
        EXPECT_EQ(VornTest::CountLevel(logs, LOG_ERROR, "VornCommon"), c.error.empty() ? 0u : 1u) << c.content;
        if (!c.error.empty()) {
            EXPECT_EQ(VornTest::CountAt(logs, LOG_ERROR, "VornCommon", c.error), 1u) << c.content;
        }
    }
}
} // namespace
