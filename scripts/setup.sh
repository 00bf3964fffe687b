#!/usr/bin/env bash
# Installs the build and test dependencies with apt. Quiet and quick when all is present.
set -euo pipefail

packages=(
  cmake g++ ninja-build pkg-config
  libcurl4-openssl-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libssl-dev openssl zlib1g-dev
  nghttp2-server
  clang
  generate-ninja ccache
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive

install()
{
    echo "setup: installing $*" >&2
    $SUDO apt-get update -qq
    $SUDO apt-get install -y -qq --no-install-recommends "$@" >/dev/null
}

[ ${#missing[@]} -eq 0 ] || install "${missing[@]}"

# The sanitizer and fuzzer runtimes must be those of the clang that is installed.
clang_major="$(clang -dumpversion | cut -d. -f1)"
runtime="libclang-rt-${clang_major}-dev"
if ! dpkg-query -W -f='${Status}' "$runtime" 2>/dev/null | grep -q "install ok installed"; then
    install "$runtime"
fi
