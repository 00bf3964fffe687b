#ifndef VORN_TESTS_SUPPORT_OMSA_LOG_H
#define VORN_TESTS_SUPPORT_OMSA_LOG_H

#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "scoped_env.h"
#include "temp_dir.h"

namespace VornTest {
// Points the host's analytics client at a fresh record file while it lives, and reads back what
// the client was handed (one JSON object per call, in call order).
class OmsaLog {
public:
    OmsaLog() : file_(dir_.Path("omsa_calls.jsonl")), env_("VORN_OMSA_LOG", file_) {}

    // Calls of one operation: "SetConfigOptions" or "OnEvent".
    std::vector<nlohmann::json> Calls(const std::string &op) const
    {
        std::vector<nlohmann::json> calls;
        std::ifstream in(file_);
        for (std::string line; std::getline(in, line);) {
            nlohmann::json call = nlohmann::json::parse(line);
            if (call.value("op", "") == op) {
                calls.push_back(std::move(call));
            }
        }
        return calls;
    }

private:
    VornTestbed::TempDir dir_;
    std::string file_;
    ScopedEnv env_;
};
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_OMSA_LOG_H
