#!/usr/bin/env bash
# Builds the service and the host runner, then runs the demo: one request through the whole
# service against a local HTTPS stand-in of the routing service.
set -euo pipefail
cd "$(dirname "$0")/.."

./scripts/setup.sh
build_dir="${VORN_BUILD_DIR:-build}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${VORN_BUILD_TYPE:-RelWithDebInfo}" >/dev/null
cmake --build "$build_dir" -j"$(nproc)" --target vornctl >/dev/null
unset http_proxy https_proxy HTTP_PROXY HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY
exec "$build_dir/tools/vornctl" demo
