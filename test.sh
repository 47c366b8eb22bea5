#!/bin/sh
# Installs what is missing, builds everything with optimization in build/test, and runs all tests.
# May be run again at any time; only what changed is built anew.
#
#   ./test.sh [CMake arguments...]      for example ./test.sh -DCMAKE_CXX_COMPILER=clang++
set -eu
cd "$(dirname "$0")"

./setup.sh

build=build/test
jobs=$(nproc 2>/dev/null || echo 2)

launcher=
if command -v ccache >/dev/null 2>&1; then
  launcher=ccache
fi

# Runs one step; its output is shown only when it fails.
quietly() {
  what=$1
  shift
  if ! "$@" >"$build/$what.log" 2>&1; then
    cat "$build/$what.log" >&2
    echo "test.sh: FAILED to $what; see above" >&2
    exit 1
  fi
}

mkdir -p "$build"
# A build folder that was copied or moved with the checkout is of no use here.
fresh=
if [ -f "$build/CMakeCache.txt" ] &&
  ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$(pwd -P)" "$build/CMakeCache.txt"; then
  fresh=--fresh
fi

echo "Building in $build ..."
quietly configure cmake $fresh -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" "$@"
quietly build cmake --build "$build" -j "$jobs"

echo "Testing ..."
status=0
if [ -t 1 ]; then
  ctest --test-dir "$build" -j "$jobs" --output-on-failure --no-tests=error --progress || status=$?
else
  ctest --test-dir "$build" -j "$jobs" --output-on-failure --no-tests=error \
    >"$build/test.log" 2>&1 || status=$?
  if [ "$status" -eq 0 ]; then
    sed -n '/tests passed/,$p' "$build/test.log"
  else
    grep -vE '^ *Start +[0-9]+: |^ *[0-9]+/[0-9]+ Test +#[0-9]+: .* Passed ' "$build/test.log" || true
  fi
fi
if [ "$status" -ne 0 ]; then
  echo "test.sh: FAILED: not all tests passed; see above" >&2
  exit "$status"
fi
