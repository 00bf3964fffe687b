#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "hostile_server_fixture.h"
#include "log_lines.h"

// Hostile servers that cost real time or real memory: one that trickles its body a byte a
// second, and one that sends a hundred megabytes.
// The sanitizers' shadow memory and quarantine change what resident memory means.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VORN_SANITIZED_BUILD
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VORN_SANITIZED_BUILD
#endif
#endif

namespace {
using namespace std::chrono_literals;
using VornTestbed::HttpResponse;
using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;

// A field of /proc/self/status in KiB ("VmHWM", "VmRSS"), or 0.
uint64_t StatusKiB(const std::string &field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(field + ":", 0) == 0) {
            return std::stoull(line.substr(field.size() + 1));
        }
    }
    return 0;
}

// Lowers the peak (VmHWM) to the present resident size, so that the next peak is this test's.
void ResetPeakMemory()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

class HostileServerTimingTest : public VornTest::HostileServerFixture {};

TEST_F(HostileServerTimingTest, TricklingBodyEndsAtTheTenSecondTransferLimit)
{
    HttpResponse trickle = HttpResponse::Text(200, "0123456789abcdefghijklmnopqrstuvwxyz");
    trickle.trickleInterval = 1s;
    server_->Respond("/trickle", trickle);
    const auto start = Clock::now();

    const Outcome outcome = Run(Request({Url("/trickle")}));

    const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    EXPECT_GE(elapsed, 9900);
    EXPECT_LT(elapsed, 14000);
    // The job ends with the transfer, right at the engine's own ten-second wait: either way round
    // the request counts as failed.
    EXPECT_EQ(outcome.code, -1);
    const Json response = OnlyResponse(outcome);
    EXPECT_EQ(response.value("code", 0), -1);
    EXPECT_EQ(response.value("message", ""), "PostHttpsRequest failed");
    EXPECT_EQ(response["statistics"].value("req_error_code", ""), "-1");
    EXPECT_GE(response["statistics"].value("req_total_time", 0u), 9900u);
    // About ten bytes arrived, one a second, before the limit.
    const std::string body = response.value("body", "");
    EXPECT_GE(body.size(), 8u);
    EXPECT_LE(body.size(), 12u);
    EXPECT_EQ(std::string("0123456789abcdefghijklmnopqrstuvwxyz").compare(0, body.size(), body), 0);
    ExpectNextRequestServed();
}

TEST_F(HostileServerTimingTest, HundredMegabyteBodyIsTakenButCannotBeDeliveredOverIpc)
{
    constexpr uint64_t BODY_BYTES = 100ULL * 1024 * 1024;
    HttpResponse huge;
    huge.generatedBodySize = BODY_BYTES;
    server_->Respond("/huge", huge);
    const uint64_t before = StatusKiB("VmRSS");
    ResetPeakMemory();

    const Outcome outcome = Run(Request({Url("/huge")}));

    const uint64_t peak = StatusKiB("VmHWM");
    std::cout << "100 MB body: resident " << before / 1024 << " MiB before, peak " << peak / 1024 << " MiB\n";
    RecordProperty("peak_mib", std::to_string(peak / 1024));
#ifndef VORN_SANITIZED_BUILD
    // The body is held a few times over (received, copied, embedded, serialised), never more.
    EXPECT_LT(peak - before, 6 * BODY_BYTES / 1024);
#endif
    // The transfer succeeds, but a response of over 100 MB does not fit a parcel (200 KiB): the
    // callback proxy does not check its write, so the client is called once with nothing.
    EXPECT_EQ(outcome.code, 0);
    ASSERT_EQ(outcome.responses.size(), 1u);
    EXPECT_EQ(outcome.responses.front(), "");
    EXPECT_EQ(VornTest::ServiceLines(logs_, LOG_INFO, "VornServerLogic::curl request success, to response"), 1u);
    ExpectNextRequestServed();
}
} // namespace
