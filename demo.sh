#!/bin/sh
# Shows Orvo at work on a fresh Debian 12 machine: installs what is missing, builds the program and
# the library, and turns a real tool path into the axis values of a real five-axis machine.
# Needs the network only when something is to be installed. May be run again at any time.
set -eu

cd "$(dirname "$0")"

build=build/demo
results=out/demo
log=$build/demo.log
machine=examples/machines/trunnion_ac/trunnion_ac.xml
path=examples/paths/curved_layers_model_1.csv
axes=$results/curved_layers_model_1.axes.csv

# Runs a step quietly; on failure shows the end of what it said and stops.
step() {
  title=$1
  shift
  echo "$title ..."
  if ! "$@" >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "demo.sh: this step failed: $title" >&2
    echo "demo.sh: all that it said is in $log" >&2
    exit 1
  fi
}

mkdir -p "$build" "$results"
step "Installing what is missing" ./setup.sh
# A build folder that was copied or moved with the checkout is of no use here.
fresh=
if [ -f "$build/CMakeCache.txt" ] &&
  ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$(pwd -P)" "$build/CMakeCache.txt"; then
  fresh=--fresh
fi
# shellcheck disable=SC2086
step "Preparing the build" \
  cmake $fresh -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING=OFF
step "Building the library and the program" cmake --build "$build" --target orvo_tool

orvo=$build/tools/orvo/orvo

echo
echo "The machine: a 3D printer whose table tilts (A), turns (C) and travels (X, Y)."
echo "\$ orvo info $machine"
echo
"$orvo" info "$machine"

echo
echo "The path: a part printed in curved layers, as it was printed on that machine. The nozzle is"
echo "30 long. Which values of the five axes bring it to each point, turned as the path wants it?"
echo "\$ orvo solve $machine $path --program-system 0 --offset 0,0,30 -o $axes"
echo
status=0
"$orvo" solve "$machine" "$path" --program-system 0 --offset 0,0,30 -o "$axes" || status=$?
if [ "$status" -ne 0 ]; then
  echo "demo.sh: the path was not solved as a whole: orvo solve ended with $status" >&2
  exit 1
fi

points=$(($(wc -l <"$axes") - 1))
echo
echo "What came out: all $points points can be reached, and every axis stays in its range. The axis"
echo "values are in"
echo "  $(pwd)/$axes"
echo "one row for each point, lengths in millimeters, angles in degrees. Its first rows:"
echo
head -n 4 "$axes" | sed 's/^/  /'
