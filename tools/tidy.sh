#!/bin/bash
# tidy.sh [FILE...]   clang-tidy over the named sources, or over all of src/ and cli/, with the flags of the
# release build. Files that include a SIMD kernel once a target are read with the baseline target only.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# = 0 ]; then
    mapfile -t sources < <(python3 -c '
import json
for entry in json.load(open("build/release/compile_commands.json")):
    if "/src/" in entry["file"] and "/usr/" not in entry["file"] or "/cli/" in entry["file"]:
        print(entry["file"])')
    set -- "${sources[@]}"
fi
# Warnings of GCC that clang does not know are no finding.
printf '%s\0' "$@" | xargs -0 -n 4 -P 2 clang-tidy -p build/release --quiet --warnings-as-errors='*' \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-DHWY_COMPILE_ONLY_STATIC 2>/dev/null
echo "clang-tidy: $# sources, nothing found"
