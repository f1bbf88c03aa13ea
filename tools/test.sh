#!/bin/bash
# test.sh [PRESET...]   builds and tests the given presets (release, asan, tsan, fuzz, win64 and win32 when
# none is given) and checks the layout of the sources. Goes on after a failure, so that one run shows all of
# them; the last line says how many tests passed and failed.
set -uo pipefail
cd "$(dirname "$0")/.."

presets=("$@")
[ ${#presets[@]} = 0 ] && presets=(release asan tsan fuzz win64 win32)
logs=build/logs
mkdir -p "$logs"

# Prints a step's name while it runs, its output only when it fails.
step() {
    local name=$1 log=$logs/${1//[ :]/_}.log start=$SECONDS
    shift
    printf '%-24s' "$name"
    if "$@" >"$log" 2>&1; then
        echo "ok      $((SECONDS - start)) s"
        echo "$name" >>"$logs/passed"
    else
        echo "FAILED  $((SECONDS - start)) s"
        # A compiler says what is wrong first, a test run last.
        grep -E -A 8 'error:|undefined reference' "$log" | head -40
        tail -40 "$log"
        echo "$name" >>"$logs/failed"
        return 1
    fi
}

run_suite() {
    rm -rf "build/$1/results"
    ctest --preset "$1" --output-junit "results/ctest.xml"
}

rm -f "$logs"/*
failed=0
step "layout" tools/format.sh --check || failed=1
for preset in "${presets[@]}"; do
    rm -rf "build/$preset/results"
    step "$preset: configure" cmake --preset "$preset" || { failed=1; continue; }
    step "$preset: build" cmake --build --preset "$preset" -j "${JOBS:-2}" || { failed=1; continue; }
    step "$preset: test" run_suite "$preset" || failed=1
done
python3 tools/summary.py "$logs" "${presets[@]}" || failed=1
exit $failed
