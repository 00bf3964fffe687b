// Event flattening over arbitrary content: whatever a client sends as an event's content, the
// flattener answers with a map of string pairs and never throws.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base_event.h"
#include "quiet_service_initialize.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::string content(reinterpret_cast<const char *>(data), size);
    const std::string original = content;
    (void)OHOS::Vorn::BaseEvent::EventDataJsonToMap(content);
    if (content != original) {
        std::abort(); // the content is taken by reference but must not change
    }
    return 0;
}
