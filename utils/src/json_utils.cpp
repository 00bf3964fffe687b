#include "json_utils.h"

#include <ios>
#include <utility>

#include "file_utils.h"

namespace OHOS {
namespace Vorn {
std::optional<nlohmann::json> JsonUtils::Parse(const std::string &text)
{
    // One non-throwing pass: a text that accept() would refuse comes back discarded, so it is
    // never read twice.
    nlohmann::json json = nlohmann::json::parse(text, nullptr, false, false);
    if (json.is_discarded()) {
        return std::nullopt;
    }
    return json;
}

JsonUtils::FileStatus JsonUtils::ReadFile(const std::string &path, nlohmann::json &json)
{
    std::string content;
    if (FileUtils::ReadFile(path, content, static_cast<uint32_t>(std::ios::in | std::ios::binary)) !=
        FileUtils::READ_FILE_OK) {
        return FileStatus::UNREADABLE;
    }
    std::optional<nlohmann::json> parsed = Parse(content);
    if (!parsed) {
        return FileStatus::MALFORMED;
    }
    json = std::move(*parsed);
    return FileStatus::OK;
}
} // namespace Vorn
} // namespace OHOS
