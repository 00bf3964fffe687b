#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite, then the hardening
# stage: the suite again under AddressSanitizer+UBSan and ThreadSanitizer, and every fuzz target
# briefly. VORN_QUICK=1 stops after the plain suite (about a minute on a warm build).
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/lib.sh

build_dir="${VORN_BUILD_DIR:-build}"
vorn_configure_host "$build_dir"
vorn_logged "$build_dir/logs/build.log" cmake --build "$build_dir" -j"$(vorn_jobs)"
vorn_unset_proxies
# Tests labelled "timing" hold a shared resource lock, so ctest runs them one at a time even
# with -j: their bounds assume they do not compete with each other for the two cores.
ctest --test-dir "$build_dir" --output-on-failure -j"$(vorn_jobs)" "$@" | tee "$build_dir/ctest.log"

if [ "${VORN_QUICK:-0}" != 1 ]; then
    ./scripts/ci_hardening.sh
fi

# The plain suite's count closes the output, after the hardening stage's own lines.
summary="$(grep -E '^[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$build_dir/ctest.log" | tail -n 1)"
if [[ "$summary" =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]]; then
    failed="${BASH_REMATCH[1]}"
    echo "$((BASH_REMATCH[2] - failed)) passed, $failed failed"
fi
