#!/bin/bash
# The example is the README's, compiles as C99 against the public headers without a warning, and measures.
set -euo pipefail

program=$(realpath "$1")
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(dirname "$(dirname "$program")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -n '/^```c$/,/^```$/p' "$root/README.md" | sed '1d;$d' >"$work/readme.c"
[ -s "$work/readme.c" ]
python3 - "$work/readme.c" "$root/docs/examples/first_measurement.c" <<'PY'
import sys
readme, example = (open(name).read() for name in sys.argv[1:])
sys.exit(None if readme in example else "README.md shows another example than docs/examples/first_measurement.c")
PY

# A library with sanitizers needs a program with the same ones, from the same compiler.
compiler=$(sed -n 's/^CMAKE_C_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt")
flags=()
# Not through a pipe to grep -q: it ends at its first find and nm's broken pipe would count as none.
symbols=$(nm -D "$build/lib/libtqimage20.so")
if [[ $symbols == *__asan_init* ]]; then flags=(-fsanitize=address,undefined); fi
"$compiler" -std=c99 -pedantic -Wall -Wextra -Werror "${flags[@]}" -I"$root/include" \
    "$root/docs/examples/first_measurement.c" -L"$build/lib" -Wl,-rpath,"$build/lib" -ltqimage20 -o "$work/example"

# 12000 grey are 120 lx; half a pel off the axis at 2 m that is 480 cd.
printed=$("$work/example")
[ "$printed" = "480.00 cd" ] || { echo "printed: $printed" >&2; exit 1; }
