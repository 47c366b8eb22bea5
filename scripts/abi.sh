#!/usr/bin/env bash
# Holds the binary interface of the shared library against the recorded one, abi/liborvo.abi: what
# programs that were linked before rely on. Fails when it changed in a way that breaks them and the
# major version is still the recorded one; new members are fine. The library is compiled anew, with
# debug information, in build/abi.
#
#   scripts/abi.sh            compares
#   scripts/abi.sh --update   records the interface of today; look at the difference
set -euo pipefail
cd "$(dirname "$0")/.."

recorded=abi/liborvo.abi
build=build/abi
options=(--suppressions abi/liborvo.abignore --exported-interfaces-only)

for tool in abidw abidiff; do
  if ! command -v "$tool" >/dev/null; then
    echo "abi.sh: $tool is missing; ./setup.sh --ci installs it" >&2
    exit 1
  fi
done

launcher=
if command -v ccache >/dev/null; then
  launcher=ccache
fi
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! {
  cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" -DBUILD_SHARED_LIBS=ON -DBUILD_TESTING=OFF \
    -DORVO_BUILD_TOOLS=OFF -DORVO_BUILD_PATH=OFF -DORVO_BUILD_EXCHANGE=OFF &&
    cmake --build "$build" --target orvo
} >"$log" 2>&1; then
  cat "$log" >&2
  echo "abi.sh: the library could not be built" >&2
  exit 1
fi
library=$build/liborvo.so

abidw "${options[@]}" --headers-dir include/Orvo --drop-private-types --no-show-locs \
  --no-corpus-path --no-comp-dir-path --no-elf-needed --no-parameter-names --type-id-style hash \
  --out-file "$build/dump" "$library"
# Where the sources lie is no matter of the interface.
sed -E "s|(<abi-instr .*path=')[^']*/([a-z]+/[A-Za-z0-9]+\.cpp')|\1\2|" "$build/dump" \
  >"$build/liborvo.abi"
if [ "${1-}" = --update ]; then
  cp "$build/liborvo.abi" "$recorded"
  exit 0
fi

soname() {
  sed -n "s/.*soname='\([^']*\)'.*/\1/p;/soname/q" "$1"
}
recorded_name=$(soname "$recorded")
today_name=$(objdump -p "$library" | sed -n 's/^ *SONAME *//p')

status=0
abidiff "${options[@]}" --no-added-syms "$recorded" "$build/liborvo.abi" >"$log" 2>&1 ||
  status=$?
# Bits of the status: 1 and 2 are faults of the call, 4 is a change, 8 one that breaks for sure.
if [ $((status & 3)) -ne 0 ]; then
  cat "$log" >&2
  echo "abi.sh: abidiff failed with $status" >&2
  exit 1
fi
if [ "$recorded_name" != "$today_name" ]; then
  echo "$recorded_name became $today_name; record its interface with scripts/abi.sh --update" >&2
  exit 1
fi
if [ "$status" -ne 0 ]; then
  cat "$log" >&2
  echo "abi.sh: this breaks programs linked with $recorded_name: it needs a new major version," >&2
  echo "or to be undone. What is meant is recorded by scripts/abi.sh --update" >&2
  exit 1
fi
# Another order of virtual operations is no change to abidiff.
python3 tests/interface/check_virtuals.py "$build/liborvo.abi" tests/interface/virtuals.txt
echo "the interface of $today_name is the recorded one, or more"
