#!/usr/bin/env bash
# Runs the fuzzers of fuzz/, which it builds in build/fuzz. Prints one line for each target; fails
# when there is a finding, and says in which file the input lies.
#
#   scripts/fuzz.sh [--seconds N] [--jobs N] TARGET...    runs each target for N seconds (60), up to
#                                                         N of them at a time (1)
#   scripts/fuzz.sh --minimize TARGET...                  makes fuzz/corpus/ anew, of it and of what
#                                                         the runs have found: few inputs that reach
#                                                         every branch reached; named ones stay
#
# Targets: read_xml stl package round_trip compute path json, or all. What a run finds worth keeping
# lies in build/fuzz/inputs/, where the next run starts from; findings lie in build/fuzz/findings/.
set -euo pipefail
cd "$(dirname "$0")/.."

all_targets=(read_xml stl package round_trip compute path json)
build=build/fuzz
seconds=60
jobs=1
minimize=no
targets=()

usage() {
  sed -n '2,/^set -eu/s/^# \{0,1\}//p' "$0"
}

while [ $# -gt 0 ]; do
  case "$1" in
    --seconds | --jobs)
      if ! [[ ${2-} =~ ^[1-9][0-9]*$ ]]; then
        echo "fuzz.sh: $1 takes a number" >&2
        exit 2
      fi
      if [ "$1" = --seconds ]; then seconds=$2; else jobs=$2; fi
      shift
      ;;
    --minimize) minimize=yes ;;
    -h | --help)
      usage
      exit 0
      ;;
    all) targets+=("${all_targets[@]}") ;;
    *)
      if [[ " ${all_targets[*]} " != *" $1 "* ]]; then
        echo "fuzz.sh: there is no target '$1' (try --help)" >&2
        exit 2
      fi
      targets+=("$1")
      ;;
  esac
  shift
done
if [ ${#targets[@]} -eq 0 ]; then
  usage >&2
  exit 2
fi

launcher=
if command -v ccache >/dev/null; then
  launcher=ccache
fi
mkdir -p "$build/logs"
if ! { cmake --preset fuzz -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" &&
  cmake --build "$build" -j "$(nproc)" --target "${targets[@]/#/orvo_fuzz_}"; } \
  >"$build/logs/build.log" 2>&1; then
  cat "$build/logs/build.log" >&2
  echo "fuzz.sh: FAILED to build; see above" >&2
  exit 1
fi

# The targets write their input to files; those are best kept in memory.
scratch=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo "${TMPDIR:-/tmp}")/orvo_fuzz_XXXXXX")
trap 'rm -rf "$scratch"' EXIT
export TMPDIR=$scratch

# An input is small, and nothing small may take much memory or time. The sanitizers refuse single
# allocations above 256 MB by themselves, as a system without room would.
limits=(-max_len=16384 -rss_limit_mb=640 -malloc_limit_mb=320 -timeout=10)

# Prints the number before or behind a word in the last status line of a log.
last_of() {
  grep -E '^#[0-9]+.*cov: ' "$2" | tail -n 1 | sed -nE "s/.*$1.*/\1/p"
}

run_target() {
  local target=$1
  local inputs=$build/inputs/$target findings=$build/findings/$target log=$build/logs/$target.log
  local dictionary=() status=0 count
  rm -rf "$findings"
  mkdir -p "$inputs" "$findings"
  if [ "$target" != stl ]; then
    dictionary=(-dict=fuzz/machine.dict)
  fi
  local folders=("$inputs" "fuzz/corpus/$target")
  if [ -d "fuzz/regressions/$target" ]; then
    folders+=("fuzz/regressions/$target")
  fi
  "$build/fuzz/orvo_fuzz_$target" "${limits[@]}" "${dictionary[@]}" -max_total_time="$seconds" \
    -print_final_stats=1 -artifact_prefix="$findings/" "${folders[@]}" >"$log" 2>&1 || status=$?
  count=$(find "$findings" -type f | wc -l)
  if [ "$status" -ne 0 ] && [ "$count" -eq 0 ]; then
    count=1
  fi
  printf '%-11s %8s executions, %5s/s, %5s of %s edges, %4s inputs of %s, %s MB, %s findings\n' \
    "$target:" "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
    "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")" \
    "$(last_of 'cov: ([0-9]+)' "$log")" \
    "$(sed -nE 's/^INFO: Loaded 1 modules +\(([0-9]+) .*/\1/p' "$log")" \
    "$(last_of 'corp: ([0-9]+)' "$log")" "$(last_of 'corp: [0-9]+\/([0-9]+[A-Za-z]+)' "$log")" \
    "$(sed -n 's/^stat::peak_rss_mb: *//p' "$log")" "$count"
  if [ "$status" -ne 0 ]; then
    {
      # Without the status lines of the run.
      grep -vE '^#[0-9]+|failed to allocate' "$log" | tail -n 60
      echo "fuzz.sh: $target: FAILED; the input: $(find "$findings" -type f | head -n 1)"
    } >&2
  fi
  return "$status"
}

minimize_target() {
  local target=$1 fresh=$scratch/$1 log=$build/logs/minimize_$1.log folders=("fuzz/corpus/$1")
  mkdir -p "$fresh"
  if [ -d "$build/inputs/$target" ]; then
    folders+=("$build/inputs/$target")
  fi
  # A fuzzer names its inputs by their contents, in 40 digits.
  find "fuzz/corpus/$target" -type f | grep -vE '/[0-9a-f]{40}$' | xargs -r cp -t "$fresh"
  if ! "$build/fuzz/orvo_fuzz_$target" "${limits[@]}" -use_counters=0 -set_cover_merge=1 "$fresh" \
    "${folders[@]}" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "fuzz.sh: $target: FAILED to minimize; fuzz/corpus/$target is as it was" >&2
    return 1
  fi
  rm -r "fuzz/corpus/$target"
  cp -r "$fresh" "fuzz/corpus/$target"
  echo "$target: $(find "$fresh" -type f | wc -l) inputs," \
    "$(find "$fresh" -type f -exec cat {} + | wc -c) bytes"
}

failed=0
running=0
for target in "${targets[@]}"; do
  if [ "$running" -ge "$jobs" ]; then
    wait -n || failed=1
    running=$((running - 1))
  fi
  if [ "$minimize" = yes ]; then minimize_target "$target" & else run_target "$target" & fi
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
  wait -n || failed=1
  running=$((running - 1))
done
exit "$failed"
