#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "eventhandler_host.h"
#include "hilog_host.h"
#include "ipc_host.h"
#include "log_lines.h"
#include "omsa_log.h"
#include "omsa_util.h"
#include "scoped_env.h"
#include "temp_dir.h"
#include "working_directory.h"

using namespace OHOS::Vorn;
using namespace std::chrono_literals;
using HostPlatform::LogCapture;
using VornTest::ScopedEnv;
using VornTest::ServiceLines;

namespace {
const std::string CONFIG_PATH = "system/etc/tarnix/vorn_depot/omsa_config.json";
const std::string COLLECT_URL = "https://collector.test/v1/events";

// A device root made the working directory while it lives (the configuration path is relative).
class DeviceRoot {
public:
    void WriteConfig(const std::string &content) const { dir_.WriteFile(CONFIG_PATH, content); }

private:
    VornTestbed::TempDir dir_;
    VornTest::WorkingDirectory cwd_ {dir_.Path()};
};

// Thread ids of the process's event runners; the report executor owns the only one here.
std::vector<std::string> RunnerThreads()
{
    std::vector<std::string> ids;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream comm(task.path() / "comm");
        std::string name;
        if (std::getline(comm, name) && name.rfind("EventRunner#", 0) == 0) {
            ids.push_back(task.path().filename().string());
        }
    }
    return ids;
}

TEST(OmsaCollectUrlTest, TakenFromTheConfigurationFileAnythingElseGivesAnEmptyUrl)
{
    struct Case {
        std::optional<std::string> content; // nullopt: no file at all
        std::string error; // empty: nothing logged
        std::string url = "";
    };
    const std::vector<Case> cases = {
        {R"({"collect_url":")" + COLLECT_URL + R"(","other":[1,2]})", "", COLLECT_URL},
        {std::nullopt, "OMSAUtil read the omsa configure failed"},
        {"collect_url=https://x", "OMSAUtil parse the omsa configure file failed."},
        {R"({"collect_url":"https://x"} // no comments)", "OMSAUtil parse the omsa configure file failed."},
        {R"({"collect_url":42})", "OMSAUtil, Parse omsa config json catch exception"},
        {"[]", ""},
        {R"("https://x")", ""},
        {R"({"collectUrl":"https://x"})", ""},
    };
    for (const Case &c : cases) {
        DeviceRoot root;
        if (c.content) {
            root.WriteConfig(*c.content);
        }
        LogCapture logs;
        EXPECT_EQ(OMSAUtil::GetCollectUrl(), c.url) << c.content.value_or("<missing>");
        EXPECT_EQ(VornTest::CountLevel(logs, LOG_ERROR, "VornService"), c.error.empty() ? 0u : 1u)
            << c.content.value_or("<missing>");
        if (!c.error.empty()) {
            EXPECT_EQ(ServiceLines(logs, LOG_ERROR, c.error), 1u) << c.content.value_or("<missing>");
        }
    }
}

// The analytics state lives for the whole process and is never reset, so its life is walked in
// one test: refused set-ups, the set-up that succeeds, and reporting afterwards.
TEST(OmsaSetUpTest, RetriedPerEventUntilAcceptedThenReportsInOrder)
{
    DeviceRoot root;
    VornTest::OmsaLog omsa;
    HostPlatform::ScopedCallerIdentity app(HostPlatform::SystemAppCaller(20010042));
    LogCapture logs;
    ASSERT_TRUE(RunnerThreads().empty());
    {
        ScopedEnv refuse("VORN_OMSA_RESULT", "7");
        OMSAUtil::OnOmsaEvent("refused.1", R"({"k":"v"})");
        // Every retry reads the configuration again.
        root.WriteConfig(R"({"collect_url":")" + COLLECT_URL + R"("})");
        OMSAUtil::OnOmsaEvent("refused.2", R"({"k":"v"})");
        EXPECT_EQ(OMSAUtil::Init(), 7);
    }
    EXPECT_EQ(ServiceLines(logs, LOG_WARN, "OMSAUtil::OnOmsaEvent, not inited."), 2u);
    EXPECT_EQ(ServiceLines(logs, LOG_WARN, "OmsaClientLiteApi::SetConfigOptions failed, ret: 7"), 3u);
    EXPECT_EQ(logs.CountContaining("kvCount:"), 0u);

    const int events = 20;
    for (int i = 0; i < events; i++) {
        OMSAUtil::OnOmsaEvent("ordered." + std::to_string(i), R"({"n":")" + std::to_string(i) + R"("})");
    }
    EXPECT_EQ(OMSAUtil::Init(), 0);
    EXPECT_EQ(ServiceLines(logs, LOG_INFO, "OmsaClientLiteApi::SetConfigOptions success"), 1u);
    EXPECT_EQ(ServiceLines(logs, LOG_INFO, "OmsaUtil Init already inited."), 1u);

    const auto setups = omsa.Calls("SetConfigOptions");
    ASSERT_EQ(setups.size(), 4u);
    for (size_t i = 0; i < setups.size(); i++) {
        EXPECT_EQ(setups[i]["tag"], "vorn_service");
        EXPECT_EQ(setups[i]["package"], "com.velmor.zul.networksdk");
        EXPECT_EQ(setups[i]["saId"], 66054);
        // A missing file does not hold the set-up back: it goes out with an empty URL.
        EXPECT_EQ(setups[i]["collectUrl"], i == 0 ? "" : COLLECT_URL) << i;
    }

    ASSERT_TRUE(HostPlatform::EventRunnersWaitIdle(5s));
    const auto reports = omsa.Calls("OnEvent");
    ASSERT_EQ(reports.size(), static_cast<size_t>(events));
    for (int i = 0; i < events; i++) {
        EXPECT_EQ(reports[i]["eventId"], "ordered." + std::to_string(i));
        EXPECT_EQ(reports[i]["tag"], "vorn_service");
        EXPECT_EQ(reports[i]["type"], 1);
        EXPECT_EQ(reports[i]["data"]["n"], std::to_string(i));
    }
    // The executor made by the first attempt outlived the failures and served every event.
    EXPECT_EQ(RunnerThreads().size(), 1u);

    // Once set up, a refusal by the client loses the event but never undoes the set-up.
    {
        ScopedEnv refuse("VORN_OMSA_RESULT", "9");
        OMSAUtil::OnOmsaEvent("lost", "{}");
        ASSERT_TRUE(HostPlatform::EventRunnersWaitIdle(5s));
    }
    EXPECT_EQ(ServiceLines(logs, LOG_WARN, "OMSA report failed"), 1u);
    EXPECT_EQ(omsa.Calls("SetConfigOptions").size(), 4u);
    EXPECT_EQ(omsa.Calls("OnEvent").size(), static_cast<size_t>(events + 1));
}

// Many clients' first events at once: some take the set-up lock, the others find the set-up done
// and post straight to the executor it made. Returns what went wrong, or nothing.
std::string RaceEventsAgainstTheSetUp()
{
    constexpr int THREADS = 16;
    constexpr int EVENTS_PER_THREAD = 25;
    DeviceRoot root;
    root.WriteConfig(R"({"collect_url":")" + COLLECT_URL + R"("})");
    VornTest::OmsaLog omsa;
    std::promise<void> go;
    std::shared_future<void> started = go.get_future().share();
    std::vector<std::thread> clients;
    for (int t = 0; t < THREADS; t++) {
        clients.emplace_back([started, t] {
            started.wait();
            for (int i = 0; i < EVENTS_PER_THREAD; i++) {
                OMSAUtil::OnOmsaEvent(std::to_string(t) + "." + std::to_string(i), R"({"k":"v"})");
            }
        });
    }
    go.set_value();
    for (std::thread &client : clients) {
        client.join();
    }
    if (!HostPlatform::EventRunnersWaitIdle(30s)) {
        return "reports still pending";
    }
    std::set<std::string> ids;
    for (const auto &report : omsa.Calls("OnEvent")) {
        ids.insert(report["eventId"].get<std::string>());
    }
    if (ids.size() != static_cast<size_t>(THREADS * EVENTS_PER_THREAD)) {
        return std::to_string(ids.size()) + " distinct events reported";
    }
    const size_t setups = omsa.Calls("SetConfigOptions").size();
    return setups == 1 ? "" : std::to_string(setups) + " set-ups";
}

// The race needs analytics that were never set up, so it runs in a fresh process of its own.
TEST(OmsaSetUpDeathTest, EventsFromManyThreadsRacingTheSetUpAllArrive)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const std::string problem = RaceEventsAgainstTheSetUp();
            std::cerr << (problem.empty() ? "all events arrived" : problem) << std::endl;
            std::exit(problem.empty() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "all events arrived");
}
} // namespace
