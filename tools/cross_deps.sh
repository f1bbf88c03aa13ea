#!/bin/bash
# cross_deps.sh win32|win64: builds into build/deps/<target> the libraries that Debian has no Windows package
# of, from Debian's own source packages. Each is done once; delete the folder to do it again.
set -euo pipefail

target=$1
root=$(cd "$(dirname "$0")/.." && pwd)
deps=$root/build/deps
prefix=$deps/$target

# What a library installs last says that it is there.
declare -A mark=(
    [highway]=$prefix/lib/cmake/hwy/hwy-config.cmake
    [libjpeg-turbo]=$prefix/include/jpeglib.h
)
declare -A options=(
    [highway]="-DCMAKE_INSTALL_LIBDIR=lib -DHWY_ENABLE_CONTRIB=OFF -DHWY_ENABLE_EXAMPLES=OFF
               -DHWY_ENABLE_TESTS=OFF -DBUILD_TESTING=OFF -DBUILD_SHARED_LIBS=OFF"
    # This one takes a relative folder for one of the work directory. Without an assembler it would build too,
    # and be slow: that is an error here.
    [libjpeg-turbo]="-DCMAKE_INSTALL_LIBDIR=$prefix/lib -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF
                     -DREQUIRE_SIMD=ON"
)

missing() {
    local package
    for package in highway libjpeg-turbo; do
        [ -e "${mark[$package]}" ] || echo "$package"
    done
}

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

build() {
    local package=$1 source chosen
    source=$(fetch "$package")
    read -r -d '' -a chosen <<<"${options[$package]}" || true
    cmake -S "$source" -B "$prefix/$package" -G Ninja \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchains/$target.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" "${chosen[@]}"
    cmake --build "$prefix/$package" -j2
    cmake --install "$prefix/$package"
}

[ -z "$(missing)" ] && exit 0
mkdir -p "$deps"
# Two configurations may start at the same time.
exec 9>"$deps/.lock"
flock 9
for package in $(missing); do
    log=$deps/$target-$package.log
    trap 'tail -30 "$log" >&2' EXIT
    echo "Building $package for $target (once; log in $log)"
    build "$package" >"$log" 2>&1
    trap - EXIT
done
