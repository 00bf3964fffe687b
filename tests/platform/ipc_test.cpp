#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "errors.h"
#include "hilog_host.h"
#include "ipc_host.h"
#include "ipc_object_stub.h"
#include "ipc_skeleton.h"
#include "ipc_types.h"
#include "message_option.h"
#include "message_parcel.h"
#include "task_gate.h"

namespace {
using namespace OHOS;
using HostPlatform::CallerIdentity;
using namespace std::chrono_literals;

// A callee that records the numbers it is sent (code 1) with the caller's identity and the kernel
// thread that handled each (std::thread ids are reused once a thread exits, kernel tids far less
// soon); a call carrying `blockOn` is recorded, then waits inside the stub in `blocker`. Other
// codes get the plain stub's answer.
class NumberSink : public IPCObjectStub {
public:
    struct Entry {
        int32_t number;
        CallerIdentity caller;
        pid_t thread;
    };

    NumberSink() : IPCObjectStub(u"host.test.NumberSink") {}

    int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override
    {
        if (code != 1) {
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        }
        const int32_t number = data.ReadInt32();
        {
            std::lock_guard<std::mutex> lock(mutex_);
            // The skeleton tells no pid.
            const CallerIdentity caller {IPCSkeleton::GetCallingTokenID(), IPCSkeleton::GetCallingFullTokenID(), 0,
                IPCSkeleton::GetCallingUid()};
            entries_.push_back({number, caller, static_cast<pid_t>(syscall(SYS_gettid))});
        }
        changed_.notify_all();
        if (number == blockOn) {
            blocker();
        }
        reply.WriteInt32(number);
        return ERR_NONE;
    }

    std::vector<Entry> Entries()
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return entries_;
    }
    bool WaitEntries(size_t count, std::chrono::milliseconds timeout)
    {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [this, count] { return entries_.size() >= count; });
    }

    int32_t blockOn = -1;
    std::function<void()> blocker;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Entry> entries_;
};

int Send(const sptr<IRemoteObject> &remote, int32_t number, int flags, MessageParcel &reply, uint32_t code = 1)
{
    MessageParcel data;
    data.WriteInt32(number);
    MessageOption option(flags);
    return remote->SendRequest(code, data, reply, option);
}

// Who the callee saw calling, synchronously, from this thread.
CallerIdentity WhoDoesTheStubSee(const sptr<NumberSink> &sink)
{
    MessageParcel reply;
    EXPECT_EQ(Send(HostPlatform::MakeRemoteProxy(sink), 0, MessageOption::TF_SYNC, reply), ERR_NONE);
    return sink->Entries().back().caller;
}

std::vector<int32_t> Numbers(const std::vector<NumberSink::Entry> &entries)
{
    std::vector<int32_t> numbers;
    for (const NumberSink::Entry &entry : entries) {
        numbers.push_back(entry.number);
    }
    return numbers;
}

// The distinct kernel threads the calls to these callees ran on.
size_t Threads(const std::vector<sptr<NumberSink>> &sinks)
{
    std::set<pid_t> threads;
    for (const sptr<NumberSink> &sink : sinks) {
        for (const NumberSink::Entry &entry : sink->Entries()) {
            threads.insert(entry.thread);
        }
    }
    return threads.size();
}

class CountingRecipient : public IRemoteObject::DeathRecipient {
public:
    void OnRemoteDied(const wptr<IRemoteObject> &object) override
    {
        deaths++;
        lastDied = object.GetRefPtr();
    }
    std::atomic<int> deaths {0};
    IRemoteObject *lastDied = nullptr;
};

TEST(MessageParcelTest, ObjectEntriesCannotBeForged)
{
    sptr<NumberSink> stub = new NumberSink();
    MessageParcel original;
    ASSERT_TRUE(original.WriteRemoteObject(stub));
    ASSERT_TRUE(original.WriteRemoteObject(nullptr));

    // The same bytes without the side table, as a malicious sender could produce them.
    MessageParcel forged;
    ASSERT_TRUE(forged.WriteBuffer(reinterpret_cast<const void *>(original.GetData()), original.GetDataSize()));
    EXPECT_EQ(forged.ReadRemoteObject(), nullptr);

    sptr<IRemoteObject> received = original.ReadRemoteObject();
    ASSERT_NE(received, nullptr);
    EXPECT_TRUE(received->IsProxyObject());
    EXPECT_EQ(original.ReadRemoteObject(), nullptr); // the null object
    EXPECT_EQ(original.ReadRemoteObject(), nullptr); // past the end
}

TEST(IpcTest, UnknownCodesAndADeadObjectFailTransactionsAndDeathNotifiesRecipients)
{
    sptr<NumberSink> stub = new NumberSink();
    sptr<IRemoteObject> remote = HostPlatform::MakeRemoteProxy(stub);
    HostPlatform::LogCapture logs;
    MessageParcel reply;
    EXPECT_EQ(Send(remote, 0, MessageOption::TF_SYNC, reply, 99), IPC_STUB_UNKNOW_TRANS_ERR);
    EXPECT_EQ(logs.CountContaining("unknown code"), 1u);
    EXPECT_EQ(Send(remote, 0, MessageOption::TF_SYNC, reply, MAX_TRANSACTION_ID + 1u), IPC_PROXY_INVALID_CODE_ERR);

    sptr<CountingRecipient> recipient = new CountingRecipient();
    ASSERT_TRUE(remote->AddDeathRecipient(recipient));
    EXPECT_FALSE(stub->AddDeathRecipient(recipient)); // a local object cannot die remotely

    HostPlatform::MarkObjectDead(stub);
    EXPECT_TRUE(remote->IsObjectDead());
    EXPECT_EQ(recipient->deaths, 1);
    EXPECT_EQ(recipient->lastDied, remote.GetRefPtr());

    EXPECT_EQ(Send(remote, 0, MessageOption::TF_SYNC, reply), ERR_DEAD_OBJECT);
    EXPECT_TRUE(HostPlatform::MakeRemoteProxy(remote)->IsObjectDead());
    EXPECT_FALSE(remote->AddDeathRecipient(recipient));
    HostPlatform::MarkObjectDead(remote); // dying twice notifies once
    EXPECT_EQ(recipient->deaths, 1);

    sptr<NumberSink> otherStub = new NumberSink(); // the first one is dead now
    sptr<IRemoteObject> other = HostPlatform::MakeRemoteProxy(otherStub);
    sptr<CountingRecipient> removed = new CountingRecipient();
    ASSERT_TRUE(other->AddDeathRecipient(removed));
    ASSERT_TRUE(other->RemoveDeathRecipient(removed));
    EXPECT_FALSE(other->RemoveDeathRecipient(removed));
    HostPlatform::MarkObjectDead(other);
    EXPECT_EQ(removed->deaths, 0);
}

TEST(IpcIdentityTest, StubSeesTheCallersIdentityOnlyDuringTheCallAndOnlyFromItsThread)
{
    sptr<NumberSink> callee = new NumberSink();

    CallerIdentity self = WhoDoesTheStubSee(callee);
    EXPECT_EQ(self.uid, static_cast<pid_t>(getuid()));
    EXPECT_EQ((self.tokenId >> 27) & 3, 1u); // native

    const CallerIdentity app = HostPlatform::SystemAppCaller(20010042);
    {
        HostPlatform::ScopedCallerIdentity scope(app);
        CallerIdentity seen = WhoDoesTheStubSee(callee);
        EXPECT_EQ(seen.uid, 20010042);
        EXPECT_EQ(seen.tokenId, app.tokenId);
        EXPECT_EQ((seen.tokenId >> 27) & 3, 0u); // HAP
        EXPECT_EQ(seen.fullTokenId & (1ULL << 32), 1ULL << 32);
        // Outside a transaction a thread reports itself; another thread is still the process.
        EXPECT_EQ(IPCSkeleton::GetCallingUid(), 20010042);
        std::thread([&callee, &self] { EXPECT_EQ(WhoDoesTheStubSee(callee).tokenId, self.tokenId); }).join();

        HostPlatform::ScopedCallerIdentity inner(HostPlatform::AppCaller(20010043));
        seen = WhoDoesTheStubSee(callee);
        EXPECT_EQ(seen.uid, 20010043);
        EXPECT_EQ(seen.fullTokenId & (1ULL << 32), 0u);
    }
    EXPECT_EQ(IPCSkeleton::GetCallingTokenID(), self.tokenId);
}

// A stub calling back out, as the service calls clients, acts as its own process.
TEST(IpcIdentityTest, StubActsAsItsOwnProcessWhenCallingOut)
{
    sptr<NumberSink> service = new NumberSink();
    sptr<NumberSink> client = new NumberSink();
    service->blockOn = 0;
    service->blocker = [&client] { WhoDoesTheStubSee(client); };
    HostPlatform::ScopedCallerIdentity scope(HostPlatform::AppCaller(20010046));
    EXPECT_EQ(WhoDoesTheStubSee(service).uid, 20010046);
    ASSERT_EQ(client->Entries().size(), 1u);
    EXPECT_EQ(client->Entries()[0].caller.uid, static_cast<pid_t>(getuid()));
}

TEST(IpcOneWayTest, CallerNeverWaitsAndEachObjectGetsItsCallsInOrder)
{
    sptr<NumberSink> blocked = new NumberSink();
    sptr<NumberSink> other = new NumberSink();
    VornTest::TaskGate gate;
    blocked->blockOn = 0;
    blocked->blocker = gate.Blocker();
    sptr<IRemoteObject> toBlocked = HostPlatform::MakeRemoteProxy(blocked);
    sptr<IRemoteObject> toOther = HostPlatform::MakeRemoteProxy(other);
    HostPlatform::ScopedCallerIdentity app(HostPlatform::AppCaller(20010047));

    const int calls = 50;
    for (int32_t i = 0; i < calls; i++) {
        MessageParcel reply;
        reply.WriteInt32(-7); // whatever the caller had in it is gone
        ASSERT_EQ(Send(toBlocked, i, MessageOption::TF_ASYNC, reply), ERR_NONE);
        EXPECT_EQ(reply.GetDataSize(), 0u);
        ASSERT_EQ(Send(toOther, i, MessageOption::TF_ASYNC, reply), ERR_NONE);
    }
    ASSERT_TRUE(gate.WaitStarted(10s));

    // The first call to one object blocks its later ones, but neither another object's one-way
    // calls nor synchronous calls to the same object, which the callee serves on other threads.
    ASSERT_TRUE(HostPlatform::WaitOneWayDelivered(toOther, 10s));
    std::vector<int32_t> expected;
    for (int32_t i = 0; i < calls; i++) {
        expected.push_back(i);
    }
    EXPECT_EQ(Numbers(other->Entries()), expected);
    MessageParcel syncReply;
    ASSERT_EQ(Send(toBlocked, 1000, MessageOption::TF_SYNC, syncReply), ERR_NONE);
    EXPECT_EQ(syncReply.ReadInt32(), 1000);
    EXPECT_FALSE(HostPlatform::WaitOneWayDelivered(toBlocked, 0ms));
    EXPECT_EQ(Numbers(blocked->Entries()), (std::vector<int32_t> {0, 1000}));

    gate.Open();
    ASSERT_TRUE(HostPlatform::WaitOneWayDelivered(toBlocked, 10s));
    const std::vector<NumberSink::Entry> entries = blocked->Entries();
    expected.insert(expected.begin() + 1, 1000);
    EXPECT_EQ(Numbers(entries), expected);
    for (const NumberSink::Entry &entry : entries) {
        EXPECT_EQ(entry.caller.uid, 20010047); // the sender's identity travels with each call
        EXPECT_NE(entry.thread, static_cast<pid_t>(syscall(SYS_gettid)));
    }
}

TEST(IpcOneWayTest, DeadCalleeRefusesNewCallsAndNeverHandlesQueuedOnes)
{
    sptr<NumberSink> sink = new NumberSink();
    VornTest::TaskGate gate;
    sink->blockOn = 0;
    sink->blocker = gate.Blocker();
    sptr<IRemoteObject> remote = HostPlatform::MakeRemoteProxy(sink);
    MessageParcel reply;
    ASSERT_EQ(Send(remote, 0, MessageOption::TF_ASYNC, reply), ERR_NONE);
    ASSERT_EQ(Send(remote, 1, MessageOption::TF_ASYNC, reply), ERR_NONE);
    ASSERT_TRUE(gate.WaitStarted(10s));

    HostPlatform::MarkObjectDead(sink);
    EXPECT_EQ(Send(remote, 2, MessageOption::TF_ASYNC, reply), ERR_DEAD_OBJECT);
    gate.Open();
    ASSERT_TRUE(HostPlatform::WaitOneWayDelivered(remote, 10s));
    EXPECT_EQ(Numbers(sink->Entries()), std::vector<int32_t> {0}); // it was already handling 0
}

// A callee that waits for its own earlier one-way calls would wait for itself.
TEST(IpcOneWayTest, WaitingForDeliveryFromInsideTheCalleeReturnsAtOnce)
{
    sptr<NumberSink> sink = new NumberSink();
    std::atomic<int> waited {-1};
    sink->blockOn = 0;
    sink->blocker = [&sink, &waited] { waited = HostPlatform::WaitOneWayDelivered(sink, 10s) ? 1 : 0; };
    sptr<IRemoteObject> remote = HostPlatform::MakeRemoteProxy(sink);
    MessageParcel reply;
    ASSERT_EQ(Send(remote, 0, MessageOption::TF_ASYNC, reply), ERR_NONE);
    ASSERT_TRUE(HostPlatform::WaitOneWayDelivered(remote, 10s));
    EXPECT_EQ(waited, 0);
}

// The callee's IPC threads are a bounded pool, reused from call to call, whether the calls are
// synchronous or one-way lanes of many objects.
TEST(IpcThreadPoolTest, CallsReuseABoundedSetOfThreads)
{
    sptr<NumberSink> sync = new NumberSink();
    sptr<IRemoteObject> toSync = HostPlatform::MakeRemoteProxy(sync);
    for (int i = 0; i < 200; i++) {
        MessageParcel reply;
        ASSERT_EQ(Send(toSync, i, MessageOption::TF_SYNC, reply), ERR_NONE);
    }
    EXPECT_LE(Threads({sync}), 16u);

    std::vector<sptr<NumberSink>> sinks;
    for (int i = 0; i < 50; i++) {
        sinks.push_back(new NumberSink());
    }
    for (int round = 0; round < 4; round++) {
        for (const sptr<NumberSink> &sink : sinks) {
            MessageParcel reply;
            ASSERT_EQ(Send(HostPlatform::MakeRemoteProxy(sink), round, MessageOption::TF_ASYNC, reply), ERR_NONE);
        }
    }
    for (const sptr<NumberSink> &sink : sinks) {
        ASSERT_TRUE(HostPlatform::WaitOneWayDelivered(sink, 10s));
    }
    EXPECT_LE(Threads(sinks), 16u);
}

// More stuck callees than the pool has threads: another callee is still served.
TEST(IpcThreadPoolTest, CalleesStuckBeyondThePoolDoNotHoldOthers)
{
    std::promise<void> gate;
    sptr<NumberSink> stuck = new NumberSink();
    stuck->blockOn = 0;
    stuck->blocker = [opened = gate.get_future().share()] { opened.wait(); };
    sptr<IRemoteObject> toStuck = HostPlatform::MakeRemoteProxy(stuck);
    const size_t stuckCalls = 20;
    std::vector<std::future<int>> callers;
    for (size_t i = 0; i < stuckCalls; i++) {
        callers.push_back(std::async(std::launch::async, [&toStuck] {
            MessageParcel reply;
            return Send(toStuck, 0, MessageOption::TF_SYNC, reply);
        }));
    }
    // Every thread of the pool is stuck before the other callee is called.
    ASSERT_TRUE(stuck->WaitEntries(16, 10s));
    sptr<IRemoteObject> toOther = HostPlatform::MakeRemoteProxy(sptr<NumberSink>(new NumberSink()));
    MessageParcel reply;
    EXPECT_EQ(Send(toOther, 1, MessageOption::TF_SYNC, reply), ERR_NONE);
    EXPECT_EQ(reply.ReadInt32(), 1);
    ASSERT_EQ(Send(toOther, 2, MessageOption::TF_ASYNC, reply), ERR_NONE);
    EXPECT_TRUE(HostPlatform::WaitOneWayDelivered(toOther, 10s));

    // The calls queued behind the full pool got threads of their own as well.
    EXPECT_TRUE(stuck->WaitEntries(stuckCalls, 10s));
    gate.set_value();
    for (std::future<int> &caller : callers) {
        EXPECT_EQ(caller.get(), ERR_NONE);
    }
}
} // namespace
