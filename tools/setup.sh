#!/bin/bash
# Brings a Debian 12 machine to the state in which every target of the Makefile works. Installs what is
# missing and nothing else, so a second run takes a second and needs neither root nor network.
set -euo pipefail

packages=(
    # native build, checks
    cmake ninja-build g++ binutils make git ccache python3 pkgconf
    # the reference, the examples of the guide
    doxygen mono-mcs mono-runtime
    clang clang-format clang-tidy libclang-rt-14-dev
    # the library, the program, tests (netpbm: another reader and writer of BMP files), benchmarks
    libhwy-dev zlib1g-dev libjpeg62-turbo-dev libeigen3-dev googletest
    libpng-dev libtiff-dev nlohmann-json3-dev libcli11-dev netpbm
    libbenchmark-dev libopencv-core-dev libopencv-imgproc-dev
    # Windows: compilers, zlib, source packages and an assembler for the other libraries, Wine to run the tests
    g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix libz-mingw-w64-dev nasm
    dpkg-dev ca-certificates
    wine wine64 wine32:i386 xvfb xauth
)

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

missing() {
    local package
    for package in "${packages[@]}"; do
        dpkg -s "$package" 2>/dev/null | grep -q '^Status: install ok installed' || echo "$package"
    done
}

has_sources() {
    apt-get indextargets --format '$(CODENAME)/$(COMPONENT)' 'Created-By: Sources' | grep -qx bookworm/main
}

# The key of an archive that two entries name has to be given the same way in both, or apt refuses both;
# so the entry for source packages repeats whatever the entry for binary packages says.
add_sources() {
    local uri key
    uri=$(apt-get indextargets --format '$(REPO_URI) $(CODENAME)/$(COMPONENT)' 'Created-By: Packages' |
          awk '$2 == "bookworm/main" && !found++ {print $1}')
    uri=${uri:-http://deb.debian.org/debian/}
    key=$({ cat /etc/apt/sources.list.d/*.sources /etc/apt/sources.list /etc/apt/sources.list.d/*.list \
                2>/dev/null || true; } |
          awk -v uri="${uri%/}" 'BEGIN {RS = ""} index($0, uri) && index($0, "bookworm") {print}' |
          sed -nE 's/^Signed-By: *//p; s/.*signed-by=([^] ]*).*/\1/p' | sed -n 1p)
    printf 'Types: deb-src\nURIs: %s\nSuites: bookworm\nComponents: main\n%s' "$uri" \
           "${key:+Signed-By: $key$'\n'}" |
        as_root tee /etc/apt/sources.list.d/tqimage20-sources.sources >/dev/null
}

mapfile -t wanted < <(missing)
# Once the sources of the libraries for Windows are here, no index of source packages is asked for any more.
sources=$(dirname "$0")/../build/deps/source
have_sources() { [ -n "$(find "$sources" -maxdepth 1 -name 'libjpeg-turbo-*' -type d 2>/dev/null)" ]; }
if [ ${#wanted[@]} = 0 ] && { has_sources || have_sources; }; then
    exit 0
fi

echo "setup: installing ${wanted[*]:-the index of source packages}"
dpkg --print-foreign-architectures | grep -qx i386 || as_root dpkg --add-architecture i386
has_sources || add_sources
# One index that cannot be fetched (a vendor's repository that happens to be configured) is no reason to
# stop: what is really missing shows itself in the installation.
as_root apt-get update -q || echo "setup: some package index could not be refreshed, going on" >&2
if [ ${#wanted[@]} != 0 ]; then
    # From one suite, so that the i386 libraries have the versions of their amd64 twins.
    install=(env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends)
    as_root "${install[@]}" -t bookworm "${wanted[@]}" || as_root "${install[@]}" "${wanted[@]}"
fi
mapfile -t wanted < <(missing)
if [ ${#wanted[@]} != 0 ]; then
    echo "setup: could not install ${wanted[*]}" >&2
    exit 1
fi
