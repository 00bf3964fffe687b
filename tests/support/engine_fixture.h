#ifndef VORN_TESTS_SUPPORT_ENGINE_FIXTURE_H
#define VORN_TESTS_SUPPORT_ENGINE_FIXTURE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "ffrt_host.h"
#include "hilog_host.h"
#include "https_fixture.h"
#include "i_vorn_request_callback.h"
#include "log_lines.h"
#include "response_recorder.h"
#include "vorn_server_logic.h"

namespace VornTest {
// A local HTTPS server plus a client callback as the engine holds it, for tests that run
// requests through the engine. Teardown stops the server, which ends its stalls, and waits
// until every attempt has finished, so that nothing spills into the next test.
class EngineFixture : public HttpsFixture {
protected:
    explicit EngineFixture(std::chrono::seconds idleTimeout) : idleTimeout_(idleTimeout) {}

    void SetUp() override
    {
        HttpsFixture::SetUp();
        NewCallback();
    }

    void TearDown() override
    {
        server_->Stop();
        EXPECT_TRUE(HostPlatform::FfrtWaitIdle(idleTimeout_));
    }

    // A fresh callback object, with no responses recorded yet.
    void NewCallback()
    {
        recorder_ = new VornTest::ResponseRecorder();
        callback_ = recorder_->RemoteCallback();
        ASSERT_NE(callback_, nullptr);
    }

    // Runs one request to callback_ and returns GetAllServiceUrl's code once the job and every
    // attempt have finished.
    int32_t RunToIdle(const OHOS::Vorn::VornInitConfigParser::VornRequestInfo &info)
    {
        int32_t code = std::make_shared<OHOS::Vorn::VornServerLogic>(info)->GetAllServiceUrl(callback_);
        EXPECT_TRUE(HostPlatform::FfrtWaitIdle(idleTimeout_));
        return code;
    }

    size_t Lines(LogLevel level, const std::string &text) const { return ServiceLines(logs_, level, text); }

    OHOS::sptr<VornTest::ResponseRecorder> recorder_;
    OHOS::sptr<OHOS::Vorn::IVornRequestCallback> callback_;
    HostPlatform::LogCapture logs_;

private:
    std::chrono::seconds idleTimeout_;
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_ENGINE_FIXTURE_H
