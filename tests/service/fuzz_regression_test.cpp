#include <pthread.h>

#include <chrono>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "ffrt_host.h"
#include "hilog_host.h"
#include "ipc_host.h"
#include "log_lines.h"
#include "message_option.h"
#include "message_parcel.h"
#include "raw_service_client.h"
#include "response_recorder.h"
#include "string_utils.h"
#include "vorn_error_code.h"
#include "vorn_sa.h"
#include "vorn_sa_id.h"

// Inputs the fuzz targets (fuzz/) once crashed on, replayed through the same entry points.
namespace {
using namespace std::chrono_literals;
using OHOS::sptr;

// Runs `body` on a thread with a stack of `bytes`, as small as a pool thread's may be, so that
// an overflow shows in every build and not only where the sanitizers enlarge stack frames.
void RunOnStack(size_t bytes, const std::function<void()> &body)
{
    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, bytes), 0);
    pthread_t thread;
    // The thread is joined before `body` goes out of scope.
    const int rc = pthread_create(
        &thread, &attr,
        [](void *arg) -> void * {
            (*static_cast<const std::function<void()> *>(arg))();
            return nullptr;
        },
        const_cast<std::function<void()> *>(&body));
    pthread_attr_destroy(&attr);
    ASSERT_EQ(rc, 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

constexpr size_t SMALL_STACK = 256 * 1024;

// string_path_fuzzer: the host of a long URL was found by a std::regex search, which recursed
// once per character and overflowed the stack of the pool thread that starts the attempt.
TEST(FuzzRegressionTest, HostOfAVeryLongUrlNeedsNoDeepStack)
{
    const std::string host(200000, 'a');
    RunOnStack(SMALL_STACK, [&host]() {
        EXPECT_EQ(OHOS::Vorn::StringUtils::GetDomainFromUrl("https://" + host + ":8443/x"), host);
        EXPECT_EQ(OHOS::Vorn::StringUtils::GetDomainFromUrl(host), host);
    });
}

class FuzzRegressionIpcTest : public testing::Test {
protected:
    sptr<OHOS::Vorn::VornSA> sa_ = new OHOS::Vorn::VornSA(OHOS::Vorn::VORN_SA_ID, false);
    VornTools::RawServiceClient client_ {HostPlatform::MakeRemoteProxy(sa_)};
    HostPlatform::LogCapture logs_;
};

// request_parser_fuzzer: a deeply nested "proxyParam" was copied before it was read, and the
// copy recursed once per level on the IPC thread.
TEST_F(FuzzRegressionIpcTest, DeeplyNestedProxyParamIsReadInPlace)
{
    constexpr size_t DEPTH = 100000;
    const std::string request = R"({"saType":"gns","proxyParam":{"proxyUrl":"p","x":)" + std::string(DEPTH, '[') +
        std::string(DEPTH, ']') + "}}";
    sptr<VornTest::ResponseRecorder> recorder = new VornTest::ResponseRecorder();
    RunOnStack(1024 * 1024, [&]() {
        EXPECT_EQ(client_.Request(request, HostPlatform::MakeRemoteProxy(recorder)).result, OHOS::Vorn::SUCCESS);
    });
    // Accepted; a "gns" request without URLs then ends on the binder pool without a response.
    ASSERT_TRUE(logs_.WaitFor("VornSAStub:: GetAllServiceUrl failed", 10s));
    EXPECT_TRUE(HostPlatform::FfrtWaitIdle(10s));
    EXPECT_EQ(recorder->Count(), 0u);
}

// vorn_sa_stub_fuzzer: an empty raw buffer written into a parcel that had no storage yet made
// the parcel pad through a null pointer.
TEST_F(FuzzRegressionIpcTest, EmptyRawBufferWhereTheTokenBelongs)
{
    OHOS::MessageParcel data;
    ASSERT_TRUE(data.WriteBuffer("", 0));
    OHOS::MessageParcel reply;
    OHOS::MessageOption option;
    EXPECT_EQ(HostPlatform::MakeRemoteProxy(sa_)->SendRequest(1, data, reply, option), OHOS::Vorn::ERR_READ_DESCRIPTOR);
    EXPECT_EQ(VornTest::ServiceLines(logs_, LOG_ERROR, "read descriptor failed."), 1u);
}
} // namespace
