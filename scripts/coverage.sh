#!/usr/bin/env bash
# Builds with instrumentation in build/coverage, runs the tests there, prints the line and branch
# coverage of the library and of those on top of it, and fails when less than 98 % of its lines or
# 90 % of its branches ran, or less than 95 % and 82 % of theirs. Branches that only an exception out
# of a called function takes are not counted.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/coverage
jobs=$(nproc)
launcher=
if command -v ccache >/dev/null; then
  launcher=ccache
fi

mkdir -p "$build"
if ! { cmake --preset coverage -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" &&
  cmake --build "$build" -j "$jobs"; } >"$build/build.log" 2>&1; then
  cat "$build/build.log" >&2
  echo "coverage.sh: FAILED to build; see above" >&2
  exit 1
fi

# Counts of earlier runs would only add up.
find "$build" -name '*.gcda' -delete
if ! ctest --preset coverage -j "$jobs" >"$build/test.log" 2>&1; then
  grep -vE '^ *Start +[0-9]+: |^ *[0-9]+/[0-9]+ Test +#[0-9]+: .* Passed ' "$build/test.log" >&2
  echo "coverage.sh: FAILED: not all tests passed; see above" >&2
  exit 1
fi

# Reports on folders: a name, the least shares of lines and of branches, and the folders.
report() {
  local name=$1 lines=$2 branches=$3
  shift 3
  gcovr --root . --object-directory "$build" "${@/#/--filter=}" \
    --exclude-throw-branches --exclude-unreachable-branches \
    --html-details "$build/$name.html" --txt "$build/$name.txt" --print-summary \
    --fail-under-line "$lines" --fail-under-branch "$branches" "$build" >"$build/summary.txt" || {
    cat "$build/$name.txt"
    cat "$build/summary.txt"
    echo "coverage.sh: FAILED: $* below $lines % of the lines or $branches % of the branches" >&2
    return 1
  }
  echo "$*"
  cat "$build/summary.txt"
  echo "Each line: $build/$name.html"
}

report coverage 98 90 geometry/ model/ io/ compute/
report coverage-above 95 82 path/ exchange/
