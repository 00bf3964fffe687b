#!/usr/bin/env bash
# The hardening stage of CI, run after the normal suite:
#   1. the whole suite under AddressSanitizer + UndefinedBehaviorSanitizer (LeakSanitizer included),
#      less the device-build check, which compiles the GN build and gains nothing from a sanitizer,
#   2. the whole suite under ThreadSanitizer,
#   3. every libFuzzer target briefly (a minute in all).
# Any sanitizer report fails the stage. Suppressions live in tests/sanitizers/*.supp; each entry
# names a third-party library and says why.
#
# Build folders: build-asan, build-tsan and build-fuzz (VORN_ASAN_BUILD_DIR, VORN_TSAN_BUILD_DIR,
# VORN_FUZZ_BUILD_DIR override them). VORN_FUZZ_SECONDS sets the fuzzing time in all (60).
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"

source scripts/lib.sh

./scripts/setup.sh
asan_dir="${VORN_ASAN_BUILD_DIR:-build-asan}"
tsan_dir="${VORN_TSAN_BUILD_DIR:-build-tsan}"
fuzz_seconds="${VORN_FUZZ_SECONDS:-60}"
jobs="$(vorn_jobs)"
vorn_unset_proxies

supp="$root/tests/sanitizers"
asan_checks="detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1"
export ASAN_OPTIONS="$asan_checks:halt_on_error=1:suppressions=$supp/asan.supp"
export LSAN_OPTIONS="suppressions=$supp/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:suppressions=$supp/ubsan.supp"
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1:suppressions=$supp/tsan.supp"

timings=()
start_stage()
{
    stage_name="$1"
    stage_start=$SECONDS
    echo "ci_hardening: $stage_name"
}
end_stage()
{
    timings+=("$stage_name $((SECONDS - stage_start))s")
}

build_sanitized()
{
    local dir="$1" sanitizer="$2"
    # shellcheck disable=SC2046
    vorn_logged "$dir/logs/configure.log" cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DVORN_SANITIZE="$sanitizer" -DVORN_BUILD_BENCH=OFF $(vorn_launcher_args)
    vorn_logged "$dir/logs/build.log" cmake --build "$dir" -j"$jobs"
}

start_stage "ASan+UBSan build"
build_sanitized "$asan_dir" address
end_stage
start_stage "ASan+UBSan suite"
ctest --test-dir "$asan_dir" -j"$jobs" --output-on-failure -LE device
end_stage

start_stage "TSan build"
build_sanitized "$tsan_dir" thread
end_stage
start_stage "TSan suite"
ctest --test-dir "$tsan_dir" -j"$jobs" --output-on-failure -LE device
end_stage

start_stage "fuzzing"
targets=(fuzz/*_fuzzer.cpp)
./scripts/run_fuzz.sh "$(( fuzz_seconds / ${#targets[@]} > 0 ? fuzz_seconds / ${#targets[@]} : 1 ))"
end_stage

echo "ci_hardening: all stages passed in ${SECONDS}s ($(IFS=,; echo "${timings[*]}" | sed 's/,/, /g'))"
