#!/bin/bash
# wine_run.sh win32|win64 PROGRAM [ARGUMENT...]   runs a Windows program
# wine_run.sh win32|win64 --start                 makes the prefix when there is none, keeps its server alive
# wine_run.sh win32|win64 --stop                  ends that server
#
# Each target has a prefix of its own below build/, so nothing here meets a Wine the user has set up.
set -euo pipefail

target=$1
shift
root=$(cd "$(dirname "$0")/.." && pwd)
export WINEPREFIX=$root/build/$target/wine WINEARCH=$target WINEDEBUG=-all
# Neither the .NET nor the HTML engine is wanted; without this a first start asks to download them.
export WINEDLLOVERRIDES="mscoree=;mshtml="

find_server() {
    local candidate
    for candidate in wineserver /usr/lib/wine/wineserver /usr/lib/wine/wineserver64 \
                     /usr/lib/wine/wineserver32; do
        command -v "$candidate" && return
    done
    echo "wine_run: no wineserver found; tools/setup.sh installs it" >&2
    exit 127
}

make_prefix() {
    mkdir -p "$WINEPREFIX"
    exec 9>"$WINEPREFIX.lock"
    flock 9
    if [ ! -e "$WINEPREFIX/.ready" ]; then
        # A display lets the first start set up the window system, which hosts' message queues belong to.
        xvfb-run -a wineboot --init >/dev/null 2>&1 9>&-
        "$(find_server)" -w 9>&-
        touch "$WINEPREFIX/.ready"
    fi
    exec 9>&-
}

# The system processes of a prefix outlive the program that woke them and would keep its output open, for which
# whoever reads that output waits forever. So they are woken here, with nothing of the caller's in hand.
start_server() {
    make_prefix
    "$(find_server)" -k0 2>/dev/null && return
    "$(find_server)" "-p$1" </dev/null >/dev/null 2>&1
    wine cmd /c exit </dev/null >/dev/null 2>&1
}

case $1 in
    --start)
        start_server ""
        ;;
    --stop)
        "$(find_server)" -k || true
        ;;
    *)
        start_server 60
        exec wine "$@"
        ;;
esac
