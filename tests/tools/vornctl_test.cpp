#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "omsa_log.h"
#include "vornctl_fixture.h"

namespace VornTest {
namespace {
using Lines = std::vector<std::string>;

class VornctlTest : public VornctlFixture {};

// The request given inline, from a file or on standard input, by each caller allowed to ask.
TEST_F(VornctlTest, SuccessResponseIsPrintedAsReceivedAndExitsZero)
{
    server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, "hello"));
    const std::string request = RequestFor({Url("/ok")});
    const std::string file = "@" + dir_.WriteFile("request.json", request);
    ProcessOptions options;
    options.input = request;
    for (const auto &[caller, source] :
        {std::pair<std::string, std::string> {"native", request}, {"system-app", file}, {"native", "-"}}) {
        ProcessResult run = Vornctl({"request", "--caller", caller, source}, options);
        EXPECT_EQ(run.exitCode, 0) << caller << " " << source << "\n" << run.err;
        std::vector<nlohmann::json> responses = Responses(run);
        ASSERT_EQ(responses.size(), 1U) << run.out;
        EXPECT_EQ(responses[0]["code"], 200);
        EXPECT_EQ(responses[0]["body"], "hello");
        EXPECT_EQ(Outcome(run), (Lines {"reply: 0", "result: 0"}));
        // The service's own log goes to standard error, ahead of the outcome.
        EXPECT_NE(run.err.find("VornSAStub::OnRemoteRequest enter"), std::string::npos);
    }
    EXPECT_EQ(server_->RequestCount("/ok"), 3U);
}

TEST_F(VornctlTest, RefusedTransactionsExitThreeWithTheirReply)
{
    struct Case {
        std::vector<std::string> options;
        Lines outcome;
    };
    const std::vector<Case> cases {
        {{"--caller", "app"}, {"reply: 2", "result: 2"}},
        {{"--descriptor", "wrong"}, {"reply: none", "result: 3"}},
        {{"--no-callback"}, {"reply: 4", "result: 4"}},
    };
    server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, "hello"));
    for (const Case &testCase : cases) {
        std::vector<std::string> args {"request"};
        args.insert(args.end(), testCase.options.begin(), testCase.options.end());
        args.push_back(RequestFor({Url("/ok")}));
        ProcessResult run = Vornctl(args);
        EXPECT_EQ(run.exitCode, 3) << testCase.options[0] << "\n" << run.err;
        EXPECT_EQ(run.out, "") << testCase.options[0];
        EXPECT_EQ(Outcome(run), testCase.outcome) << testCase.options[0];
    }
    EXPECT_EQ(server_->RequestCount(), 0U);
}

TEST_F(VornctlTest, EventReachesTheAnalyticsClientWithTheGivenUid)
{
    OmsaLog omsa;
    ProcessOptions options;
    options.env = {{"VORN_OMSA_RESULT", std::nullopt}};
    std::string event = R"({"eventId":"vornctl_test","content":"{\"screen\":\"home\"}"})";
    ProcessResult run = Vornctl({"event", "--uid", "4321", event}, options);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(Outcome(run), (Lines {"reply: 0", "result: 0"}));

    std::vector<nlohmann::json> reports = omsa.Calls("OnEvent");
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0]["eventId"], "vornctl_test");
    EXPECT_EQ(reports[0]["data"], (nlohmann::json {{"screen", "home"}, {"kitUid", "4321"}}));
}

TEST_F(VornctlTest, RootHoldsTheServerConfigurationThatRoutesTheRequest)
{
    nlohmann::json config = {{"qel_server",
        {
            {"qel_base_url", {Url("/routing")}},
            {"qel_query_endpoint", "/query"},
        }}};
    dir_.WriteFile("root/system/etc/tarnix/vorn_depot/qel_sdk_server_config.json", config.dump());
    server_->Respond("/routing/query", VornTestbed::HttpResponse::Text(200, "routed"));
    std::string request = nlohmann::json {{"caFile", files_.caFile}}.dump();

    ProcessResult run = Vornctl({"request", "--root", dir_.Path("root"), request});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    std::vector<nlohmann::json> responses = Responses(run);
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0]["body"], "routed");
}

TEST_F(VornctlTest, UsageAndInstallationErrorsExitWithOneLine)
{
    const std::vector<std::vector<std::string>> cases {
        {},
        {"ping"},
        {"request"},
        {"event", "{}", "{}"},
        {"request", "-", "-"},
        {"request", "--dump=yes", "{}"},
        {"event", "--dump", "{}"},
        {"dump", "--root"},
        {"request", "--bogus", "{}"},
        {"request", "--caller", "root", "{}"},
        {"request", "--uid", "-1", "{}"},
        {"request", "--wait-ms"},
        {"event", "--no-callback", "{}"},
        {"request", "@" + dir_.Path("missing.json")},
        {"request", "--root", dir_.Path("missing"), "{}"},
        {"demo", "now"},
        {"demo", "--rtt-ms", "fast"},
    };
    auto expectOneLine = [this](const std::vector<std::string> &args, int exitCode) {
        ProcessResult run = Vornctl(args);
        std::string shown = args.empty() ? "(none)" : args[0] + " " + (args.size() > 1 ? args[1] : "");
        EXPECT_EQ(run.exitCode, exitCode) << shown;
        EXPECT_EQ(run.out, "") << shown;
        Lines lines = SplitLines(run.err);
        ASSERT_EQ(lines.size(), 1U) << shown << "\n" << run.err;
        EXPECT_EQ(lines[0].rfind("vornctl: ", 0), 0U) << lines[0];
    };
    for (const std::vector<std::string> &args : cases) {
        expectOneLine(args, 64);
    }
    // A service library that cannot be loaded is the installation's fault, not the usage's.
    expectOneLine({"request", "--library", dir_.Path("libnothing.z.so"), "{}"}, 69);
}

TEST_F(VornctlTest, SeveralRequestsAreNumberedInArrivalOrderAndExitWithTheWorst)
{
    server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, "hello"));
    server_->Respond("/missing", VornTestbed::HttpResponse::Text(404, "no"));
    const std::string ok = RequestFor({Url("/ok")});
    const std::string missing = RequestFor({Url("/missing")});

    ProcessResult allOk = Vornctl({"request", ok, ok});
    EXPECT_EQ(allOk.exitCode, 0) << allOk.err;
    Lines out = SplitLines(allOk.out);
    ASSERT_EQ(out.size(), 2U) << allOk.out;
    for (size_t i = 0; i < out.size(); ++i) {
        std::string prefix = std::to_string(i + 1) + "\t";
        ASSERT_EQ(out[i].rfind(prefix, 0), 0U) << out[i];
        EXPECT_EQ(nlohmann::json::parse(out[i].substr(prefix.size()))["code"], 200);
    }
    Lines err = SplitLines(allOk.err);
    ASSERT_GE(err.size(), 4U);
    EXPECT_EQ(Lines(err.end() - 4, err.end()), (Lines {"1\treply: 0", "1\tresult: 0", "2\treply: 0", "2\tresult: 0"}));
    // Each request waited for its answer before the next was sent.
    EXPECT_EQ(server_->RequestCount("/ok"), 2U);

    // Any request without a 200 decides the status, wherever it stands; the worst one wins.
    struct Case {
        std::vector<std::string> requests;
        int exitCode;
    };
    const std::vector<Case> cases {
        {{missing, ok}, 1},
        {{ok, missing}, 1},
        {{missing, R"({"saType":"gns"})", ok}, 2},
    };
    for (const Case &testCase : cases) {
        std::vector<std::string> args {"request", "--wait-ms", "5000"};
        args.insert(args.end(), testCase.requests.begin(), testCase.requests.end());
        ProcessResult run = Vornctl(args);
        EXPECT_EQ(run.exitCode, testCase.exitCode) << run.out << run.err;
        EXPECT_EQ(SplitLines(run.out).size(), testCase.requests.size() - (testCase.exitCode == 2 ? 1 : 0));
    }
}

TEST_F(VornctlTest, DumpComesFromTheServiceAndFollowsTheResponses)
{
    ProcessResult help = Vornctl({"dump", "-h"});
    EXPECT_EQ(help.exitCode, 0) << help.err;
    EXPECT_NE(help.out.find("-h           this list"), std::string::npos) << help.out;

    server_->Respond("/ok", VornTestbed::HttpResponse::Text(200, "hello"));
    ProcessResult run = Vornctl({"request", "--dump", RequestFor({Url("/ok")})});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    Lines out = SplitLines(run.out);
    ASSERT_GT(out.size(), 2U) << run.out;
    EXPECT_EQ(nlohmann::json::parse(out[0])["code"], 200);
    EXPECT_EQ(out[1], "vorn service, system ability 66054");
    EXPECT_NE(run.out.find("\nrequests: 1\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\nresponses_2xx: 1\n"), std::string::npos) << run.out;
    EXPECT_EQ(run.out.find(server_->BaseUrl()), std::string::npos);
    EXPECT_EQ(Outcome(run), (Lines {"reply: 0", "result: 0"}));
}

} // namespace
} // namespace VornTest
