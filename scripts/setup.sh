#!/usr/bin/env bash
# Installs the build and test dependencies with apt. Quiet and quick when all is present.
set -euo pipefail

packages=(
  cmake g++ ninja-build pkg-config
  libcurl4-openssl-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libssl-dev openssl zlib1g-dev
  clang libclang-rt-14-dev
  generate-ninja ccache
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

[ ${#missing[@]} -eq 0 ] && exit 0

echo "setup: installing ${missing[*]}" >&2
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
