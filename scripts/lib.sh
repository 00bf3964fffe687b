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

# Installs what is missing and configures the host build in BUILD_DIR (the build type from
# VORN_BUILD_TYPE, RelWithDebInfo by default).
#   vorn_configure_host BUILD_DIR
vorn_configure_host()
{
    local dir="$1"
    ./scripts/setup.sh
    # shellcheck disable=SC2046
    vorn_logged "$dir/logs/configure.log" cmake -S . -B "$dir" -G Ninja \
        -DCMAKE_BUILD_TYPE="${VORN_BUILD_TYPE:-RelWithDebInfo}" $(vorn_launcher_args)
}

# Runs one libFuzzer target at nice level NICE from WORK, emptied first, on a fresh working
# corpus (WORK/corpus) and the seeds in SEEDS, with the given options added; its output goes to
# WORK/log, its findings to WORK/. Returns the fuzzer's exit status. The service reads its
# configuration relative to the working folder, and must find none there.
#   vorn_fuzz_run NICE FUZZER WORK SEEDS [OPTION...]
vorn_fuzz_run()
{
    local nice="$1" fuzzer="$2" work="$3" seeds="$4"
    shift 4
    rm -rf "$work"
    mkdir -p "$work/corpus"
    (cd "$work" && nice -n "$nice" "$fuzzer" corpus "$seeds" -timeout=60 -rss_limit_mb=4096 \
        -artifact_prefix="$work/" -print_final_stats=1 "$@" >"$work/log" 2>&1)
}

# The number of inputs the run in WORK executed, as its final statistics tell it.
#   vorn_fuzz_executed WORK
vorn_fuzz_executed()
{
    sed -n 's/^stat::number_of_executed_units: *//p' "$1/log"
}

# Prints what the run in WORK found: the sanitizer's summary lines, and how to replay each input
# it kept, every line headed by TOOL.
#   vorn_fuzz_report TOOL FUZZER WORK
vorn_fuzz_report()
{
    local tool="$1" fuzzer="$2" work="$3"
    grep -E "^(==[0-9]+==ERROR|SUMMARY|.*runtime error)" "$work/log" | head -5 || true
    for artifact in "$work"/crash-* "$work"/leak-* "$work"/timeout-* "$work"/oom-*; do
        [ -e "$artifact" ] && echo "$tool: replay with: (cd $work && $fuzzer $artifact)"
    done
    return 0
}
