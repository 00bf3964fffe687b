// Parcels into the client kit's callback stub, as a service (or anything else holding the
// client's callback object) may write them: code, interface token and response text are chosen
// by the fuzzer. The usual choices are the valid ones (a fuzzer that runs out of bytes reads
// zeros), so that most inputs get past the code and token checks to the text.
//
// What a client relies on is checked on every input: a transaction is handed to the client's
// handler only with the right code and token, then exactly once and with exactly the text that
// was written, and the stub answers it with ERR_NONE.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "fuzz_choice.h"
#include "ipc_types.h"
#include "message_option.h"
#include "message_parcel.h"
#include "quiet_service_initialize.h"
#include "vorn_request_callback_stub.h"

using namespace OHOS;
using namespace OHOS::Vorn;

namespace {
using VornFuzz::ChooseMostlyValid;

// Value 0 of every choice is the valid one.
enum class Code : uint8_t { RESPONSE, ANY, LAST = ANY };
enum class Token : uint8_t { RIGHT, FUZZED, MISSING, RAW_BYTES, LAST = RAW_BYTES };
enum class Text : uint8_t { STRING, MISSING, RAW_BYTES, STRING16, LAST = STRING16 };

// A fuzzed token that happens to be the right one counts as right.
bool WriteToken(MessageParcel &data, Token token, FuzzedDataProvider &provider)
{
    const std::u16string right(IVornRequestCallback::GetDescriptor());
    switch (token) {
        case Token::RIGHT:
            data.WriteInterfaceToken(right);
            return true;
        case Token::FUZZED: {
            const std::string bytes = provider.ConsumeRandomLengthString(64);
            const std::u16string fuzzed(bytes.begin(), bytes.end());
            data.WriteInterfaceToken(fuzzed);
            return fuzzed == right;
        }
        case Token::RAW_BYTES: {
            const std::string bytes = provider.ConsumeRandomLengthString(32);
            data.WriteBuffer(bytes.data(), bytes.size());
            return false;
        }
        case Token::MISSING:
            return false;
    }
    return false;
}

[[noreturn]] void Fail(const char *what)
{
    std::fprintf(stderr, "vorn_request_callback_stub_fuzzer: %s\n", what);
    std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzedDataProvider provider(data, size);
    const Code codeKind = ChooseMostlyValid<Code>(provider);
    const uint32_t code = codeKind == Code::RESPONSE ? static_cast<uint32_t>(IVornRequestCallback::ON_RESPONSE)
                                                     : provider.ConsumeIntegral<uint32_t>();
    const Token token = ChooseMostlyValid<Token>(provider);
    const Text textKind = ChooseMostlyValid<Text>(provider);

    MessageParcel request;
    const bool tokenRight = WriteToken(request, token, provider);
    const std::string text = provider.ConsumeRemainingBytesAsString();
    if (textKind == Text::STRING) {
        request.WriteString(text);
    } else if (textKind == Text::RAW_BYTES) {
        request.WriteBuffer(text.data(), text.size());
    } else if (textKind == Text::STRING16) {
        request.WriteString16(std::u16string(text.begin(), text.end()));
    }

    std::vector<std::string> handled;
    sptr<VornRequestCallbackStub> stub =
        new VornRequestCallbackStub([&handled](const std::string &response) { handled.push_back(response); });
    MessageParcel reply;
    MessageOption option;
    const int result = stub->OnRemoteRequest(code, request, reply, option);

    const bool deliverable = code == static_cast<uint32_t>(IVornRequestCallback::ON_RESPONSE) && tokenRight;
    if (!deliverable) {
        if (!handled.empty()) {
            Fail("a transaction with a wrong code or token reached the handler");
        }
        if (result == ERR_NONE) {
            Fail("a transaction with a wrong code or token was answered ERR_NONE");
        }
        return 0;
    }
    if (result != ERR_NONE || handled.size() != 1) {
        Fail("a response with the right code and token was not handed over exactly once");
    }
    if (textKind == Text::STRING && handled.front() != text) {
        Fail("the handler got other text than was written");
    }
    return 0;
}
