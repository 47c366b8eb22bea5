#!/usr/bin/env bash
# Builds with instrumentation in build/coverage, runs the tests there, prints the line and branch
# coverage of the library, and fails when less than 98 % of its lines or 90 % of its branches ran.
# Branches that only an exception out of a called function takes are not counted.
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

gcovr --root . --object-directory "$build" \
  --filter 'geometry/' --filter 'model/' --filter 'io/' --filter 'compute/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --html-details "$build/coverage.html" --txt "$build/lines.txt" --print-summary \
  --fail-under-line 98 --fail-under-branch 90 "$build" >"$build/summary.txt" || {
  cat "$build/lines.txt"
  cat "$build/summary.txt"
  echo "coverage.sh: FAILED: below 98 % of the lines or 90 % of the branches" >&2
  exit 1
}
cat "$build/summary.txt"
echo "Each line: $build/coverage.html"
