#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "device_runtime.h"
#include "engine_fixture.h"
#include "ffrt_host.h"
#include "ffrt_inner.h"
#include "hilog_host.h"
#include "response_recorder.h"
#include "vorn_server_logic.h"
#include "vorn_thread.h"

// The engine under a device-like task runtime (4 running workers, 8 threads): many clients at
// once must still see the one-second race and the 10 s job wait, which only holds when waiting
// jobs and transfers do not sit on workers.
namespace {
using namespace std::chrono_literals;
using OHOS::Vorn::VornServerLogic;
using VornTestbed::HttpResponse;
using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;

long long MsBetween(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(to - from).count();
}

// One client: calls the engine from a binder-pool task, as the service does, and notes when
// each response arrives. The call's times are read after Result(), which publishes them.
class TimedClient : public VornTest::ResponseRecorder {
public:
    struct Arrival {
        Clock::time_point at;
        Json response;
    };

    void OnResponse(const std::string &response) override
    {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            arrivals_.push_back({Clock::now(), Json::parse(response)});
        }
        ResponseRecorder::OnResponse(response);
    }

    void Call(const OHOS::Vorn::VornInitConfigParser::VornRequestInfo &info)
    {
        auto logic = std::make_shared<VornServerLogic>(info);
        result_ = OHOS::Vorn::VornThread::GetThreadPool(OHOS::Vorn::BINDER_POOL)
                      ->Submit(
                          [this, logic, callback = RemoteCallback()] {
                              calledAt = Clock::now();
                              int32_t code = logic->GetAllServiceUrl(callback);
                              returnedAt = Clock::now();
                              return code;
                          },
                          "binder");
    }

    int32_t Result() { return result_.get(); }

    std::vector<Arrival> Arrivals()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return arrivals_;
    }

    Clock::time_point calledAt {};
    Clock::time_point returnedAt {};

private:
    std::mutex mutex_;
    std::vector<Arrival> arrivals_;
    ffrt::future<int32_t> result_;
};

class EngineLoadTimingTest : public VornTest::EngineFixture {
protected:
    EngineLoadTimingTest() : EngineFixture(30s) {}

    void SetUp() override
    {
        ASSERT_TRUE(VornTest::DEVICE_LIKE_RUNTIME);
        EngineFixture::SetUp();
        HttpResponse late = HttpResponse::Text(200, "late");
        late.delay = 3000ms;
        server_->Respond("/late", late);
        HttpResponse hang = HttpResponse::Text(200, "never");
        hang.stall = VornTestbed::Stall::BeforeHead;
        server_->Respond("/hang1", hang);
        server_->Respond("/hang2", hang);
        server_->Respond("/ok", HttpResponse::Text(200, "fast"));
    }
};

TEST_F(EngineLoadTimingTest, ManyClientsWithAStalledFirstUrlAreAllAnsweredByTheSecondInTime)
{
    ASSERT_EQ(HostPlatform::FfrtRunningWorkerLimit(), 4u);
    constexpr size_t clients = 16;
    std::vector<OHOS::sptr<TimedClient>> timed;
    for (size_t i = 0; i < clients; ++i) {
        timed.push_back(new TimedClient());
    }
    for (auto &client : timed) {
        client->Call(Request({Url("/late"), Url("/ok")}));
    }
    for (size_t i = 0; i < clients; ++i) {
        TimedClient &client = *timed[i];
        ASSERT_TRUE(client.WaitForCount(2, 60s)) << "client " << i;
        EXPECT_EQ(client.Result(), 0) << "client " << i;
        std::vector<TimedClient::Arrival> arrivals = client.Arrivals();
        const long long first = MsBetween(client.calledAt, arrivals[0].at);
        EXPECT_GE(first, 1000) << "client " << i;
        EXPECT_LE(first, 1600) << "client " << i;
        EXPECT_EQ(arrivals[0].response["body"], "fast") << "client " << i;
        // The late first URL still answers, after the request has returned.
        EXPECT_GE(MsBetween(client.calledAt, arrivals[1].at), 3000) << "client " << i;
        EXPECT_LT(client.returnedAt, arrivals[1].at) << "client " << i;
        EXPECT_EQ(arrivals[1].response["body"], "late") << "client " << i;
        EXPECT_GE(arrivals[1].response["statistics"]["req_total_time"].get<uint64_t>(), 2900u) << "client " << i;
    }
}

TEST_F(EngineLoadTimingTest, HangingRequestTimesOutAtTenSecondsWhileOthersAreAnswered)
{
    OHOS::sptr<TimedClient> hanging = new TimedClient();
    hanging->Call(Request({Url("/hang1"), Url("/hang2")}));
    ASSERT_TRUE(server_->WaitForRequests(2, 5s));

    constexpr size_t others = 8;
    std::vector<OHOS::sptr<TimedClient>> timed;
    for (size_t i = 0; i < others; ++i) {
        timed.push_back(new TimedClient());
        timed.back()->Call(Request({Url("/ok")}));
    }
    for (size_t i = 0; i < others; ++i) {
        TimedClient &client = *timed[i];
        ASSERT_TRUE(client.WaitForCount(1, 15s)) << "client " << i;
        EXPECT_EQ(client.Result(), 0);
        std::vector<TimedClient::Arrival> arrivals = client.Arrivals();
        EXPECT_LE(MsBetween(client.calledAt, arrivals[0].at), 1500) << "client " << i;
        EXPECT_EQ(arrivals[0].response["body"], "fast");
    }

    EXPECT_EQ(hanging->Result(), -1);
    const long long jobWait = MsBetween(hanging->calledAt, hanging->returnedAt);
    EXPECT_GE(jobWait, 9950);
    EXPECT_LT(jobWait, 11500);
    EXPECT_EQ(Lines(LOG_WARN, "VornServerLogic::GetAllServiceUrl futrue wait timeout"), 1u);
    for (auto &client : timed) {
        EXPECT_LT(client->Arrivals()[0].at, hanging->returnedAt);
    }
    // The job runs on past its wait: the last URL's transfer limit ends it with a failure.
    ASSERT_TRUE(hanging->WaitForCount(1, 20s));
    TimedClient::Arrival failure = hanging->Arrivals()[0];
    EXPECT_GT(failure.at, hanging->returnedAt);
    EXPECT_EQ(failure.response["message"], "PostHttpsRequest failed");
}
} // namespace
