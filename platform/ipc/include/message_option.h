#ifndef OHOS_IPC_MESSAGE_OPTION_H
#define OHOS_IPC_MESSAGE_OPTION_H

#include <cstdint>
#include <memory>

namespace OHOS {
class MessageOption {
public:
    enum {
        TF_SYNC = 0x00,
        TF_ASYNC = 0x01,
        TF_STATUS_CODE = 0x08,
        TF_ACCEPT_FDS = 0x10,
        TF_WAIT_TIME = 0x8, // default wait time in seconds
        TF_ASYNC_WAKEUP_LATER = 0x100000,
        TF_IMAGE = 0x200000,
    };

    MessageOption(int flags = TF_SYNC, int waitTime = TF_WAIT_TIME);
    ~MessageOption() = default;

    void SetFlags(int flags);
    int GetFlags() const;
    void SetWaitTime(int waitTime);
    int GetWaitTime() const;

private:
    uint32_t flags_;
    int waitTime_;
};
using MessageOptionPtr = std::shared_ptr<MessageOption>;
} // namespace OHOS

#endif // OHOS_IPC_MESSAGE_OPTION_H
