#ifndef VORN_TESTS_SUPPORT_SUBPROCESS_H
#define VORN_TESTS_SUPPORT_SUBPROCESS_H

#include <string>
#include <vector>

#include "child_process.h"

namespace VornTest {
// The test bed's runner, which the bench shares.
using VornTestbed::ProcessOptions;
using VornTestbed::ProcessResult;
using VornTestbed::RunProcess;

// The text split at line ends, without them; no empty last element for a final newline.
std::vector<std::string> SplitLines(const std::string &text);
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_SUBPROCESS_H
