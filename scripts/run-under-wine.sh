#!/bin/sh
# Runs a Windows program under Wine, without a display and without Wine's own messages. The
# compiler's libraries are found where Debian keeps them. Wine's folder stays apart from the user's.
#
#   scripts/run-under-wine.sh PROGRAM.exe [ARGUMENTS...]
set -eu

wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
compiler=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-libgcc-file-name)")
threads=/usr/x86_64-w64-mingw32/lib

: "${WINEPREFIX:=$(cd "$(dirname "$0")/.." && pwd)/build/cross/wine}"
WINEDEBUG=${WINEDEBUG:--all}
WINEPATH="Z:$compiler;Z:$threads${WINEPATH:+;$WINEPATH}"
# Nothing that needs a display, a browser or another runtime.
WINEDLLOVERRIDES="mscoree,mshtml=;winex11.drv=;explorer.exe=d"
export WINEPREFIX WINEDEBUG WINEPATH WINEDLLOVERRIDES
unset DISPLAY

exec "$wine" "$@"
