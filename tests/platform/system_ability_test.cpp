#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "errors.h"
#include "ipc_object_stub.h"
#include "ipc_types.h"
#include "iservice_registry.h"
#include "local_ability_manager_host.h"
#include "message_option.h"
#include "message_parcel.h"
#include "system_ability.h"

namespace {
using namespace OHOS;
using HostPlatform::LocalAbilityManager;

constexpr int32_t STARTED_ID = 4701;
constexpr int32_t ON_DEMAND_ID = 4702;
constexpr int32_t UNKNOWN_ID = 4799;
constexpr uint32_t CODE_HELLO = 1;

// A minimal service in the usual shape: the ability is its own remote object.
class TestAbility : public SystemAbility, public IPCObjectStub {
    DECLARE_SYSTEM_ABILITY(TestAbility);

public:
    TestAbility(int32_t systemAbilityId, bool runOnCreate)
        : SystemAbility(systemAbilityId, runOnCreate), IPCObjectStub(u"host.test.TestAbility")
    {
    }
    ~TestAbility() override
    {
        destroyed++;
    }

    int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override
    {
        if (code != CODE_HELLO) {
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        }
        reply.WriteString("hello from " + GetClassName());
        return ERR_NONE;
    }

    static inline int starts = 0;
    static inline std::vector<bool> publishResults;
    static inline int destroyed = 0;

protected:
    void OnStart() override
    {
        starts++;
        publishResults.push_back(Publish(this));
    }
};

REGISTER_SYSTEM_ABILITY_BY_ID(TestAbility, STARTED_ID, true);
// The macro names its variable after the class, so a second one of the class is spelled out.
const bool g_onDemandRegistered = SystemAbility::MakeAndRegisterAbility(new TestAbility(ON_DEMAND_ID, false));

sptr<ISystemAbilityManager> Samgr()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

class SystemAbilityTest : public testing::Test {
protected:
    void TearDown() override
    {
        LocalAbilityManager::GetInstance().FailNextPublish(false);
        Samgr()->RemoveSystemAbility(STARTED_ID);
        Samgr()->RemoveSystemAbility(ON_DEMAND_ID);
    }
};

TEST_F(SystemAbilityTest, StartedAbilityIsReachableThroughTheManagerAsAProxy)
{
    ASSERT_TRUE(LocalAbilityManager::GetInstance().StartAbility(STARTED_ID));
    ASSERT_EQ(TestAbility::publishResults.back(), true);

    sptr<IRemoteObject> remote = Samgr()->CheckSystemAbility(STARTED_ID);
    ASSERT_NE(remote, nullptr);
    EXPECT_TRUE(remote->IsProxyObject());
    MessageParcel data;
    MessageParcel reply;
    MessageOption option;
    ASSERT_EQ(remote->SendRequest(CODE_HELLO, data, reply, option), ERR_NONE);
    EXPECT_EQ(reply.ReadString(), "hello from TestAbility");

}

TEST_F(SystemAbilityTest, PublishFailureSwitchFailsTheNextPublishOnly)
{
    int destroyedBefore = TestAbility::destroyed;
    LocalAbilityManager::GetInstance().FailNextPublish();
    ASSERT_TRUE(LocalAbilityManager::GetInstance().StartAbility(ON_DEMAND_ID));
    EXPECT_EQ(TestAbility::publishResults.back(), false);
    EXPECT_EQ(Samgr()->CheckSystemAbility(ON_DEMAND_ID), nullptr);
    EXPECT_EQ(TestAbility::destroyed, destroyedBefore); // a failed publish keeps the object alive

    ASSERT_TRUE(LocalAbilityManager::GetInstance().StartAbility(ON_DEMAND_ID));
    EXPECT_EQ(TestAbility::publishResults.back(), true);
    EXPECT_NE(Samgr()->CheckSystemAbility(ON_DEMAND_ID), nullptr);
}

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
