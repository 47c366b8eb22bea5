#!/usr/bin/env bash
# Counts the instructions that the library executes for one operation of W1 to W4, by callgrind, and
# compares them with benchmarks/instructions.txt. What the C library and the program around it
# execute is left out. The counts belong to the compiler named in that file.
#
# usage: scripts/instructions.sh [--record]
#   --record  writes the counts into the file and compares nothing
#
# Exits with 1 when a count has grown by more than 3 percent.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly recorded=benchmarks/instructions.txt
readonly build=build/benchmark
readonly fewer=200 more=400

record=no
case ${1:-} in
  '') ;;
  --record) record=yes ;;
  *)
    sed -n '2,/^set /{/^#/s/^# \{0,1\}//p}' "$0" >&2
    exit 2
    ;;
esac

if ! grep -qw avx /proc/cpuinfo; then
  echo "instructions.sh: SKIPPED, the recorded counts are those of a processor with AVX"
  exit 0
fi

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS= \
  -DORVO_BUILD_BENCHMARKS=ON -DORVO_BUILD_TOOLS=OFF -DBUILD_TESTING=OFF >/dev/null
cmake --build "$build" --target orvo_repeat >/dev/null

work_folder=$(mktemp -d)
trap 'rm -rf "$work_folder"' EXIT

# Prints how many instructions the library executes for a number of operations.
count() {
  local file=$work_folder/$1.$2.$3
  valgrind --tool=callgrind --callgrind-out-file="$file" "$build/benchmarks/orvo_repeat" "$@" \
    >/dev/null 2>"$file.log" || { cat "$file.log" >&2; return 1; }
  callgrind_annotate --threshold=100 --show-percs=no "$file" |
    awk '/\[.*liborvo\.so[^\]]*\]$/ { gsub(",", "", $1); sum += $1 } END { print sum + 0 }'
}

{
  echo "# Instructions of the library for one operation, by callgrind; see scripts/instructions.sh."
  echo "# $(c++ --version | head -n 1), $(uname -m)"
  for machine in M5 HeadTable M12 M1000; do
    for work in W1 W1-path W2 W2-path W3 W4; do
      few=$(count "$work" "$machine" "$fewer")
      many=$(count "$work" "$machine" "$more")
      echo "$work $machine $(((many - few) / (more - fewer)))"
    done
  done
} >"$work_folder/counts"

if [ "$record" = yes ]; then
  cp "$work_folder/counts" "$recorded"
  cat "$recorded"
  exit 0
fi

awk '
  /^#/ { next }
  FNR == NR { before[$1 " " $2] = $3; next }
  {
    key = $1 " " $2
    if (!(key in before)) {
      printf "%-16s %8d  not recorded\n", key, $3
      failed = 1
      next
    }
    growth = 100 * ($3 - before[key]) / before[key]
    verdict = growth > 3 ? "  GREW" : ""
    printf "%-16s %8d  %+.1f %%%s\n", key, $3, growth, verdict
    failed = failed || growth > 3
  }
  END { exit failed }
' "$recorded" "$work_folder/counts" || {
  echo "instructions.sh: counts have grown by more than 3 % (or are new); after a change that is" \
    "worth it: scripts/instructions.sh --record" >&2
  exit 1
}
