#!/bin/bash
# performance.sh [REGEX]   measures anew, what the expression is found in or else everything, and replaces the
# figures of docs/performance.md; give it a quiet machine
set -euo pipefail
cd "$(dirname "$0")/.."

page=docs/performance.md
new=$(mktemp)
trap 'rm -f "$new"' EXIT
sed '/^## Figures/,$d' "$page" >"$new"
{
    echo "## Figures"
    echo
    echo "One core of a processor that calls itself $(sed -n 's/^model name\s*: //p' /proc/cpuinfo | head -n 1)."
    echo
    build/release/bin/tqimage_bench --table "${1:-}"
} >>"$new"
cat "$new" >"$page"
