#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan+UBSan) and runs each for a short time, starting
# from its seed corpus in fuzz/corpus/<target>/.
#
#   scripts/run_fuzz.sh [SECONDS_PER_TARGET]     (default 10)
#
# VORN_FUZZ_BUILD_DIR chooses the build folder (default build-fuzz). New inputs the fuzzers find
# go to <build>/fuzz-work/<target>/corpus, never into the committed seeds. A crash stops with a
# non-zero exit, the input is kept as <build>/fuzz-work/<target>/crash-*, and the line to
# replay it is printed.
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"
source scripts/lib.sh

seconds="${1:-10}"
build_dir="$(realpath -m "${VORN_FUZZ_BUILD_DIR:-build-fuzz}")"
vorn_build_fuzzers "$build_dir"

# Nothing a fuzzer does may leave 127.0.0.1.
vorn_unset_proxies

failed=0
for fuzzer in "$build_dir"/fuzz/*_fuzzer; do
    name="$(basename "$fuzzer")"
    work="$build_dir/fuzz-work/$name"
    rc=0
    vorn_fuzz_run 0 "$fuzzer" "$work" "$root/fuzz/corpus/$name" -max_total_time="$seconds" || rc=$?
    runs="$(vorn_fuzz_executed "$work")"
    if [ "$rc" -ne 0 ]; then
        failed=1
        echo "run_fuzz: $name FAILED after ${runs:-?} runs; log: $work/log"
        vorn_fuzz_report run_fuzz "$fuzzer" "$work"
    else
        echo "run_fuzz: $name ok, ${runs:-?} runs in ${seconds}s"
    fi
done
exit "$failed"
