
#include <gtest/gtest.h>

#include "errors.h"
#include "hilog_host.h"
#include "if_system_ability_manager.h"
#include "iservice_registry.h"
#include "local_ability_manager_host.h"
#include "log_lines.h"
#include "raw_service_client.h"
#include "vorn_error_code.h"
#include "vorn_sa.h"

using namespace OHOS;
using namespace OHOS::Vorn;
using HostPlatform::LocalAbilityManager;
using HostPlatform::LogCapture;
using VornTest::ServiceLines;

namespace {
// Abilities made by the tests use ids of their own, so that they never replace the service
// that the library registered when it was loaded.
constexpr int32_t REPEATED_START_ID = 66101;
constexpr int32_t STOP_ID = 66102;
constexpr int32_t BAD_DUMP_ID = 66105;

sptr<ISystemAbilityManager> Samgr()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

bool IsPublished(int32_t id)
{
    return Samgr()->CheckSystemAbility(id) != nullptr;
}

TEST(VornSATest, LibraryRegistersTheServiceWhichPublishesItselfOnStart)
{
    LocalAbilityManager &host = LocalAbilityManager::GetInstance();
    ASSERT_TRUE(host.IsRegistered(VORN_SA_ID));
    LogCapture logs;
    ASSERT_TRUE(host.StartAbility(VORN_SA_ID));
    EXPECT_EQ(ServiceLines(logs, LOG_INFO, "VORN service init Success."), 1u);
    EXPECT_EQ(ServiceLines(logs, LOG_INFO, "Start VORN service success."), 1u);

    sptr<IRemoteObject> service = Samgr()->GetSystemAbility(VORN_SA_ID);
    ASSERT_NE(service, nullptr);
    // It is this service that answers: a malformed event draws its own code.
    EXPECT_EQ(VornTools::RawServiceClient(service).Event("{").result, ERR_PARCEL_READ_PARAM);
}

TEST(VornSATest, SecondStartLogsAnErrorAndDoesNotPublishAgain)
{
    sptr<VornSA> sa = new VornSA(REPEATED_START_ID, true);
    EXPECT_EQ(sa->GetClassName(), "VornSA");
    LogCapture logs;
    sa->OnStart();
    ASSERT_TRUE(IsPublished(REPEATED_START_ID));
    ASSERT_EQ(Samgr()->RemoveSystemAbility(REPEATED_START_ID), ERR_OK);

    sa->OnStart();
    EXPECT_FALSE(IsPublished(REPEATED_START_ID));
    EXPECT_EQ(ServiceLines(logs, LOG_ERROR, "VORN SA is already running."), 1u);
    EXPECT_EQ(logs.Count("VORN service init Success."), 1u);
    EXPECT_EQ(logs.Count("Start VORN service success."), 1u);
    // A started ability holds a reference to itself, as on a device, and so lives as long as the
    // process. Hand it back to the manager, where every other started ability stays reachable;
    // otherwise LeakSanitizer rightly reports it as lost.
    EXPECT_EQ(Samgr()->AddSystemAbility(REPEATED_START_ID, sa), ERR_OK);
}

// A start whose publishing fails leaves the service stopped; stopping is silent unless it runs,
// withdraws nothing by itself, and allows a fresh start, which publishes again.
TEST(VornSATest, FailedPublishOrStopLeavesTheServiceStoppedUntilTheNextStart)
{
    sptr<VornSA> sa = new VornSA(STOP_ID, true);
    LogCapture logs;
    LocalAbilityManager::GetInstance().FailNextPublish();
    sa->OnStart();
    EXPECT_EQ(ServiceLines(logs, LOG_ERROR, "VORN service init failed."), 1u);
    EXPECT_FALSE(logs.Contains("Start VORN service success."));
    EXPECT_FALSE(IsPublished(STOP_ID));
    sa->OnStop();
    EXPECT_FALSE(logs.Contains("Stop success."));

    sa->OnStart();
    EXPECT_TRUE(IsPublished(STOP_ID));
    EXPECT_EQ(logs.Count("Start VORN service success."), 1u);
    sa->OnStop();
    sa->OnStop();
    EXPECT_EQ(ServiceLines(logs, LOG_INFO, "Stop success."), 1u);
    EXPECT_TRUE(IsPublished(STOP_ID));
    sa->OnStart();
    EXPECT_EQ(logs.Count("Start VORN service success."), 2u);
    EXPECT_FALSE(logs.Contains("VORN SA is already running."));
}
// The dump tool may hand over a descriptor that cannot be written; that is an error, not a hang.
TEST(VornSATest, DumpToAnUnwritableDescriptorFails)
{
    sptr<VornSA> sa = new VornSA(BAD_DUMP_ID, true);
    LogCapture logs;
    EXPECT_EQ(sa->Dump(-1, {}), ERR_SERVICE_INTERNAL);
    EXPECT_EQ(ServiceLines(logs, LOG_ERROR, "VornSA::Dump write failed"), 1u);
}
} // namespace
