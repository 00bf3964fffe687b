#ifndef VORN_TESTS_SUPPORT_TRANSPORT_FIXTURE_H
#define VORN_TESTS_SUPPORT_TRANSPORT_FIXTURE_H

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "https_fixture.h"
#include "vorn_http_logic.h"

namespace VornTest {
// Transfers through the HTTP layer alone, one HttpLogic per request, against a local HTTPS server.
class TransportFixture : public HttpsFixture {
protected:
    // One finished transfer: its result, how the size limit ended it, then heads and body as read.
    struct Outcome {
        long status;
        bool tooLarge;
        size_t reached;
        long responseStatus;
        std::string heads;
        std::string body;
    };

    static void SetUpTestSuite() { ASSERT_TRUE(OHOS::Vorn::HttpLogic::GlobalInit()); }

    // `limit` caps the escaped size of heads and body, as the engine does for the callback parcel.
    static Outcome Post(const OHOS::Vorn::VornInitConfigParser::VornRequestInfo &info, const std::string &url,
        size_t limit = SIZE_MAX)
    {
        OHOS::Vorn::HttpLogic logic(info, url);
        EXPECT_EQ(logic.InitHttpLogic(), 0);
        if (limit != SIZE_MAX) {
            logic.LimitResponseSize(limit);
        }
        const long status = logic.PostHttpsRequest();
        return {status, logic.ResponseTooLarge(), logic.ResponseSizeReached(), logic.GetResponseStatus(),
            logic.GetResponseHeads(), logic.GetResponseBody()};
    }
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_TRANSPORT_FIXTURE_H
