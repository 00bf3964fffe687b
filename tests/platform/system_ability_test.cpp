#include <map>
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

constexpr int32_t RUN_ON_CREATE_ID = 4701;
constexpr int32_t ON_DEMAND_ID = 4702;
constexpr int32_t WATCHED_ID = 4703;
constexpr int32_t UNKNOWN_ID = 4799;
constexpr uint32_t CODE_HELLO = 1;

// A minimal service in the usual shape: the ability is its own remote object.
class TestAbility : public SystemAbility, public IPCObjectStub {
    DECLARE_SYSTEM_ABILITY(TestAbility);

public:
    TestAbility(int32_t systemAbilityId, bool runOnCreate)
        : SystemAbility(systemAbilityId, runOnCreate), IPCObjectStub(u"host.test.TestAbility")
    {
        Instances().emplace(systemAbilityId, this);
    }
    ~TestAbility() override
    {
        auto it = Instances().find(GetSystemAbilitId());
        if (it != Instances().end() && it->second == this) {
            Instances().erase(it);
        }
        destroyed++;
    }

    static std::map<int32_t, TestAbility *> &Instances()
    {
        static std::map<int32_t, TestAbility *> instances;
        return instances;
    }

    int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override
    {
        if (code != CODE_HELLO) {
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        }
        reply.WriteString("hello from " + GetClassName());
        return ERR_NONE;
    }

    int starts = 0;
    int stops = 0;
    std::vector<bool> publishResults;
    std::vector<std::string> statusEvents;
    static inline int destroyed = 0;

protected:
    void OnStart() override
    {
        starts++;
        publishResults.push_back(Publish(this));
    }
    void OnStop() override
    {
        stops++;
    }
    void OnAddSystemAbility(int32_t systemAbilityId, const std::string &) override
    {
        statusEvents.push_back("added " + std::to_string(systemAbilityId));
    }
    void OnRemoveSystemAbility(int32_t systemAbilityId, const std::string &) override
    {
        statusEvents.push_back("removed " + std::to_string(systemAbilityId));
    }
};

REGISTER_SYSTEM_ABILITY_BY_ID(TestAbility, RUN_ON_CREATE_ID, true);
// The macro names its variable after the class, so a second one of the class is spelled out.
const bool g_onDemandRegistered = SystemAbility::MakeAndRegisterAbility(new TestAbility(ON_DEMAND_ID, false));

sptr<ISystemAbilityManager> Samgr()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

TestAbility &Ability(int32_t id)
{
    return *TestAbility::Instances().at(id);
}

class SystemAbilityTest : public testing::Test {
protected:
    void TearDown() override
    {
        LocalAbilityManager::GetInstance().FailNextPublish(false);
        LocalAbilityManager::GetInstance().StopAbility(RUN_ON_CREATE_ID);
        LocalAbilityManager::GetInstance().StopAbility(ON_DEMAND_ID);
    }
};

TEST_F(SystemAbilityTest, StartedAbilityIsReachableThroughTheManagerAsAProxy)
{
    int startsBefore = Ability(ON_DEMAND_ID).starts;
    EXPECT_EQ(LocalAbilityManager::GetInstance().StartRunOnCreateAbilities(), 1u);
    EXPECT_EQ(Ability(ON_DEMAND_ID).starts, startsBefore);
    ASSERT_EQ(Ability(RUN_ON_CREATE_ID).publishResults.back(), true);

    sptr<IRemoteObject> remote = Samgr()->CheckSystemAbility(RUN_ON_CREATE_ID);
    ASSERT_NE(remote, nullptr);
    EXPECT_TRUE(remote->IsProxyObject());
    MessageParcel data;
    MessageParcel reply;
    MessageOption option;
    ASSERT_EQ(remote->SendRequest(CODE_HELLO, data, reply, option), ERR_NONE);
    EXPECT_EQ(reply.ReadString(), "hello from TestAbility");
}

TEST_F(SystemAbilityTest, StopCallsOnStopAndWithdrawsTheAbility)
{
    TestAbility &ability = Ability(RUN_ON_CREATE_ID);
    ASSERT_TRUE(LocalAbilityManager::GetInstance().StartAbility(RUN_ON_CREATE_ID));
    ASSERT_NE(Samgr()->CheckSystemAbility(RUN_ON_CREATE_ID), nullptr);
    int stopsBefore = ability.stops;
    int destroyedBefore = TestAbility::destroyed;

    ASSERT_TRUE(LocalAbilityManager::GetInstance().StopAbility(RUN_ON_CREATE_ID));
    EXPECT_EQ(ability.stops, stopsBefore + 1);
    EXPECT_EQ(Samgr()->CheckSystemAbility(RUN_ON_CREATE_ID), nullptr);
    EXPECT_EQ(TestAbility::destroyed, destroyedBefore); // stopping never destroys the ability

    // Repeated calls reach the ability, which must guard against them itself.
    ASSERT_TRUE(LocalAbilityManager::GetInstance().StopAbility(RUN_ON_CREATE_ID));
    EXPECT_EQ(ability.stops, stopsBefore + 2);
}

TEST_F(SystemAbilityTest, PublishFailureSwitchFailsTheNextPublishOnly)
{
    TestAbility &ability = Ability(RUN_ON_CREATE_ID);
    int destroyedBefore = TestAbility::destroyed;
    LocalAbilityManager::GetInstance().FailNextPublish();
    ASSERT_TRUE(LocalAbilityManager::GetInstance().StartAbility(RUN_ON_CREATE_ID));
    EXPECT_EQ(ability.publishResults.back(), false);
    EXPECT_EQ(Samgr()->CheckSystemAbility(RUN_ON_CREATE_ID), nullptr);
    EXPECT_EQ(TestAbility::destroyed, destroyedBefore); // a failed publish keeps the object alive

    ASSERT_TRUE(LocalAbilityManager::GetInstance().StartAbility(RUN_ON_CREATE_ID));
    EXPECT_EQ(ability.publishResults.back(), true);
    EXPECT_NE(Samgr()->CheckSystemAbility(RUN_ON_CREATE_ID), nullptr);
}

TEST_F(SystemAbilityTest, GetLoadsAnOnDemandAbilityAndUnloadStopsIt)
{
    TestAbility &ability = Ability(ON_DEMAND_ID);
    int startsBefore = ability.starts;
    EXPECT_EQ(Samgr()->CheckSystemAbility(ON_DEMAND_ID), nullptr);
    sptr<IRemoteObject> remote = Samgr()->GetSystemAbility(ON_DEMAND_ID);
    ASSERT_NE(remote, nullptr);
    EXPECT_EQ(ability.starts, startsBefore + 1);
    EXPECT_NE(Samgr()->GetSystemAbility(ON_DEMAND_ID), nullptr);
    EXPECT_EQ(ability.starts, startsBefore + 1); // already published: no second start

    EXPECT_EQ(Samgr()->UnloadSystemAbility(ON_DEMAND_ID), ERR_OK);
    EXPECT_EQ(Samgr()->CheckSystemAbility(ON_DEMAND_ID), nullptr);
    EXPECT_EQ(Samgr()->GetSystemAbility(UNKNOWN_ID), nullptr);
    EXPECT_NE(Samgr()->UnloadSystemAbility(UNKNOWN_ID), ERR_OK);
}

TEST_F(SystemAbilityTest, ManagerRejectsBadRegistrations)
{
    sptr<IPCObjectStub> object = new IPCObjectStub(u"host.test.Plain");
    EXPECT_EQ(Samgr()->AddSystemAbility(0, object), ERR_INVALID_VALUE);
    EXPECT_EQ(Samgr()->AddSystemAbility(WATCHED_ID, nullptr), ERR_INVALID_VALUE);
    EXPECT_NE(Samgr()->RemoveSystemAbility(UNKNOWN_ID), ERR_OK);
    EXPECT_FALSE(LocalAbilityManager::GetInstance().StartAbility(UNKNOWN_ID));
    EXPECT_FALSE(LocalAbilityManager::GetInstance().StopAbility(UNKNOWN_ID));

    int destroyedBefore = TestAbility::destroyed;
    EXPECT_TRUE(g_onDemandRegistered);
    EXPECT_FALSE(SystemAbility::MakeAndRegisterAbility(new TestAbility(ON_DEMAND_ID, false)));
    EXPECT_EQ(TestAbility::destroyed, destroyedBefore + 1); // the duplicate is not kept
}

TEST_F(SystemAbilityTest, ListenerHearsOtherAbilitiesComeAndGo)
{
    TestAbility &watcher = Ability(ON_DEMAND_ID);
    watcher.statusEvents.clear();
    sptr<IPCObjectStub> watched = new IPCObjectStub(u"host.test.Watched");
    ASSERT_TRUE(watcher.AddSystemAbilityListener(WATCHED_ID));
    EXPECT_FALSE(watcher.AddSystemAbilityListener(WATCHED_ID));

    ASSERT_EQ(Samgr()->AddSystemAbility(WATCHED_ID, watched), ERR_OK);
    ASSERT_EQ(Samgr()->RemoveSystemAbility(WATCHED_ID), ERR_OK);
    ASSERT_TRUE(watcher.RemoveSystemAbilityListener(WATCHED_ID));
    ASSERT_EQ(Samgr()->AddSystemAbility(WATCHED_ID, watched), ERR_OK);
    ASSERT_EQ(Samgr()->RemoveSystemAbility(WATCHED_ID), ERR_OK);
    EXPECT_EQ(watcher.statusEvents, (std::vector<std::string>{"added 4703", "removed 4703"}));
}
} // namespace
