#!/bin/sh
# Makes every hostile file and large input that we know, reads each in a process of its own, and
# prints a table: its bytes, how reading ended, how long reading took and then computing with what
# was read, and the most memory that the process held so far.
#
#   scripts/hostile-files.sh [SCALE [NAME]]   for example scripts/hostile-files.sh 0.1 attributes
#
# SCALE makes the large inputs smaller (1: about 100 MB), NAME takes those with that in their name.
set -eu
cd "$(dirname "$0")/.."

build=build/hostile-files
mkdir -p build
launcher=
if command -v ccache >/dev/null 2>&1; then
  launcher=ccache
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVO_BUILD_TOOLS=OFF \
  -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" >"$build.log" 2>&1 ||
  { cat "$build.log" >&2; exit 1; }
cmake --build "$build" --target orvo_hostile_files >"$build.log" 2>&1 ||
  { cat "$build.log" >&2; exit 1; }
exec "$build/tests/limits/orvo_hostile_files" "$@"
