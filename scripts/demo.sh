#!/usr/bin/env bash
# Builds the service and the host runner, then runs the demo: one request through the whole
# service against a local HTTPS stand-in of the routing service.
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/lib.sh

build_dir="${VORN_BUILD_DIR:-build}"
vorn_configure_host "$build_dir"
vorn_logged "$build_dir/logs/demo-build.log" cmake --build "$build_dir" -j"$(vorn_jobs)" --target vornctl
vorn_unset_proxies
exec "$build_dir/tools/vornctl" demo
