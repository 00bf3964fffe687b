// The service's two transactions through VornSAStub::OnRemoteRequest with parcels a client may
// write any way it likes: caller, code, interface token, callback object and text are all chosen
// by the fuzzer. The usual choices are the valid ones (a fuzzer that runs out of bytes reads
// zeros), so that most inputs get past the caller and token checks into the handlers.
//
// Requests are kept off the network: a request that would be sent has its URLs replaced by a
// loopback port that refuses connections, and its network interface and CA file cleared. The
// rest of the text reaches the engine as the fuzzer wrote it.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fuzzer/FuzzedDataProvider.h>
#include <nlohmann/json.hpp>

#include "eventhandler_host.h"
#include "ffrt_host.h"
#include "fuzz_choice.h"
#include "fuzz_environment.h"
#include "ipc_host.h"
#include "message_option.h"
#include "message_parcel.h"
#include "vorn_request_callback_stub.h"
#include "vorn_sa.h"
#include "vorn_sa_id.h"

using namespace OHOS;
using namespace OHOS::Vorn;
using namespace std::chrono_literals;

namespace {
using VornFuzz::Choose;
using VornFuzz::ChooseMostlyValid;

// Value 0 of every choice is the valid one.
enum class Caller : uint8_t { NATIVE, SYSTEM_APP, APP, LAST = APP };
enum class Token : uint8_t { RIGHT, FUZZED, MISSING, RAW_BYTES, LAST = RAW_BYTES };
enum class Callback : uint8_t {
    REMOTE_PROXY,
    LOCAL_STUB,
    MISSING,
    NULL_OBJECT,
    DEAD,
    WRONG_INTERFACE,
    LAST = WRONG_INTERFACE
};
enum class Text : uint8_t { STRING, MISSING, RAW_BYTES, LAST = RAW_BYTES };
enum class Code : uint8_t { REQUEST, EVENT, ANY, LAST = ANY };
enum class Route : uint8_t { REFUSING_PORT, NO_URLS, LAST = NO_URLS };

const char *const SERVER_CONFIG = "system/etc/tarnix/vorn_depot/qel_sdk_server_config.json";

sptr<VornSA> g_service;
std::string g_refusingUrl;

// A loopback port that is bound but never listens: connecting to it is refused at once. The
// socket stays open for the life of the process so that nobody else can take the port.
std::string RefusingUrl()
{
    int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        std::perror("vorn_sa_stub_fuzzer: loopback socket");
        std::abort();
    }
    return "https://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/fuzz";
}

bool IsStringList(const nlohmann::json &value)
{
    if (!value.is_array()) {
        return false;
    }
    for (const auto &item : value) {
        if (!item.is_string()) {
            return false;
        }
    }
    return true;
}

// Overrides are appended as members of the same object, since the parser keeps the last of
// duplicate keys; the fuzzer's own text is never re-serialised, which would recurse as deep as
// it nests. Values of the wrong kind are left alone: the parser rejects them before anything is
// sent.
std::string KeepOffTheNetwork(const std::string &text, Route route, size_t urlCount)
{
    const nlohmann::json json = nlohmann::json::parse(text, nullptr, false, false);
    if (json.is_discarded() || !json.is_object()) {
        return text;
    }
    if (json.contains("baseUrls") && !IsStringList(json["baseUrls"])) {
        return text;
    }
    nlohmann::json overrides = nlohmann::json::object();
    for (const char *key : {"interfaceName", "caFile"}) {
        if (json.contains(key) && json[key].is_string()) {
            overrides[key] = "";
        }
    }
    overrides["baseUrls"] =
        route == Route::NO_URLS ? std::vector<std::string>() : std::vector<std::string>(urlCount, g_refusingUrl);
    const std::string members = overrides.dump();
    const size_t close = text.rfind('}');
    return text.substr(0, close) + (json.empty() ? "" : ",") + members.substr(1);
}

HostPlatform::CallerIdentity IdentityOf(Caller caller)
{
    constexpr pid_t APP_UID = 20010042;
    switch (caller) {
        case Caller::SYSTEM_APP:
            return HostPlatform::SystemAppCaller(APP_UID);
        case Caller::APP:
            return HostPlatform::AppCaller(APP_UID);
        default:
            return HostPlatform::NativeCaller(getuid());
    }
}

void WriteToken(MessageParcel &data, Token token, FuzzedDataProvider &provider)
{
    switch (token) {
        case Token::RIGHT:
            data.WriteInterfaceToken(IVornSAInterface::GetDescriptor());
            break;
        case Token::FUZZED: {
            const std::string bytes = provider.ConsumeRandomLengthString(64);
            data.WriteInterfaceToken(std::u16string(bytes.begin(), bytes.end()));
            break;
        }
        case Token::RAW_BYTES: {
            const std::string bytes = provider.ConsumeRandomLengthString(32);
            data.WriteBuffer(bytes.data(), bytes.size());
            break;
        }
        case Token::MISSING:
            break;
    }
}

void WriteCallback(MessageParcel &data, Callback callback, const sptr<OHOS::Vorn::VornRequestCallbackStub> &recorder)
{
    switch (callback) {
        case Callback::REMOTE_PROXY:
            data.WriteRemoteObject(HostPlatform::MakeRemoteProxy(recorder->AsObject()));
            break;
        case Callback::LOCAL_STUB:
            data.WriteRemoteObject(recorder->AsObject());
            break;
        case Callback::NULL_OBJECT:
            data.WriteRemoteObject(nullptr);
            break;
        case Callback::DEAD: {
            sptr<IRemoteObject> proxy = HostPlatform::MakeRemoteProxy(recorder->AsObject());
            HostPlatform::MarkObjectDead(proxy);
            data.WriteRemoteObject(proxy);
            break;
        }
        case Callback::WRONG_INTERFACE:
            data.WriteRemoteObject(HostPlatform::MakeRemoteProxy(g_service->AsObject()));
            break;
        case Callback::MISSING:
            break;
    }
}

uint32_t CodeOf(Code code, FuzzedDataProvider &provider)
{
    switch (code) {
        case Code::REQUEST:
            return static_cast<uint32_t>(VornInterfaceCode::GET_VORN_CONFIG_FROM_SERVER);
        case Code::EVENT:
            return static_cast<uint32_t>(VornInterfaceCode::VORN_OMSA_EVENT);
        default:
            return provider.ConsumeIntegral<uint32_t>();
    }
}
} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    (void)argc;
    (void)argv;
    struct stat info {};
    if (stat(SERVER_CONFIG, &info) == 0) {
        // Requests without URLs would go to the routing service that this file names.
        std::fprintf(stderr, "vorn_sa_stub_fuzzer: run it where there is no %s\n", SERVER_CONFIG);
        std::exit(1);
    }
    VornFuzz::QuietService();
    g_refusingUrl = RefusingUrl();
    g_service = new VornSA(VORN_SA_ID, false);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    const uint32_t code = CodeOf(ChooseMostlyValid<Code>(provider), provider);
    const Caller caller = ChooseMostlyValid<Caller>(provider);
    const Token token = ChooseMostlyValid<Token>(provider);
    const Callback callbackKind = ChooseMostlyValid<Callback>(provider);
    const Text textKind = ChooseMostlyValid<Text>(provider);
    const Route route = Choose<Route>(provider);
    const size_t urlCount = provider.ConsumeIntegralInRange<size_t>(1, 3);

    sptr<OHOS::Vorn::VornRequestCallbackStub> recorder = new OHOS::Vorn::VornRequestCallbackStub();
    MessageParcel request;
    WriteToken(request, token, provider);
    // An event carries no object; the valid choice leaves it out there.
    const bool isEvent = code == static_cast<uint32_t>(VornInterfaceCode::VORN_OMSA_EVENT);
    if (!isEvent || callbackKind != Callback::REMOTE_PROXY) {
        WriteCallback(request, callbackKind, recorder);
    }
    const std::string text = provider.ConsumeRemainingBytesAsString();
    if (textKind == Text::STRING) {
        request.WriteString(KeepOffTheNetwork(text, route, urlCount));
    } else if (textKind == Text::RAW_BYTES) {
        request.WriteBuffer(text.data(), text.size());
    }

    MessageParcel reply;
    MessageOption option;
    {
        HostPlatform::ScopedCallerIdentity identity(IdentityOf(caller));
        (void)HostPlatform::MakeRemoteProxy(g_service->AsObject())->SendRequest(code, request, reply, option);
    }
    // Everything the call started finishes before the next input, so runs stay reproducible and
    // the runtime never piles up.
    if (!HostPlatform::FfrtWaitIdle(60s) || !HostPlatform::EventRunnersWaitIdle(60s)) {
        std::fprintf(stderr, "vorn_sa_stub_fuzzer: the service did not settle\n");
        std::abort();
    }
    return 0;
}
