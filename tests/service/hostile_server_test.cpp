#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <openssl/tls1.h>

#include "callback_parcel_limit.h"
#include "hostile_server_fixture.h"

// Servers that break off, flood the client with header lines, speak an old protocol, present a
// certificate that must be refused, send bytes that are not UTF-8 or more than a client's
// callback can carry: each request ends in the outcome the request rules predict, and the
// service goes on serving.
namespace {
using VornTestbed::CertificateOptions;
using VornTestbed::HttpResponse;
using Json = nlohmann::json;

using HostileServerTest = VornTest::HostileServerFixture;

constexpr size_t MAX_RESPONSE_SIZE = OHOS::Vorn::CallbackParcelLimit::MAX_RESPONSE_SIZE;

TEST_F(HostileServerTest, BodyCutOffMidwayFailsWithThePartReceived)
{
    const std::string body(5000, 'b');
    HttpResponse cut = HttpResponse::Text(200, body);
    cut.headerLines = {"Cache-Control: max-age=5"};
    cut.closeAfterBodyBytes = 1000;
    server_->Respond("/cut", cut);

    const Outcome outcome = Run(Request({Url("/cut")}));

    ExpectTransportFailure(outcome);
    const Json response = OnlyResponse(outcome);
    const std::string received = response.value("body", "");
    EXPECT_LE(received.size(), 1000u);
    EXPECT_EQ(body.compare(0, received.size(), received), 0);
    // The head had arrived in full, so its Cache-Control value is passed on.
    EXPECT_NE(response.value("header", "").find("Cache-Control: 5\r\n"), std::string::npos);
    ExpectNextRequestServed();
}

TEST_F(HostileServerTest, TenThousandHeaderLinesAreTakenWhole)
{
    constexpr int LINES = 10000;
    HttpResponse flood = HttpResponse::Text(200, "flooded");
    for (int i = 0; i < LINES; ++i) {
        flood.headerLines.push_back("X-F: " + std::to_string(i));
    }
    flood.headerLines[LINES / 2] = "Cache-Control: max-age=77";
    server_->Respond("/flood", flood);

    // Clients get only the Cache-Control values in the synthetic head block...
    Json response = OnlyResponse(Run(Request({Url("/flood")})));
    EXPECT_EQ(response.value("code", 0), 200);
    EXPECT_EQ(response.value("body", ""), "flooded");
    const std::string synthetic = response.value("header", "");
    EXPECT_NE(synthetic.find("Cache-Control: 77\r\n"), std::string::npos);
    EXPECT_EQ(synthetic.find("X-F:"), std::string::npos);

    // ...except "gns" clients, who get every line as received.
    auto gns = Request({Url("/flood")});
    gns.saType = "gns";
    response = OnlyResponse(Run(gns));
    EXPECT_EQ(response.value("code", 0), 200);
    const std::string raw = response.value("header", "");
    size_t lines = 0;
    for (size_t at = raw.find("\r\nX-F: "); at != std::string::npos; at = raw.find("\r\nX-F: ", at + 1)) {
        ++lines;
    }
    EXPECT_EQ(lines, static_cast<size_t>(LINES - 1));
    ExpectNextRequestServed();
}

TEST_F(HostileServerTest, RefusedTlsEndsTheAttemptBeforeTheRequestIsSent)
{
    struct Case {
        const char *what;
        CertificateOptions certificate;
        int maxProtocol;
    };
    const std::vector<Case> cases = {
        {"TLS 1.1 only", CertificateOptions(), TLS1_1_VERSION},
        {"expired certificate", CertificateOptions::Expired(), 0},
        {"certificate for another host", CertificateOptions::ForHost("vorn-elsewhere.invalid"), 0},
    };
    for (const Case &c : cases) {
        auto request = Request({});
        VornTestbed::LocalHttpsServer &server = StartServer(c.certificate, request, c.maxProtocol);
        server.Respond("/x", HttpResponse::Text(200, "must not arrive"));
        request.baseUrls = {server.BaseUrl() + "/x"};

        const Outcome outcome = Run(request);

        ExpectTransportFailure(outcome);
        EXPECT_EQ(OnlyResponse(outcome).value("body", "?"), "") << c.what;
        EXPECT_EQ(server.RequestCount(), 0u) << c.what;
        ExpectNextRequestServed();
    }
}

TEST_F(HostileServerTest, InvalidUtf8InAHeaderValueOnlyHurtsWhereItIsPassedOn)
{
    HttpResponse bad = HttpResponse::Text(200, "fine body");
    bad.headerLines = {"X-Name: caf\xe9", "Cache-Control: max-age=60"};
    server_->Respond("/bad-other", bad);
    bad.headerLines = {"Cache-Control: max-age=\xff\xfe"};
    server_->Respond("/bad-cache", bad);

    // The synthetic head block leaves an ordinary header out, so the response is intact.
    const Json response = OnlyResponse(Run(Request({Url("/bad-other")})));
    EXPECT_EQ(response.value("code", 0), 200);
    EXPECT_NE(response.value("header", "").find("Cache-Control: 60\r\n"), std::string::npos);
    EXPECT_EQ(ErrorLines(), 0u);

    // Passed on, in a Cache-Control value or in the raw heads of a "gns" request, it cannot be
    // serialised: that attempt fails with one error line and the client hears nothing.
    auto gns = Request({Url("/bad-other")});
    gns.saType = "gns";
    for (const auto &request : {Request({Url("/bad-cache")}), gns}) {
        logs_.Clear();
        const Outcome outcome = Run(request);
        EXPECT_EQ(outcome.code, -1);
        EXPECT_TRUE(outcome.responses.empty());
        EXPECT_EQ(ErrorLines(), 1u);
        EXPECT_EQ(logs_.CountContaining("VornServerLogic attempt failed with exception"), 1u);
        ExpectNextRequestServed();
    }
}

TEST_F(HostileServerTest, ABodyJustUnderTheLimitArrivesWhole)
{
    server_->Respond("/one", HttpResponse::Text(200, "1"));
    const size_t overhead = Run(Request({Url("/one")})).responses.at(0).size() - 1;
    // Leaves room for the timing figures, whose digits vary from run to run.
    constexpr size_t TIMING_SLACK = 24;
    const std::string body(MAX_RESPONSE_SIZE - overhead - TIMING_SLACK, 'u');
    server_->Respond("/under", HttpResponse::Text(200, body));

    const Outcome outcome = Run(Request({Url("/under")}));

    EXPECT_EQ(outcome.code, 0);
    ASSERT_EQ(outcome.responses.size(), 1u);
    EXPECT_LE(outcome.responses.front().size(), MAX_RESPONSE_SIZE);
    EXPECT_GT(outcome.responses.front().size(), MAX_RESPONSE_SIZE - 2 * TIMING_SLACK);
    const Json response = Json::parse(outcome.responses.front());
    EXPECT_EQ(response.value("code", 0), 200);
    EXPECT_EQ(response.value("body", ""), body);
    EXPECT_EQ(ErrorLines(), 0u);
}

TEST_F(HostileServerTest, ABodyThatCannotFitGivesOneTooLargeFailureEvenBeforeTheLastUrl)
{
    struct Case {
        const char *what;
        HttpResponse response;
        std::string status;
    };
    HttpResponse mebibyte;
    mebibyte.generatedBodySize = 1u << 20;
    HttpResponse notFound = mebibyte;
    notFound.status = 404;
    // 110 000 raw bytes would fit; escaped they take twice that.
    HttpResponse quotes = HttpResponse::Text(200, std::string(110000, '"'));
    const std::vector<Case> cases = {{"1 MiB body", mebibyte, "200"}, {"1 MiB error page", notFound, "404"},
        {"quotes", quotes, "200"}};
    for (const Case &c : cases) {
        server_->Respond("/big", c.response);
        logs_.Clear();

        const Outcome outcome = Run(Request({Url("/big"), Url("/ok")}));

        // The next URL is still tried, and its answer follows.
        EXPECT_EQ(outcome.code, 0) << c.what;
        ASSERT_EQ(outcome.responses.size(), 2u) << c.what;
        ExpectTooLarge(outcome.responses[0], c.status);
        EXPECT_EQ(Json::parse(outcome.responses[1]).value("body", ""), "served") << c.what;
    }
    ExpectNextRequestServed();
}

TEST_F(HostileServerTest, AResponseGrownTooLargeFromTheRequestIsReplacedByTheFailure)
{
    // The service list comes back in the synthetic heads, so a request can outgrow the parcel
    // with a server answering nothing at all.
    server_->Respond("/empty", HttpResponse::Text(200, ""));
    auto request = Request({Url("/empty")});
    request.requestBody = {std::string(MAX_RESPONSE_SIZE, 's')};

    const Outcome outcome = Run(request);

    EXPECT_EQ(outcome.code, -1);
    ASSERT_EQ(outcome.responses.size(), 1u);
    ExpectTooLarge(outcome.responses.front(), "200");
    ExpectNextRequestServed();
}
} // namespace
