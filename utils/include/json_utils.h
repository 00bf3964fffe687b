#ifndef VORN_UTILS_JSON_UTILS_H
#define VORN_UTILS_JSON_UTILS_H

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace OHOS {
namespace Vorn {
// Strict JSON for texts that clients and configuration files control: no comments, one value,
// and nothing thrown, so a malformed text is an ordinary outcome each caller logs in its own words.
class JsonUtils {
public:
    enum class FileStatus {
        OK,
        // FileUtils::ReadFile refused the file (missing, empty, changed while read).
        UNREADABLE,
        // Read whole, but not strict JSON.
        MALFORMED,
    };

    // std::nullopt when `text` is not strict JSON.
    static std::optional<nlohmann::json> Parse(const std::string &text);

    // Reads a small configuration file whole and parses it; `json` is set only on OK.
    static FileStatus ReadFile(const std::string &path, nlohmann::json &json);
};
} // namespace Vorn
} // namespace OHOS

#endif // VORN_UTILS_JSON_UTILS_H
