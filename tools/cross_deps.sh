#!/bin/bash
# cross_deps.sh win32|win64: builds into build/deps/<target> the libraries that Debian has no Windows package
# of, from Debian's own source packages. Done once; delete the folder to do it again.
set -euo pipefail

target=$1
root=$(cd "$(dirname "$0")/.." && pwd)
deps=$root/build/deps
prefix=$deps/$target
done_mark=$prefix/.done

[ -e "$done_mark" ] && exit 0
mkdir -p "$deps"
# Two configurations may start at the same time.
exec 9>"$deps/.lock"
flock 9
[ -e "$done_mark" ] && exit 0

fetch() {
    find_source() { find "$deps/source" -mindepth 1 -maxdepth 1 -type d -name "$package-*" -print -quit; }
    local package=$1 source
    mkdir -p "$deps/source"
    source=$(find_source)
    if [ -z "$source" ]; then
        # apt drops its rights to the user _apt, which may not write here; root's download is wanted.
        (cd "$deps/source" && apt-get -q -o APT::Sandbox::User=root source "$package/bookworm") >&2
        source=$(find_source)
    fi
    echo "$source"
}

build_highway() {
    local source
    source=$(fetch highway)
    cmake -S "$source" -B "$prefix/highway" -G Ninja \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/$target.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib \
        -DBUILD_SHARED_LIBS=OFF -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF \
        -DHWY_ENABLE_TESTS=OFF -DBUILD_TESTING=OFF
    cmake --build "$prefix/highway" -j2
    cmake --install "$prefix/highway"
}

log=$deps/$target.log
trap '[ -e "$done_mark" ] || tail -30 "$log" >&2' EXIT
echo "Building Highway for $target (once; log in $log)"
build_highway >"$log" 2>&1
touch "$done_mark"
