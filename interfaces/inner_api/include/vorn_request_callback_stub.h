#ifndef VORN_INNER_API_VORN_REQUEST_CALLBACK_STUB_H
#define VORN_INNER_API_VORN_REQUEST_CALLBACK_STUB_H

#include <cstdint>
#include <functional>
#include <string>

#include "i_vorn_request_callback.h"
#include "iremote_stub.h"

namespace OHOS {
namespace Vorn {
// The client's callback object: the service calls it with one response JSON text per
// transaction (code 0). A transaction whose interface token is not the callback's own is
// refused before anything is read from it.
class VornRequestCallbackStub : public IRemoteStub<IVornRequestCallback> {
public:
    using Handler = std::function<void(const std::string &response)>;

    // `handler` runs on the thread that delivers the transaction, once per response.
    explicit VornRequestCallbackStub(Handler handler = nullptr);
    ~VornRequestCallbackStub() override = default;

    int OnRemoteRequest(uint32_t code, MessageParcel &data, MessageParcel &reply, MessageOption &option) override;
    void OnResponse(const std::string &response) override;

private:
    Handler handler_;
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_INNER_API_VORN_REQUEST_CALLBACK_STUB_H
