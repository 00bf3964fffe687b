// The service's dump as the platform's dump tool reaches it: the remote object's Dump with a
// real file descriptor, through the IPC layer, after real requests against a local HTTPS server.
#include <cstdio>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "eventhandler_host.h"
#include "ffrt_host.h"
#include "ipc_host.h"
#include "iservice_registry.h"
#include "local_server_fixture.h"
#include "omsa_log.h"
#include "raw_service_client.h"
#include "response_recorder.h"
#include "scoped_env.h"
#include "vorn_sa.h"

using namespace std::chrono_literals;

namespace VornTest {
namespace {
using VornTools::RawServiceClient;
using Counters = std::map<std::string, long long>;

// An id of its own, so that the test never replaces the service the library registered.
constexpr int32_t DUMP_SA_ID = 66104;

// Values that only the requests and the event below carry: none may appear in a dump.
const std::vector<std::string> PRIVATE_TEXTS {"dump-secret-path", "q-secret-query", "X-Dump-Secret", "hdr-secret-value",
    "body-secret-text", "evt.dump.secret", "content-secret-value", "127.0.0.1"};

class VornSADumpTest : public LocalServerFixture {
protected:
    void SetUp() override
    {
        LocalServerFixture::SetUp();
        // Started once for the process: a started ability publishes itself and stays published.
        static const bool started = [] {
            OHOS::sptr<OHOS::Vorn::VornSA> ability = new OHOS::Vorn::VornSA(DUMP_SA_ID, true);
            ability->OnStart();
            return true;
        }();
        ASSERT_TRUE(started);
        // A proxy, as another process holds the service: Dump goes through the IPC layer.
        service_ =
            OHOS::SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->CheckSystemAbility(DUMP_SA_ID);
        ASSERT_NE(service_, nullptr);
    }

    // What the service writes for `args`, read back from the file whose descriptor it was given.
    std::string Dump(const std::vector<std::u16string> &args = {}) const
    {
        std::unique_ptr<std::FILE, decltype(&std::fclose)> file(std::tmpfile(), &std::fclose);
        EXPECT_NE(file, nullptr);
        if (file == nullptr) {
            return {};
        }
        EXPECT_EQ(service_->Dump(fileno(file.get()), args), 0);
        return ReadFile("/proc/self/fd/" + std::to_string(fileno(file.get())));
    }

    // The "name: number" lines of a dump.
    static Counters Numbers(const std::string &dump)
    {
        Counters numbers;
        std::istringstream lines(dump);
        for (std::string line; std::getline(lines, line);) {
            size_t colon = line.find(": ");
            if (colon == std::string::npos || line.find_first_not_of("0123456789", colon + 2) != std::string::npos) {
                continue;
            }
            numbers[line.substr(0, colon)] = std::stoll(line.substr(colon + 2));
        }
        return numbers;
    }

    std::string RequestFor(const std::string &path) const
    {
        const nlohmann::json request = {{"baseUrls", {Url(path)}}, {"caFile", files_.caFile},
            {"requestHeaders", {"X-Dump-Secret: hdr-secret-value"}}, {"requestBody", {"body-secret-text"}}};
        return request.dump();
    }

    // Sends one request and waits until it has been answered and everything it started is done.
    void Send(const std::string &paramStr, size_t expectedResponses)
    {
        OHOS::sptr<ResponseRecorder> recorder = new ResponseRecorder();
        RawServiceClient client(service_);
        EXPECT_EQ(client.Request(paramStr, recorder->RemoteCallback()->AsObject()).result, 0);
        EXPECT_TRUE(recorder->WaitForCount(expectedResponses, 20s));
        EXPECT_TRUE(HostPlatform::FfrtWaitIdle(20s));
        EXPECT_EQ(recorder->Count(), expectedResponses);
    }

    OHOS::sptr<OHOS::IRemoteObject> service_;
};

TEST_F(VornSADumpTest, CountersFollowAKnownSequenceAndNoPrivateValueShows)
{
    OmsaLog omsa;
    ScopedEnv acceptEvents("VORN_OMSA_RESULT", std::nullopt);
    server_->Respond("/dump-secret-path/ok", VornTestbed::HttpResponse::Text(200, "body-secret-text"));
    server_->Respond("/dump-secret-path/missing", VornTestbed::HttpResponse::Text(404, "body-secret-text"));
    const Counters before = Numbers(Dump());

    Send(RequestFor("/dump-secret-path/ok?q-secret-query"), 1);
    Send(RequestFor("/dump-secret-path/missing"), 1);
    {
        // Refused before it is read: an application may not call.
        HostPlatform::ScopedCallerIdentity app(HostPlatform::AppCaller(20010042));
        OHOS::sptr<ResponseRecorder> recorder = new ResponseRecorder();
        EXPECT_NE(RawServiceClient(service_)
                      .Request(RequestFor("/dump-secret-path/ok?q-secret-query"),
                          recorder->RemoteCallback()->AsObject())
                      .result,
            0);
    }
    EXPECT_EQ(RawServiceClient(service_)
                  .Event(R"({"eventId":"evt.dump.secret","content":"{\"k\":\"content-secret-value\"}"})")
                  .result,
        0);
    ASSERT_TRUE(HostPlatform::EventRunnersWaitIdle(10s));
    ASSERT_EQ(omsa.Calls("OnEvent").size(), 1u);

    const std::string dump = Dump();
    const Counters after = Numbers(dump);
    auto delta = [&](const std::string &name) {
        EXPECT_TRUE(after.count(name)) << name << " missing from\n" << dump;
        return after.count(name) ? after.at(name) - before.at(name) : -1;
    };
    const Counters expected = {{"requests", 2}, {"responses_2xx", 1}, {"responses_4xx", 1}, {"responses_5xx", 0},
        {"responses_failed", 0}, {"events_reported", 1}, {"events_dropped", 0}};
    for (const auto &[name, count] : expected) {
        EXPECT_EQ(delta(name), count) << name;
    }
    EXPECT_EQ(after.at("requests_in_flight"), 0);
    EXPECT_EQ(after.at("attempts_in_flight"), 0);
    EXPECT_NE(dump.find("state: running\n"), std::string::npos) << dump;
    for (const std::string &text : PRIVATE_TEXTS) {
        EXPECT_EQ(dump.find(text), std::string::npos) << text << " in\n" << dump;
    }
    EXPECT_EQ(dump.find(files_.caFile), std::string::npos);
    EXPECT_EQ(dump.find(std::to_string(server_->Port())), std::string::npos) << dump;
}

} // namespace
} // namespace VornTest
