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

# Wine's server ends when its last program has ended. A program that starts in this moment is turned
# away before its first instruction, which befell one of 50 starts in a row; it is started again.
errors=$(mktemp)
trap 'rm -f "$errors"' EXIT
for _ in 1 2 3 4 5; do
  status=0
  "$wine" "$@" 2>"$errors" || status=$?
  if [ "$status" -eq 0 ] || ! grep -q '^wine client error:0: ' "$errors"; then
    break
  fi
  sleep 1
done
cat "$errors" >&2
exit "$status"
