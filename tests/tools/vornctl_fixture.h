#ifndef VORN_TESTS_TOOLS_VORNCTL_FIXTURE_H
#define VORN_TESTS_TOOLS_VORNCTL_FIXTURE_H

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "local_server_fixture.h"
#include "subprocess.h"

namespace VornTest {
// Runs the built vornctl (VORNCTL_BINARY) as a child process against a local HTTPS server with a
// CA made for the test. Proxy variables are cleared for the children: nothing leaves 127.0.0.1.
class VornctlFixture : public LocalServerFixture {
protected:
    ProcessResult Vornctl(const std::vector<std::string> &args, ProcessOptions options = {}) const
    {
        std::vector<std::string> argv {VORNCTL_BINARY};
        argv.insert(argv.end(), args.begin(), args.end());
        return RunProcess(argv, options);
    }

    std::string RequestFor(const std::vector<std::string> &baseUrls) const
    {
        return nlohmann::json {{"baseUrls", baseUrls}, {"caFile", files_.caFile}}.dump();
    }

    // The "reply: " and "result: " lines that end the tool's standard error.
    static std::vector<std::string> Outcome(const ProcessResult &run)
    {
        std::vector<std::string> lines = SplitLines(run.err);
        if (lines.size() < 2) {
            return lines;
        }
        return {lines.end() - 2, lines.end()};
    }

    static std::vector<nlohmann::json> Responses(const ProcessResult &run)
    {
        std::vector<nlohmann::json> responses;
        for (const std::string &line : SplitLines(run.out)) {
            responses.push_back(nlohmann::json::parse(line, nullptr, false));
        }
        return responses;
    }
};
} // namespace VornTest

#endif // VORN_TESTS_TOOLS_VORNCTL_FIXTURE_H
