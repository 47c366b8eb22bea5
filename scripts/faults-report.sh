#!/usr/bin/env bash
# Injects every fault that the tests know (refused memory, failing calls on files, odd things of the
# system) and prints how many there were of each kind, and how they ended. Builds what it runs.
#
#   scripts/faults-report.sh [build folder]      build/test when none is named
#
# The columns: threw std::bad_alloc; failed and said so, by false or by a status; did all there was
# to do in spite of the fault. A fault that ends in any other way fails the tests.
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build/test}
report=$(mktemp -d)
trap 'rm -rf "$report"' EXIT

if ! { { [ -f "$build/CMakeCache.txt" ] ||
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)"; } &&
  cmake --build "$build" -j "$(nproc)" --target orvo_fault_tests orvo_tool_fault_tests; } \
  >"$report/log" 2>&1; then
  cat "$report/log" >&2
  echo "faults-report.sh: FAILED to build; see above" >&2
  exit 1
fi

for program in orvo_fault_tests orvo_tool_fault_tests; do
  if ! ORVO_FAULT_REPORT=$report/faults "$build/tests/faults/$program" --gtest_brief=1 \
    >"$report/log" 2>&1; then
    cat "$report/log" >&2
    echo "faults-report.sh: FAILED: $program; see above" >&2
    exit 1
  fi
done

# Lines of the report: operation, kind and details of the fault, threw, failed, completed.
print_table() {
  awk -F '\t' -v title="$1" -v column="$2" -v row='%-30s %9d %9d %9d %9d\n' '
    {
      key = column == 1 ? $1 : $2
      if (column == 2) sub(/:.*/, "", key)
      all[key] += $3 + $4 + $5; threw[key] += $3; failed[key] += $4; whole[key] += $5
      all[""] += $3 + $4 + $5; threw[""] += $3; failed[""] += $4; whole[""] += $5
    }
    END {
      printf "%-30s %9s %9s %9s %9s\n", title, "injected", "threw", "failed", "completed"
      fflush()
      for (key in all) if (key != "")
        printf row, key, all[key], threw[key], failed[key], whole[key] | "sort"
      close("sort")
      printf row, "all", all[""], threw[""], failed[""], whole[""]
    }' "$report/faults"
}

print_table "fault" 2
echo
print_table "operation" 1
