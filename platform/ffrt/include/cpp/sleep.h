#ifndef FFRT_API_CPP_SLEEP_H
#define FFRT_API_CPP_SLEEP_H

#include <chrono>

#include "c/sleep.h"

namespace ffrt {
namespace this_task {
inline void yield()
{
    ffrt_yield();
}

template <typename Rep, typename Period> void sleep_for(const std::chrono::duration<Rep, Period> &d)
{
    auto us = std::chrono::ceil<std::chrono::microseconds>(d).count();
    ffrt_usleep(us > 0 ? static_cast<uint64_t>(us) : 0);
}

} // namespace this_task
} // namespace ffrt

#endif // FFRT_API_CPP_SLEEP_H
