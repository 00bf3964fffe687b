# Shared set-up of the project's scripts; source it, do not run it.

# Tests and tools reach only 127.0.0.1: a proxy from the environment must not redirect them.
vorn_unset_proxies()
{
    unset http_proxy https_proxy HTTP_PROXY HTTPS_PROXY all_proxy ALL_PROXY no_proxy NO_PROXY
}

# Compilations are cached by their paths relative to the checkout, so that a fresh clone in
# another folder (as CI makes) still finds what an earlier build compiled.
export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$PWD}"
export CCACHE_NOHASHDIR="${CCACHE_NOHASHDIR:-1}"

# CMake arguments that route compilations through ccache when it is installed.
vorn_launcher_args()
{
    if command -v ccache >/dev/null; then
        echo "-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
    fi
}

vorn_jobs()
{
    nproc 2>/dev/null || echo 2
}

# Runs a command with its output in LOG; on failure prints the log's tail, so that a broken
# build shows its compiler error in CI's output instead of only an exit code.
#   vorn_logged LOG command [args...]
vorn_logged()
{
    local log="$1"
    shift
    mkdir -p "$(dirname "$log")"
    if ! "$@" >"$log" 2>&1; then
        echo "failed: $*" >&2
        echo "---- last lines of $log ----" >&2
        tail -n 60 "$log" >&2
        return 1
    fi
}

# Configures BUILD_DIR for the libFuzzer targets (clang, ASan+UBSan) and builds them; the build's
# output goes to BUILD_DIR/logs, and its tail to standard error on failure.
#   vorn_build_fuzzers BUILD_DIR
vorn_build_fuzzers()
{
    local dir="$1"
    # shellcheck disable=SC2046
    vorn_logged "$dir/logs/configure.log" cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ $(vorn_launcher_args) \
        -DVORN_BUILD_FUZZ=ON -DVORN_BUILD_TESTS=OFF -DVORN_BUILD_BENCH=OFF
    vorn_logged "$dir/logs/build.log" nice -n 19 cmake --build "$dir" -j"$(vorn_jobs)" --target vorn_fuzzers
}
