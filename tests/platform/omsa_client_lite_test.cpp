#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "omsa_client_lite_api.h"

#include "omsa_log.h"
#include "scoped_env.h"

namespace {
using namespace OHOS::OmsaCloud;

using VornTest::ScopedEnv;

// Every test records into its own file, with the result code left at its default.
class OmsaClientLiteTest : public testing::Test {
protected:
    VornTest::OmsaLog log_;
    ScopedEnv result_ {"VORN_OMSA_RESULT", std::nullopt};
};

TEST_F(OmsaClientLiteTest, SetConfigOptionsRecordsTheMaintenanceUrl)
{
    OmsaConfigLite config;
    config.tag = "vorn";
    config.packageName = "com.vorn.service";
    config.saId = 66054;
    config.maintenanceConfig = std::make_shared<TypeConfigLite>();
    config.maintenanceConfig->collectUrl = "https://collect.invalid/v1";
    config.operationConfig = config.maintenanceConfig;

    EXPECT_EQ(OmsaClientLiteApi::SetConfigOptions(config).code, 0);

    config.maintenanceConfig.reset();
    OmsaClientLiteApi::SetConfigOptions(config);

    std::vector<nlohmann::json> calls = log_.Calls("SetConfigOptions");
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0], nlohmann::json::parse(R"({"op":"SetConfigOptions","tag":"vorn","package":"com.vorn.service",
        "saId":66054,"collectUrl":"https://collect.invalid/v1"})"));
    EXPECT_EQ(calls[1]["collectUrl"], "");
}

TEST_F(OmsaClientLiteTest, OnEventRecordsTypeIdAndData)
{
    OmsaClientLiteApi::OnEvent("vorn", EventTypeLite::OPERATION, "evt_1", {{"uid", "20010"}, {"k", "v"}});
    OmsaClientLiteApi::OnEvent("vorn", EventTypeLite::MAINTENANCE, "evt_2", {});
    // Invalid UTF-8 is replaced, not thrown.
    EXPECT_NO_THROW(OmsaClientLiteApi::OnEvent("t", EventTypeLite::OPERATION, "bad\xff", {{"k", "\xc3"}}));

    std::vector<nlohmann::json> calls = log_.Calls("OnEvent");
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0], nlohmann::json::parse(R"({"op":"OnEvent","tag":"vorn","type":1,"eventId":"evt_1",
        "data":{"uid":"20010","k":"v"}})"));
    EXPECT_EQ(calls[1]["data"], nlohmann::json::object());
    EXPECT_EQ(calls[2]["eventId"], "bad\xef\xbf\xbd");
}

TEST_F(OmsaClientLiteTest, ResultCodeComesFromTheEnvironmentOnEachCall)
{
    struct Case {
        std::optional<std::string> setting;
        int32_t code;
    };
    for (const Case &c : {Case {"-3", -3}, Case {"x1", 0}, Case {"12abc", 0}, Case {"99999999999", 0}, Case {"", 0}}) {
        ScopedEnv result("VORN_OMSA_RESULT", c.setting);
        EXPECT_EQ(OmsaClientLiteApi::OnEvent("t", EventTypeLite::OPERATION, "e", {}).code, c.code)
            << c.setting.value_or("<unset>");
        EXPECT_EQ(OmsaClientLiteApi::SetConfigOptions({}).code, c.code);
    }
}

TEST_F(OmsaClientLiteTest, ConcurrentCallsWriteWholeLines)
{
    constexpr int threads = 4;
    constexpr int callsPerThread = 100;
    std::vector<std::thread> callers;
    for (int t = 0; t < threads; ++t) {
        callers.emplace_back([t] {
            std::unordered_map<std::string, std::string> data = {{"payload", std::string(500, 'p')}};
            for (int i = 0; i < callsPerThread; ++i) {
                OmsaClientLiteApi::OnEvent("t" + std::to_string(t), EventTypeLite::OPERATION, "e", data);
            }
        });
    }
    for (std::thread &caller : callers) {
        caller.join();
    }
    EXPECT_EQ(log_.Calls("OnEvent").size(), static_cast<size_t>(threads * callsPerThread));
}

} // namespace
