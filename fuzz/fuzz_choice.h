#ifndef VORN_FUZZ_FUZZ_CHOICE_H
#define VORN_FUZZ_FUZZ_CHOICE_H

#include <cstdint>

#include <fuzzer/FuzzedDataProvider.h>

namespace VornFuzz {
// One value of an enumeration whose members run from 0 to E::LAST.
template <typename E> E Choose(FuzzedDataProvider &provider)
{
    return static_cast<E>(provider.ConsumeIntegralInRange<uint8_t>(0, static_cast<uint8_t>(E::LAST)));
}

// Mostly the valid choice, value 0: a fuzzer byte below 0xC0 keeps it, the rest pick among all
// of them. Stub fuzzers use it so that most inputs get past the checks they want to exercise.
template <typename E> E ChooseMostlyValid(FuzzedDataProvider &provider)
{
    return provider.ConsumeIntegral<uint8_t>() < 0xC0 ? static_cast<E>(0) : Choose<E>(provider);
}
} // namespace VornFuzz

#endif // VORN_FUZZ_FUZZ_CHOICE_H
