#!/usr/bin/env bash
# The long fuzzing campaign: every libFuzzer target (or the ones named) runs RUNS executions in
# one process at the lowest priority, from a fresh working corpus seeded with
# fuzz/corpus/<target>/. At the end of each run the inputs that reached something the seeds do
# not are merged (-merge=1, by edges) into fuzz/corpus/<target>/, so the committed corpus grows by a
# minimal set only.
#
#   scripts/fuzz_campaign.sh [RUNS] [TARGET...]     (default 1000000 runs, all targets)
#
# VORN_FUZZ_BUILD_DIR chooses the build folder (default build-fuzz); the work goes to
# <build>/fuzz-campaign/<target>/ (log, corpus, crash-*). The figures per target (executions,
# seconds, findings, working corpus, committed corpus before and after) are printed as a
# Markdown table and kept in <build>/fuzz-campaign/figures.md. A finding stops that target,
# keeps its corpus out of fuzz/corpus, and makes the script exit non-zero.
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"
source scripts/lib.sh

runs="${1:-1000000}"
shift || true
build_dir="$(realpath -m "${VORN_FUZZ_BUILD_DIR:-build-fuzz}")"
vorn_build_fuzzers "$build_dir"

# Nothing a fuzzer does may leave 127.0.0.1.
vorn_unset_proxies

targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
    for fuzzer in "$build_dir"/fuzz/*_fuzzer; do
        targets+=("$(basename "$fuzzer")")
    done
fi

campaign="$build_dir/fuzz-campaign"
mkdir -p "$campaign"
figures="$campaign/figures.md"
{
    echo "| Target | Executions | Time (s) | Findings | Working corpus | Committed corpus (before → after) |"
    echo "|---|---|---|---|---|---|"
} >"$figures"

count_files() { find "$1" -maxdepth 1 -type f | wc -l; }

failed=0
for name in "${targets[@]}"; do
    fuzzer="$build_dir/fuzz/$name"
    seeds="$root/fuzz/corpus/$name"
    work="$campaign/$name"
    mkdir -p "$seeds"
    echo "fuzz_campaign: $name, $runs runs"
    start=$SECONDS
    # One process at nice 19 leaves the machine to everyone else.
    rc=0
    vorn_fuzz_run 19 "$fuzzer" "$work" "$seeds" -runs="$runs" || rc=$?
    seconds=$((SECONDS - start))
    executed="$(vorn_fuzz_executed "$work")"
    findings="$(find "$work" -maxdepth 1 -type f \( -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' \
        -o -name 'oom-*' \) | wc -l)"
    if [ "$rc" -ne 0 ] && [ "$findings" -eq 0 ]; then
        findings=1  # it stopped without leaving an input: the log says why
    fi
    before="$(count_files "$seeds")"
    if [ "$findings" -eq 0 ]; then
        # Edges only, not hit counts: counted, the JSON library alone keeps a thousand inputs,
        # and the committed corpus is what CI reads at every run.
        (cd "$work" && nice -n 19 "$fuzzer" -merge=1 -use_counters=0 "$seeds" corpus -timeout=60 \
            -rss_limit_mb=4096 >"$work/merge.log" 2>&1)
    else
        failed=1
        echo "fuzz_campaign: $name stopped with a finding after ${executed:-?} runs; log: $work/log"
        vorn_fuzz_report fuzz_campaign "$fuzzer" "$work"
    fi
    row="| $name | ${executed:-?} | $seconds | $findings | $(count_files "$work/corpus") | $before → $(count_files "$seeds") |"
    echo "$row" >>"$figures"
    echo "fuzz_campaign: $row"
done
echo
cat "$figures"
exit "$failed"
