#include <gtest/gtest.h>

#include "errors.h"
#include "ipc_object_stub.h"
#include "ipc_types.h"
#include "iservice_registry.h"
#include "local_ability_manager_host.h"
#include "system_ability.h"

namespace {
using namespace OHOS;
using HostPlatform::LocalAbilityManager;

constexpr int32_t ON_DEMAND_ID = 4702;
constexpr int32_t UNKNOWN_ID = 4799;

// A minimal service in the usual shape: the ability is its own remote object.
class TestAbility : public SystemAbility, public IPCObjectStub {
    DECLARE_SYSTEM_ABILITY(TestAbility);

public:
    TestAbility(int32_t systemAbilityId, bool runOnCreate)
        : SystemAbility(systemAbilityId, runOnCreate), IPCObjectStub(u"host.test.TestAbility")
    {
    }
    ~TestAbility() override { destroyed++; }

    static inline int starts = 0;
    static inline int destroyed = 0;

protected:
    void OnStart() override
    {
        starts++;
        Publish(this);
    }
};

// What the registration macro does, spelled out so that the test can see its result.
const bool g_onDemandRegistered = SystemAbility::MakeAndRegisterAbility(new TestAbility(ON_DEMAND_ID, false));

sptr<ISystemAbilityManager> Samgr()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

class SystemAbilityTest : public testing::Test {
protected:
    void TearDown() override { Samgr()->RemoveSystemAbility(ON_DEMAND_ID); }
};

TEST_F(SystemAbilityTest, GetAndLoadStartAnOnDemandAbilityOnce)
{
    int startsBefore = TestAbility::starts;
    EXPECT_EQ(Samgr()->CheckSystemAbility(ON_DEMAND_ID), nullptr);
    ASSERT_NE(Samgr()->GetSystemAbility(ON_DEMAND_ID), nullptr);
    EXPECT_EQ(TestAbility::starts, startsBefore + 1);
    EXPECT_NE(Samgr()->LoadSystemAbility(ON_DEMAND_ID, 1), nullptr);
    EXPECT_EQ(TestAbility::starts, startsBefore + 1); // already published: no second start
    EXPECT_EQ(Samgr()->GetSystemAbility(UNKNOWN_ID), nullptr);
}

TEST_F(SystemAbilityTest, ManagerRejectsBadRegistrations)
{
    sptr<IPCObjectStub> object = new IPCObjectStub(u"host.test.Plain");
    EXPECT_EQ(Samgr()->AddSystemAbility(0, object), ERR_INVALID_VALUE);
    EXPECT_EQ(Samgr()->AddSystemAbility(UNKNOWN_ID, nullptr), ERR_INVALID_VALUE);
    EXPECT_NE(Samgr()->RemoveSystemAbility(UNKNOWN_ID), ERR_OK);
    EXPECT_FALSE(LocalAbilityManager::GetInstance().StartAbility(UNKNOWN_ID));

    int destroyedBefore = TestAbility::destroyed;
    EXPECT_TRUE(g_onDemandRegistered);
    EXPECT_FALSE(SystemAbility::MakeAndRegisterAbility(new TestAbility(ON_DEMAND_ID, false)));
    EXPECT_EQ(TestAbility::destroyed, destroyedBefore + 1); // the duplicate is not kept
}
} // namespace
