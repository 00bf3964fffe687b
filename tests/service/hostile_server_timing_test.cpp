#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "gzip_encoder.h"
#include "hostile_server_fixture.h"
#include "process_status.h"

// Hostile servers that cost real time or real memory: one that trickles its body a byte a
// second, and ones that send far more than a response can carry, plainly or as a gzip bomb.
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

// Lowers the peak (VmHWM) to the present resident size, so that the next peak is this test's.
void ResetPeakMemory()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

class HostileServerTimingTest : public VornTest::HostileServerFixture {
protected:
    void ExpectTooLargeInLittleMemory(const std::string &path, const char *what);
};

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
    ExpectTransportFailure(outcome);
    const Json response = OnlyResponse(outcome);
    EXPECT_GE(response["statistics"].value("req_total_time", 0u), 9900u);
    // About ten bytes arrived, one a second, before the limit.
    const std::string body = response.value("body", "");
    EXPECT_GE(body.size(), 8u);
    EXPECT_LE(body.size(), 12u);
    EXPECT_EQ(std::string("0123456789abcdefghijklmnopqrstuvwxyz").compare(0, body.size(), body), 0);
    ExpectNextRequestServed();
}

// A body that cannot fit stops the transfer after about a parcel's worth: memory stays flat
// whatever the server sends, and the client gets one failure instead of an empty string.
void HostileServerTimingTest::ExpectTooLargeInLittleMemory(const std::string &path, const char *what)
{
    const uint64_t before = VornTestbed::ProcessStatus::Read().rssKib;
    ResetPeakMemory();

    const Outcome outcome = Run(Request({Url(path)}));

    const uint64_t peak = VornTestbed::ProcessStatus::Read().hwmKib;
    std::cout << what << ": resident " << before << " KiB before, peak " << peak << " KiB\n";
    RecordProperty("peak_kib_above_idle", std::to_string(peak - before));
#ifndef VORN_SANITIZED_BUILD
    EXPECT_LT(peak - before, 8u * 1024) << what;
#endif
    EXPECT_EQ(outcome.code, -1);
    ASSERT_EQ(outcome.responses.size(), 1u);
    ExpectTooLarge(outcome.responses.front(), "200");
    ExpectNextRequestServed();
}

TEST_F(HostileServerTimingTest, OneMebibyteBodyGivesOneTooLargeFailureInLittleMemory)
{
    HttpResponse big;
    big.generatedBodySize = 1u << 20;
    server_->Respond("/big", big);
    ExpectTooLargeInLittleMemory("/big", "1 MiB body");
}

TEST_F(HostileServerTimingTest, GzipBombGivesOneTooLargeFailureInLittleMemory)
{
    // 100 MiB compressed twice ("gzip, gzip") comes to a few KiB on the wire.
    constexpr uint64_t DECODED_BYTES = 100ULL << 20;
    VornTestbed::GzipEncoder inner;
    const std::string chunk(1 << 20, 'x');
    for (uint64_t left = DECODED_BYTES; left > 0; left -= chunk.size()) {
        ASSERT_TRUE(inner.Append(chunk));
    }
    ASSERT_TRUE(inner.Finish());
    VornTestbed::GzipEncoder outer;
    ASSERT_TRUE(outer.Append(inner.Output()));
    ASSERT_TRUE(outer.Finish());
    const std::string &wire = outer.Output();
    std::cout << "gzip bomb: " << wire.size() << " bytes on the wire\n";
    EXPECT_LT(wire.size(), 16u * 1024);
    HttpResponse bomb;
    bomb.rawBytes =
        "HTTP/1.1 200 OK\r\nContent-Encoding: gzip, gzip\r\nContent-Length: " + std::to_string(wire.size()) +
        "\r\nConnection: close\r\n\r\n" + wire;
    server_->Respond("/bomb", bomb);

    ExpectTooLargeInLittleMemory("/bomb", "gzip bomb");
}
} // namespace
