#!/usr/bin/env python3
"""Prints the sources of one host stand-in library as GN source labels, read from the
vorn_platform_library() call in the component's CMakeLists.txt, so that CMake and the host GN
build compile the same files without a second list to keep.

Usage: platform_sources.py <CMakeLists.txt> <library name> <label folder of the component>
"""
import re
import sys


def main(cmake_file, library, label_dir):
    text = re.sub(r"#[^\n]*", "", open(cmake_file).read())
    match = re.search(r"vorn_platform_library\(\s*" + re.escape(library) + r"\s+([^)]*)\)", text)
    if not match:
        sys.exit(cmake_file + ": no vorn_platform_library(" + library + " ...)")
    words = match.group(1).split()
    if "SOURCES" not in words:
        sys.exit(cmake_file + ": vorn_platform_library(" + library + ") names no SOURCES")
    sources = []
    for word in words[words.index("SOURCES") + 1:]:
        if word.isupper():
            break
        sources.append(label_dir + "/" + word)
    print("\n".join(sources))


if __name__ == "__main__":
    main(*sys.argv[1:])
