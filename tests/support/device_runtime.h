#ifndef VORN_TESTS_SUPPORT_DEVICE_RUNTIME_H
#define VORN_TESTS_SUPPORT_DEVICE_RUNTIME_H

#include <cstdlib>

namespace VornTest {
// Included by a test file, it runs that whole executable under a task runtime tighter than a
// device's (4 running workers, 8 threads per QoS level): set while static objects are built,
// before the runtime first starts and reads them.
static const bool DEVICE_LIKE_RUNTIME = [] {
    return setenv("VORN_FFRT_WORKERS", "4", 1) == 0 && setenv("VORN_FFRT_THREADS", "8", 1) == 0;
}();
} // namespace VornTest

#endif // VORN_TESTS_SUPPORT_DEVICE_RUNTIME_H
