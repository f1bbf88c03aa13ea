#!/bin/bash
# format.sh           lays out every C and C++ source as .clang-format says
# format.sh --check   changes nothing, names the files that differ and fails
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1:-}" = --check ] && mode=(--dry-run --Werror)
folders=()
for folder in include src cli bench tests docs/examples fuzz; do
    [ -d "$folder" ] && folders+=("$folder")
done
find "${folders[@]}" \( -name '*.h' -o -name '*.cpp' -o -name '*.c' \) -print0 |
    xargs -0 clang-format "${mode[@]}"
