#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/setup.sh
build_dir="${VORN_BUILD_DIR:-build}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${VORN_BUILD_TYPE:-RelWithDebInfo}" >/dev/null
cmake --build "$build_dir" -j"$(nproc)"
# Tests reach only 127.0.0.1; a proxy from the environment must not redirect them.
unset http_proxy https_proxy HTTP_PROXY HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY
cd "$build_dir"
ctest --output-on-failure -j"$(nproc)" "$@"
