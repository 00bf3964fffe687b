#include <chrono>
#include <functional>
#include <future>

#include <gtest/gtest.h>

#include "ipc_host.h"
#include "ipc_object_stub.h"
#include "ipc_types.h"
#include "message_option.h"
#include "message_parcel.h"
#include "task_gate.h"

// How long a synchronous caller waits for a callee. Bounds are loose for a busy build machine.
namespace {
using namespace OHOS;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A callee whose calls wait inside the stub until the gate opens, then reply.
class SlowStub : public IPCObjectStub {
public:
    explicit SlowStub(VornTest::TaskGate &gate) : IPCObjectStub(u"host.test.SlowStub"), blocker_(gate.Blocker()) {}

    int OnRemoteRequest(uint32_t, MessageParcel &, MessageParcel &reply, MessageOption &) override
    {
        blocker_();
        reply.WriteInt32(42);
        finished_.set_value();
        return ERR_NONE;
    }

    bool WaitFinished(std::chrono::milliseconds timeout)
    {
        return finishedFuture_.wait_for(timeout) == std::future_status::ready;
    }

private:
    std::function<void()> blocker_;
    std::promise<void> finished_;
    std::future<void> finishedFuture_ = finished_.get_future();
};

long long MsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

TEST(IpcTimingTest, SynchronousCallerGivesUpAfterTheWaitTimeWhileTheCalleeGoesOn)
{
    VornTest::TaskGate gate;
    sptr<SlowStub> stub = new SlowStub(gate);
    sptr<IRemoteObject> remote = HostPlatform::MakeRemoteProxy(stub);
    MessageParcel data;
    MessageParcel reply;
    MessageOption option(MessageOption::TF_SYNC, 1);

    const auto start = Clock::now();
    EXPECT_EQ(remote->SendRequest(1, data, reply, option), RPC_BASE_INVOKER_WAIT_REPLY_ERR);
    const long long waited = MsSince(start);
    EXPECT_GE(waited, 950);
    EXPECT_LT(waited, 3000);
    EXPECT_EQ(reply.GetDataSize(), 0u);
    EXPECT_TRUE(gate.WaitStarted(0ms));
    EXPECT_FALSE(stub->WaitFinished(0ms));

    // The callee was never interrupted: it finishes once it can, and its reply goes nowhere.
    gate.Open();
    EXPECT_TRUE(stub->WaitFinished(10s));
    EXPECT_EQ(reply.GetDataSize(), 0u);
}

} // namespace
