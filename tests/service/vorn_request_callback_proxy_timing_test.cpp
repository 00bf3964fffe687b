#include <algorithm>
#include <chrono>
#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "engine_fixture.h"
#include "ffrt_host.h"
#include "response_recorder.h"
#include "vorn_server_logic.h"

// Clients that never return from OnResponse, against the engine with real clocks. Bounds are
// loose for a busy build machine, except the one the service promises.
namespace {
using namespace std::chrono_literals;
using OHOS::sptr;
using OHOS::Vorn::VornServerLogic;
using VornTest::ResponseRecorder;
using Clock = std::chrono::steady_clock;

// The device runs at most this many runtime workers at once; as many stuck clients would have
// taken all of them.
constexpr int STUCK_CLIENTS = 8;

// A client whose OnResponse does not return until it is released (or 30 s pass). It first hands
// the response to `entered`, which so counts the clients inside OnResponse.
class StuckClient : public ResponseRecorder {
public:
    StuckClient(std::shared_future<void> released, sptr<ResponseRecorder> entered)
        : released_(std::move(released)), entered_(std::move(entered))
    {
    }

    void OnResponse(const std::string &response) override
    {
        entered_->ResponseRecorder::OnResponse(response);
        released_.wait_for(30s);
        ResponseRecorder::OnResponse(response);
    }

private:
    std::shared_future<void> released_;
    sptr<ResponseRecorder> entered_;
};

class StuckClientTimingTest : public VornTest::EngineFixture {
protected:
    StuckClientTimingTest() : EngineFixture(20s) {}

    void SetUp() override
    {
        EngineFixture::SetUp();
        server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, "fast"));
    }

    void Post(const sptr<ResponseRecorder> &client)
    {
        EXPECT_EQ(std::make_shared<VornServerLogic>(Request({Url("/ok")}))->GetAllServiceUrl(client->RemoteCallback()),
            0);
    }

    // Fastest of three fresh clients, from posting the request to holding the response, in ms.
    long long ResponseTime()
    {
        long long best = 0;
        for (int i = 0; i < 3; i++) {
            sptr<ResponseRecorder> client = new ResponseRecorder();
            const auto start = Clock::now();
            Post(client);
            EXPECT_TRUE(client->WaitForCount(1, 10s));
            const long long took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
            best = i == 0 ? took : std::min(best, took);
        }
        return best;
    }
};

TEST_F(StuckClientTimingTest, ClientsThatNeverReturnHoldNoWorkerAndDelayNobody)
{
    const long long alone = ResponseTime();

    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();
    sptr<ResponseRecorder> entered = new ResponseRecorder();
    std::vector<sptr<ResponseRecorder>> stuck;
    std::vector<std::future<void>> posts;
    for (int i = 0; i < STUCK_CLIENTS; i++) {
        stuck.push_back(new StuckClient(released, entered));
        // Each on its own thread, so that a service that waits for the client shows up below
        // instead of serialising the set-up.
        posts.push_back(std::async(std::launch::async, [this, client = stuck.back()] { Post(client); }));
    }
    ASSERT_TRUE(entered->WaitForCount(STUCK_CLIENTS, 10s));
    // No engine task waits for a stuck client: the requests end and every worker is free.
    for (std::future<void> &post : posts) {
        EXPECT_EQ(post.wait_for(5s), std::future_status::ready);
    }
    EXPECT_TRUE(HostPlatform::FfrtWaitIdle(5s));

    const long long besideStuck = ResponseTime();
    std::cout << "response alone " << alone << " ms, beside " << STUCK_CLIENTS << " stuck clients " << besideStuck
              << " ms\n";
    EXPECT_LT(besideStuck, alone + 100);

    release.set_value();
    for (const sptr<ResponseRecorder> &client : stuck) {
        EXPECT_TRUE(client->WaitForCount(1, 10s));
    }
}
} // namespace
