#!/usr/bin/env bash
# Host-side checks of the device integration files: GN files parse and are formatted, the
# JSON files (bundle, SA profile, init configuration, installed configuration) are valid, the
# GN library builds from the same sources as the CMake one, and the GN build compiles and links
# on the host against the platform stand-ins (gn_host/). Quiet on success but for one summary
# line; every failure is named and makes the exit code non-zero.
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v gn >/dev/null; then
    echo "check_device_build: 'gn' not found (Debian package generate-ninja)" >&2
    exit 1
fi

failures=0
fail()
{
    echo "check_device_build: $*" >&2
    failures=$((failures + 1))
}

mapfile -t gn_files < <(find . \( -name .git -o -path ./out -o -path './build*' \) -type d -prune \
    -o -type f \( -name '*.gn' -o -name '*.gni' \) -print | sort)
for f in "${gn_files[@]}"; do
    rc=0
    out=$(gn format --dry-run "$f" 2>&1) || rc=$?
    case $rc in
        0) ;;
        2) fail "$f is not formatted (run: gn format $f)" ;;
        *) fail "$f does not parse:"$'\n'"$out" ;;
    esac
done

shopt -s nullglob
json_files=(bundle.json sa_profile/*.json etc/init/*.cfg etc/*.json)
shopt -u nullglob
for f in "${json_files[@]}"; do
    if ! out=$(python3 -m json.tool "$f" 2>&1 >/dev/null); then
        fail "$f is not valid JSON: $out"
    fi
done

# Compares the sources of the GN target vorn_service, read from gn's own parse tree on stdin,
# with VORN_SERVICE_SOURCES in the CMake file given as argument, both as sets of
# repository-relative paths. Prints the number of sources, or the differences and fails.
read -r -d '' compare_sources <<'EOF' || true
import json, os, re, sys

def fail(message):
    sys.exit(message)

def gn_sources(tree):
    for node in tree.get("child", []):
        if node.get("type") != "FUNCTION" or node.get("value") != "ohos_shared_library":
            continue
        args, block = node["child"]
        if [json.loads(a["value"]) for a in args["child"]] != ["vorn_service"]:
            continue
        sources = []
        for statement in block.get("child", []):
            if statement.get("type") != "BINARY" or statement["child"][0].get("value") != "sources":
                continue
            value = statement["child"][1]
            items = value.get("child", [])
            if value.get("type") != "LIST" or any(i.get("type") != "LITERAL" for i in items):
                fail("BUILD.gn: the sources of vorn_service must be a list of plain strings")
            sources += [os.path.normpath(json.loads(i["value"])) for i in items]
        return sources
    fail('BUILD.gn: no ohos_shared_library("vorn_service")')

def cmake_sources(path):
    text = re.sub(r"#[^\n]*", "", open(path).read())
    match = re.search(r"set\(\s*VORN_SERVICE_SOURCES\s+([^)]*)\)", text)
    if not match:
        fail(path + ": no set(VORN_SERVICE_SOURCES ...)")
    prefix = "${CMAKE_CURRENT_LIST_DIR}/"
    base = os.path.dirname(path)
    sources = []
    for entry in match.group(1).split():
        if not entry.startswith(prefix):
            fail(path + ": unexpected entry " + entry + " (expected " + prefix + "...)")
        sources.append(os.path.normpath(os.path.join(base, entry[len(prefix):])))
    return sources

gn = set(gn_sources(json.load(sys.stdin)))
cmake = set(cmake_sources(sys.argv[1]))
if gn != cmake:
    lines = ["service sources differ between BUILD.gn (vorn_service) and " + sys.argv[1] + ":"]
    lines += ["  only in BUILD.gn: " + s for s in sorted(gn - cmake)]
    lines += ["  only in " + sys.argv[1] + ": " + s for s in sorted(cmake - gn)]
    fail("\n".join(lines))
print(len(gn))
EOF
if ! gn_tree=$(gn format --dump-tree=json BUILD.gn 2>/dev/null); then
    fail "BUILD.gn is missing or does not parse"
elif ! source_count=$(python3 -c "$compare_sources" cmake/service_sources.cmake <<<"$gn_tree" 2>&1); then
    fail "$source_count"
fi
[ "$failures" -eq 0 ] || exit 1

# Compiles and links everything bundle.json names (service, inner kits, unit tests, fuzz
# targets) from the GN files, with gn_host/build standing in for the device tree's build/ and
# the platform stand-ins for the external_deps. The source root is generated so that the
# repository sits where bundle.json puts it on a device. VORN_GN_OUT keeps the output (and
# ninja's incremental state) in that folder; otherwise it goes to a temporary one.
repo=$(pwd)
if [ -n "${VORN_GN_OUT:-}" ]; then
    out=$VORN_GN_OUT
    mkdir -p "$out"
else
    out=$(mktemp -d "${TMPDIR:-/tmp}/vorn_gn.XXXXXX")
    trap 'rm -rf "$out"' EXIT
fi
out=$(cd "$out" && pwd)
root=$out/root
rm -rf "$root"
mkdir -p "$root/foundation/communication"
ln -s "$repo" "$root/foundation/communication/vorn_service"
ln -s "$repo/gn_host/build" "$root/build"
# The fuzz targets include libFuzzer's FuzzedDataProvider.h, which a device's clang ships;
# the host takes it from the installed clang whatever the compiler.
fuzzer_headers=$(clang -print-resource-dir 2>/dev/null)/include/fuzzer
if [ ! -f "$fuzzer_headers/FuzzedDataProvider.h" ]; then
    echo "check_device_build: no fuzzer/FuzzedDataProvider.h (install clang)" >&2
    exit 1
fi
mkdir -p "$root/third_party/fuzzer/include"
ln -s "$fuzzer_headers" "$root/third_party/fuzzer/include/fuzzer"
cat >"$root/.gn" <<'DOTFILE'
buildconfig = "//build/config/BUILDCONFIG.gn"
root = "//build/device_build"
script_executable = "python3"
DOTFILE

launcher=${VORN_GN_LAUNCHER-$(command -v ccache || true)}
gn_args="cc_launcher=\"$launcher\""
[ -z "${CC:-}" ] || gn_args+=" host_cc=\"$CC\""
[ -z "${CXX:-}" ] || gn_args+=" host_cxx=\"$CXX\""
if ! log=$(gn gen "$out/out" --root="$root" --args="$gn_args" 2>&1); then
    echo "check_device_build: gn gen failed:"$'\n'"$log" >&2
    exit 1
fi
if ! log=$(ninja -C "$out/out" -j "${VORN_GN_JOBS:-2}" 2>&1); then
    echo "check_device_build: the GN build does not compile or link:" >&2
    # The errors without ninja's progress lines and the long compiler command lines.
    grep -v -E '^(\[[0-9]+/[0-9]+\] |ninja: Entering |(\S*ccache )?\S*(g\+\+|gcc|clang\+\+|clang) )' <<<"$log" |
        head -n 40 >&2
    exit 1
fi
built=$(cd "$out/out" && ls *.z.so | wc -l)
programs=$(cd "$out/out" && find . -maxdepth 1 -type f -executable ! -name '*.so' | wc -l)

echo "check_device_build: ${#gn_files[@]} GN files formatted, ${#json_files[@]} JSON files valid," \
    "$source_count service sources equal in BUILD.gn and cmake/service_sources.cmake," \
    "GN build linked $built libraries and $programs test programs"
exit 0
