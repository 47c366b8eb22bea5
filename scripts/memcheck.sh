#!/usr/bin/env bash
# Runs the unit tests under valgrind's memcheck: memory that nobody wrote, that is gone, that leaks.
# One line for each test program, and all that is found; fails when anything is.
#
#   scripts/memcheck.sh [program...]     for example orvo_io_tests; all of them when none is named
#
# ORVO_BUILD names a configured build folder; build/test, as ./test.sh leaves it, where it doesn't. A
# finding is read more easily in build/dev, which has symbols.
set -euo pipefail
cd "$(dirname "$0")/.."

programs=("$@")
if [ ${#programs[@]} -eq 0 ]; then
  # The longest one first.
  programs=(orvo_io_tests orvo_compute_tests orvo_model_tests orvo_geometry_tests
    orvo_interface_tests orvo_allocation_tests)
fi

build=${ORVO_BUILD:-build/test}
jobs=$(nproc)
if ! cmake --build "$build" -j "$jobs" --target "${programs[@]}" >"$build/memcheck.log" 2>&1; then
  cat "$build/memcheck.log" >&2
  echo "memcheck.sh: FAILED to build; see above" >&2
  exit 1
fi

# Memcheck keeps notes on every byte that is allocated, so that tests of resident memory measure those;
# and it rounds to nearest, whatever a program asks for.
left_out='HostileStl.CountCostsAddressesAndNoMemory:HostileStl.LargestCountsGiveZeroPagesOrThrow'
left_out+=':NumberParse.AgreesWithTheCLibraryInEveryRounding'

# Random tests run few cases. Tests count allocations by an operator new of their own, which memcheck
# leaves alone.
check() {
  local program=$1 path log status=0
  path=$(find "$build/tests" -name "$program" -type f)
  log=$build/memcheck.$program.log
  ORVO_TEST_CASES=1 valgrind --quiet --error-exitcode=99 --leak-check=full --num-callers=30 \
    --errors-for-leak-kinds=definite,indirect,possible --soname-synonyms=somalloc=nouserintercepts \
    --suppressions=tests/valgrind.supp "$path" --gtest_brief=1 \
    --gtest_filter="-$left_out" >"$log" 2>&1 || status=$?
  if [ "$status" -eq 0 ]; then
    echo "$program: $(sed -n 's/^\[==========\] \(.*\) ran\..*/\1/p' "$log"), nothing found"
  else
    cat "$log" >&2
    echo "memcheck.sh: FAILED: $program ended with $status; see above" >&2
  fi
  return "$status"
}
export -f check
export build left_out
printf '%s\n' "${programs[@]}" | xargs -P "$jobs" -I{} bash -c 'check {}'
