#ifndef VORN_TESTS_SUPPORT_HOSTILE_SERVER_FIXTURE_H
#define VORN_TESTS_SUPPORT_HOSTILE_SERVER_FIXTURE_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "certificate_authority.h"
#include "engine_fixture.h"
#include "hilog_host.h"
#include "local_https_server.h"
#include "log_lines.h"

namespace VornTest {
// Requests through the engine against servers that misbehave. The fixture's own server answers
// "/ok" normally, so that every test can show that the service still serves the next request.
class HostileServerFixture : public EngineFixture {
protected:
    struct Outcome {
        int32_t code = 0; // what GetAllServiceUrl returned
        std::vector<std::string> responses; // what the client received, in order
    };

    HostileServerFixture() : EngineFixture(std::chrono::seconds(30)) {}

    void SetUp() override
    {
        EngineFixture::SetUp();
        server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, "served"));
    }

    void TearDown() override
    {
        for (auto &server : extraServers_) {
            server->Stop();
        }
        EngineFixture::TearDown();
    }

    // Runs one request with a callback of its own.
    Outcome Run(const OHOS::Vorn::VornInitConfigParser::VornRequestInfo &info)
    {
        NewCallback();
        Outcome outcome;
        outcome.code = RunToIdle(info);
        outcome.responses = recorder_->Responses();
        return outcome;
    }

    // The one response of `outcome`, parsed; null when there is not exactly one.
    static nlohmann::json OnlyResponse(const Outcome &outcome)
    {
        EXPECT_EQ(outcome.responses.size(), 1u);
        return outcome.responses.size() == 1 ? nlohmann::json::parse(outcome.responses.front()) : nlohmann::json();
    }

    void ExpectNextRequestServed()
    {
        const Outcome next = Run(Request({Url("/ok")}));
        EXPECT_EQ(next.code, 0);
        const nlohmann::json response = OnlyResponse(next);
        EXPECT_EQ(response.value("code", 0), 200);
        EXPECT_EQ(response.value("body", ""), "served");
    }

    // A transfer that never completed: the last URL reports status -1 with what arrived.
    static void ExpectTransportFailure(const Outcome &outcome)
    {
        EXPECT_EQ(outcome.code, -1);
        const nlohmann::json response = OnlyResponse(outcome);
        EXPECT_EQ(response.value("code", 0), -1);
        EXPECT_EQ(response.value("message", ""), "PostHttpsRequest failed");
        EXPECT_EQ(response["statistics"].value("req_error_code", ""), "-1");
    }

    size_t ErrorLines() const { return VornTest::CountLevel(logs_, LOG_ERROR, "VornService"); }

    // The failure that replaces a response the callback cannot carry: the server answered
    // `status`, and one error line gives the size the response had reached.
    void ExpectTooLarge(const std::string &response, const std::string &status)
    {
        const nlohmann::json failure = nlohmann::json::parse(response);
        EXPECT_EQ(failure.value("code", 0), -1);
        EXPECT_EQ(failure.value("message", ""), "Response too large");
        EXPECT_EQ(failure.value("header", "?"), "");
        EXPECT_EQ(failure.value("body", "?"), "");
        ASSERT_TRUE(failure.contains("statistics"));
        EXPECT_EQ(failure["statistics"].value("req_error_code", ""), status);
        EXPECT_GE(failure["statistics"].value("req_end_time", 0u), failure["statistics"].value("req_start_time", 1u));
        EXPECT_EQ(ErrorLines(), 1u);
        EXPECT_EQ(logs_.CountContaining("VornServerLogic response too large: "), 1u);
    }

    // A further server with its own certificate (from its own CA) and TLS settings. `request`
    // is pointed at that CA, so that only what the options change can fail.
    VornTestbed::LocalHttpsServer &StartServer(const VornTestbed::CertificateOptions &certificate,
        OHOS::Vorn::VornInitConfigParser::VornRequestInfo &request, int maxProtocol = 0)
    {
        auto files =
            VornTestbed::MakeCertificateFiles(dir_.Path("pki" + std::to_string(extraServers_.size())), certificate);
        EXPECT_TRUE(files.has_value());
        auto options = VornTestbed::ServerOptions::Tls(*files);
        options.maxProtocol = maxProtocol;
        extraServers_.push_back(std::make_unique<VornTestbed::LocalHttpsServer>(options));
        EXPECT_TRUE(extraServers_.back()->Start());
        request.caFile = files->caFile;
        return *extraServers_.back();
    }

private:
    std::vector<std::unique_ptr<VornTestbed::LocalHttpsServer>> extraServers_;
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_HOSTILE_SERVER_FIXTURE_H
