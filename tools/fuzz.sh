#!/bin/bash
# fuzz.sh SECONDS [TARGET...]   lets each fuzz target run that long, two at a time; what it learns stays below
# build/fuzz for the next run. An input that breaks something is named at the end and kept there.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=$1
shift
targets=("$@")
if [ ${#targets[@]} = 0 ]; then
    for source in fuzz/*_fuzz.cpp; do
        source=${source##*/}
        targets+=("${source%_fuzz.cpp}")
    done
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "${JOBS:-2}"

run() {
    local name=$1 corpus=build/fuzz/fuzz/corpus/$1 seeds=()
    mkdir -p "$corpus"
    [ -d "fuzz/seeds/$name" ] && seeds=("fuzz/seeds/$name")
    if ASAN_OPTIONS=allocator_may_return_null=1 "build/fuzz/bin/${name}_fuzz" -max_total_time="$seconds" \
        -timeout=60 -artifact_prefix="build/fuzz/$name-" "$corpus" "${seeds[@]}" >"build/fuzz/$name.log" 2>&1
    then
        echo "$name: nothing found in $seconds s ($(ls "$corpus" | wc -l) inputs kept)"
    else
        tail -30 "build/fuzz/$name.log"
        echo "$name: FOUND, see build/fuzz/$name.log"
        return 1
    fi
}
export -f run
export seconds
printf '%s\n' "${targets[@]}" | xargs -P 2 -I{} bash -c 'run {}'
