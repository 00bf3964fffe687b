#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "callback_parcel_limit.h"
#include "hilog_host.h"
#include "ipc_host.h"
#include "ipc_types.h"
#include "iremote_stub.h"
#include "message_option.h"
#include "vorn_request_callback_proxy.h"

using namespace OHOS;
using namespace OHOS::Vorn;

namespace {
struct Transaction {
    uint32_t code;
    int flags;
    int waitTime;
    std::u16string token;
    std::string response;
    size_t unreadBytes;
};

// A client's callback object that records the raw transactions it receives.
class TransactionRecorder : public IRemoteStub<IVornRequestCallback> {
public:
    int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &, MessageOption &option) override
    {
        std::u16string token = data.ReadInterfaceToken();
        std::string response = data.ReadString();
        transactions.push_back(
            {code, option.GetFlags(), option.GetWaitTime(), token, response, data.GetReadableBytes()});
        return ERR_NONE;
    }
    void OnResponse(const std::string &) override {}

    std::vector<Transaction> transactions;
};

sptr<IVornRequestCallback> CallbackFor(const sptr<IRemoteObject> &stub)
{
    return iface_cast<IVornRequestCallback>(HostPlatform::MakeRemoteProxy(stub));
}
} // namespace

TEST(VornRequestCallbackProxyTest, SendsEachResponseAsOneOneWayTransactionUpToTheParcelLimit)
{
    constexpr size_t LARGEST = CallbackParcelLimit::MAX_RESPONSE_SIZE;
    sptr<TransactionRecorder> recorder = new TransactionRecorder();
    sptr<IVornRequestCallback> callback = CallbackFor(recorder);
    ASSERT_NE(dynamic_cast<VornRequestCallbackProxy *>(callback.GetRefPtr()), nullptr);
    HostPlatform::LogCapture capture;

    callback->OnResponse(R"({"code":200})");
    callback->OnResponse("");
    callback->OnResponse(std::string(LARGEST, 'r'));
    // One byte more needs one more padded word, and the parcel has none left.
    callback->OnResponse(std::string(LARGEST + 1, 'r'));
    ASSERT_TRUE(HostPlatform::WaitOneWayDelivered(recorder, std::chrono::seconds(10)));
    ASSERT_EQ(recorder->transactions.size(), 3U);
    for (const Transaction &sent : recorder->transactions) {
        EXPECT_EQ(sent.code, 0U);
        EXPECT_EQ(sent.flags, MessageOption::TF_ASYNC);
        EXPECT_EQ(sent.waitTime, 8);
        EXPECT_EQ(sent.token, u"OHOS.Vorn.IVornRequestCallback");
        EXPECT_EQ(sent.unreadBytes, 0U);
    }
    EXPECT_EQ(recorder->transactions[0].response, R"({"code":200})");
    EXPECT_EQ(recorder->transactions[1].response, "");
    EXPECT_EQ(recorder->transactions[2].response, std::string(LARGEST, 'r'));
    EXPECT_EQ(capture.CountContaining("failed"), 1U);
    EXPECT_TRUE(capture.Contains("VornRequestCallbackProxy write response of 204720 bytes failed"));

    // A dead client's callback only costs a log line.
    HostPlatform::MarkObjectDead(recorder);
    EXPECT_NO_THROW(callback->OnResponse("lost"));
    EXPECT_EQ(recorder->transactions.size(), 3U);
    EXPECT_TRUE(capture.Contains("VornRequestCallbackProxy::OnResponse SendRequest is failed, error code: 32"));
}
