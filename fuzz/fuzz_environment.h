#ifndef VORN_FUZZ_FUZZ_ENVIRONMENT_H
#define VORN_FUZZ_FUZZ_ENVIRONMENT_H

#include <cstdlib>

namespace VornFuzz {
// The service logs a few lines per call; printing them would cost more than the call itself, so
// they go nowhere unless VORN_HILOG_FILE already names a file. Proxy settings are cleared so
// that nothing a fuzzer does can leave the machine.
inline void QuietService()
{
    setenv("VORN_HILOG_FILE", "/dev/null", 0);
    for (const char *name : {"VORN_DEFAULT_HTTP_PROXY", "http_proxy", "https_proxy", "HTTP_PROXY", "HTTPS_PROXY",
             "all_proxy", "ALL_PROXY", "VORN_OMSA_LOG"}) {
        unsetenv(name);
    }
}
} // namespace VornFuzz

#endif // VORN_FUZZ_FUZZ_ENVIRONMENT_H
