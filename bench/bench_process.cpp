#include "bench_process.h"

#include <cstdlib>

namespace VornBench {
namespace {
constexpr const char *PROXY_VARIABLES[] = {
    "VORN_DEFAULT_HTTP_PROXY",
    "https_proxy",
    "HTTPS_PROXY",
    "http_proxy",
    "HTTP_PROXY",
    "all_proxy",
    "ALL_PROXY",
};
} // namespace

void PrepareProcess()
{
    for (const char *name : PROXY_VARIABLES) {
        unsetenv(name);
    }
    setenv("VORN_HILOG_FILE", "/dev/null", 0);
}
} // namespace VornBench
