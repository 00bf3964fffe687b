#include "ipc_object_stub.h"

#include <unistd.h>

#include "hilog/log.h"
#include "ipc_types.h"
#include "stub_host_state.h"

namespace OHOS {
namespace {
constexpr unsigned int IPC_LOG_DOMAIN = 0xD0057C0;
constexpr const char *IPC_LOG_TAG = "IPCObjectStub";
} // namespace

IPCObjectStub::IPCObjectStub(std::u16string descriptor, bool serialInvokeFlag)
    : IRemoteObject(std::move(descriptor)), serialInvokeFlag_(serialInvokeFlag),
      hostState_(std::make_unique<StubHostState>())
{
}

IPCObjectStub::~IPCObjectStub() = default;

int IPCObjectStub::Dump(int /* fd */, const std::vector<std::u16string> & /* args */)
{
    return ERR_NONE;
}

int IPCObjectStub::OnRemoteRequest(uint32_t code, MessageParcel & /* data */, MessageParcel & /* reply */,
    MessageOption & /* option */)
{
    HiLogPrint(LOG_CORE, LOG_WARN, IPC_LOG_DOMAIN, IPC_LOG_TAG, "unknown code: %{public}u", code);
    return IPC_STUB_UNKNOW_TRANS_ERR;
}

int IPCObjectStub::SendRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option)
{
    if (code == DUMP_TRANSACTION) {
        return OnRemoteDump(code, data, reply, option);
    }
    if (serialInvokeFlag_) {
        std::lock_guard<std::recursive_mutex> lock(serialRecursiveMutex_);
        return OnRemoteRequest(code, data, reply, option);
    }
    return OnRemoteRequest(code, data, reply, option);
}

bool IPCObjectStub::AddDeathRecipient(const sptr<DeathRecipient> & /* recipient */)
{
    return false;
}

bool IPCObjectStub::RemoveDeathRecipient(const sptr<DeathRecipient> & /* recipient */)
{
    return false;
}

int IPCObjectStub::OnRemoteDump(uint32_t /* code */, MessageParcel &data, MessageParcel & /* reply */,
    MessageOption & /* option */)
{
    int fd = data.ReadFileDescriptor();
    std::vector<std::u16string> args;
    if (fd < 0 || !data.ReadString16Vector(&args)) {
        if (fd >= 0) {
            close(fd);
        }
        return IPC_STUB_INVALID_DATA_ERR;
    }
    int result = Dump(fd, args);
    close(fd);
    return result;
}
} // namespace OHOS
