#!/usr/bin/env bash
# Line coverage of the service's own code over the whole test suite (timing tests included):
# an instrumented -O0 build in its own folder, ctest, then gcov. Prints one figure and a table per
# folder; lines of headers count once however many translation units include them.
#   scripts/coverage.sh [ctest args...]      (VORN_COV_DIR overrides the folder, default build-cov)
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/lib.sh

build_dir="${VORN_COV_DIR:-build-cov}"
# No compiler cache: the notes files record the compiling folder, which a cached object would not.
vorn_logged "$build_dir/logs/configure.log" cmake -S . -B "$build_dir" -G Ninja \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_FLAGS="--coverage -O0" -DCMAKE_CXX_FLAGS="--coverage -O0" \
    -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage \
    -DVORN_BUILD_BENCH=OFF
vorn_logged "$build_dir/logs/build.log" cmake --build "$build_dir" -j"$(vorn_jobs)"

# Counters from an earlier run would add to this one's.
find "$build_dir" -name '*.gcda' -delete
vorn_unset_proxies
# A failing test still leaves its counters: report coverage, then the suite's verdict.
status=0
ctest --test-dir "$build_dir" --output-on-failure -j"$(vorn_jobs)" "$@" >"$build_dir/logs/ctest.log" 2>&1 || status=$?
grep -E '^[0-9]+% tests passed' "$build_dir/logs/ctest.log" || true

python3 - "$build_dir" "$PWD" <<'EOF'
import json, os, subprocess, sys

build, root = sys.argv[1], sys.argv[2]
dirs = ["service", "config", "server_logic", "http", "utils"]

# (file, line) -> executed at least once, merged over every object that compiled the line
lines = {}
for folder, _, names in os.walk(build):
    gcda = [n for n in names if n.endswith(".gcda")]
    if not gcda:
        continue
    out = subprocess.run(["gcov", "-j", "-t", *gcda], cwd=folder, capture_output=True,
                         text=True, check=True).stdout
    for doc in out.splitlines():
        if not doc.startswith("{"):
            continue
        doc = json.loads(doc)
        for f in doc["files"]:
            source = os.path.join(doc["current_working_directory"], f["file"])
            path = os.path.relpath(os.path.normpath(source), root)
            if path.split(os.sep)[0] not in dirs:
                continue
            for ln in f["lines"]:
                key = (path, ln["line_number"])
                lines[key] = lines.get(key, False) or ln["count"] > 0

# Lines never run, one "file:line" a line, for comparing two runs.
with open(os.path.join(build, "uncovered-lines.txt"), "w") as out:
    for path, number in sorted(k for k, hit in lines.items() if not hit):
        out.write(f"{path}:{number}\n")

per_dir = {d: [0, 0] for d in dirs}
for (path, _), hit in lines.items():
    entry = per_dir[path.split(os.sep)[0]]
    entry[0] += hit
    entry[1] += 1
print(f"{'folder':<14}{'covered':>9}{'lines':>8}{'%':>8}")
for d, (hit, total) in per_dir.items():
    print(f"{d:<14}{hit:>9}{total:>8}{100.0 * hit / max(total, 1):>7.1f}%")
hit = sum(h for h, _ in per_dir.values())
total = sum(t for _, t in per_dir.values())
print(f"line coverage of service code: {100.0 * hit / max(total, 1):.1f}% ({hit}/{total})")
EOF
exit "$status"
