#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite, then the hardening
# stage: the suite again under AddressSanitizer+UBSan and ThreadSanitizer, and every fuzz target
# briefly. VORN_QUICK=1 stops after the plain suite (about a minute on a warm build).
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/setup.sh
build_dir="${VORN_BUILD_DIR:-build}"
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${VORN_BUILD_TYPE:-RelWithDebInfo}" "${launcher[@]}" >/dev/null
cmake --build "$build_dir" -j"$(nproc)"
# Tests reach only 127.0.0.1; a proxy from the environment must not redirect them.
unset http_proxy https_proxy HTTP_PROXY HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY
ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)" "$@" | tee "$build_dir/ctest.log"

if [ "${VORN_QUICK:-0}" != 1 ]; then
    ./scripts/ci_hardening.sh
fi

# The plain suite's count closes the output, after the hardening stage's own lines.
summary="$(grep -E '^[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$build_dir/ctest.log" | tail -n 1)"
if [[ "$summary" =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]]; then
    failed="${BASH_REMATCH[1]}"
    echo "$((BASH_REMATCH[2] - failed)) passed, $failed failed"
fi
