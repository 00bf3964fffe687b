#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "vornctl_fixture.h"

namespace VornTest {
namespace {
class VornctlTimingTest : public VornctlFixture {
protected:
    // The first URL answers only after the service has moved on to the second, which answers at once.
    std::string RaceRequest(std::chrono::milliseconds slowDelay = std::chrono::milliseconds(1500))
    {
        VornTestbed::HttpResponse slow = VornTestbed::HttpResponse::Text(200, "slow");
        slow.delay = slowDelay;
        server_->Respond("/slow", slow);
        server_->Respond("/fast", VornTestbed::HttpResponse::Text(200, "fast"));
        return RequestFor({Url("/slow"), Url("/fast")});
    }

    static std::vector<std::string> Bodies(const ProcessResult &run)
    {
        std::vector<std::string> bodies;
        for (const nlohmann::json &response : Responses(run)) {
            bodies.push_back(response.value("body", ""));
        }
        return bodies;
    }
};

TEST_F(VornctlTimingTest, FirstResponseEndsTheRunUnlessAllCollectsEveryOneInArrivalOrder)
{
    const std::string request = RaceRequest();
    ProcessResult first = Vornctl({"request", request});
    EXPECT_EQ(first.exitCode, 0) << first.err;
    EXPECT_EQ(Bodies(first), (std::vector<std::string> {"fast"}));
    ProcessResult all = Vornctl({"request", "--all", request});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_EQ(Bodies(all), (std::vector<std::string> {"fast", "slow"}));
}

TEST_F(VornctlTimingTest, AllStopsAtTheWaitLimit)
{
    std::string request = RaceRequest(std::chrono::milliseconds(5000));
    ProcessResult run = Vornctl({"request", "--all", "--wait-ms", "2500", request});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(Bodies(run), (std::vector<std::string> {"fast"}));
    EXPECT_LT(run.elapsed, std::chrono::milliseconds(4500));
}

TEST_F(VornctlTimingTest, DemoTellsTheRaceAndCleansUp)
{
    ProcessResult run = Vornctl({"demo"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_NE(run.out.find("/primary/v1/service-urls/query?appId=demo"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("/fallback/v1/service-urls/query?appId=demo"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("overtook"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("answered too"), std::string::npos) << run.out;
    // The service's log is kept out of the story.
    EXPECT_EQ(run.out.find("VornService"), std::string::npos);
    EXPECT_EQ(run.err, "");

    const std::string marker = "removed ";
    size_t at = run.out.rfind(marker);
    ASSERT_NE(at, std::string::npos);
    std::string folder = run.out.substr(at + marker.size());
    folder = folder.substr(0, folder.find(".\n"));
    EXPECT_FALSE(std::filesystem::exists(folder)) << folder;
}

TEST_F(VornctlTimingTest, DemoThroughARelayTimesASecondRequest)
{
    ProcessResult run = Vornctl({"demo", "--rtt-ms", "80"});
    EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    EXPECT_NE(run.out.find("latency relay"), std::string::npos) << run.out;
    std::smatch match;
    const std::regex arrival("Its response arrived ([0-9]+) ms after the call, with code 200\\.");
    ASSERT_TRUE(std::regex_search(run.out, match, arrival)) << run.out;
    // However the connection is had, the request and its answer cross the relay once.
    EXPECT_GE(std::stoi(match[1].str()), 72);
    EXPECT_NE(run.out.find("round trips of 80 ms"), std::string::npos) << run.out;
}
} // namespace
} // namespace VornTest
