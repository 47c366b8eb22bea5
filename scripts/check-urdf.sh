#!/bin/sh
# Has check_urdf read the robot descriptions that orvo writes of all example machines.
#
#   scripts/check-urdf.sh ORVO FOLDER   FOLDER is made and replaced
#
# Ends with 77 where check_urdf is missing (Debian: liburdfdom-tools).
set -eu

if [ $# -ne 2 ]; then
  echo "check-urdf.sh: the program orvo and a folder are needed" >&2
  exit 2
fi
orvo=$1
folder=$2
root=$(cd "$(dirname "$0")/.." && pwd)
if ! command -v check_urdf >/dev/null 2>&1; then
  echo "skipped: there is no check_urdf (Debian: liburdfdom-tools)"
  exit 77
fi

rm -rf "$folder"
mkdir -p "$folder"
count=0
for file in "$root"/examples/machines/*/*.xml; do
  name=$(basename "$file" .xml)
  "$orvo" convert "$file" "$folder/$name.urdf"
  check_urdf "$folder/$name.urdf" >"$folder/$name.txt" 2>&1 || {
    cat "$folder/$name.txt"
    exit 1
  }
  elements=$(grep -c '<Entity>' "$file")
  links=$(grep -c '<link name=' "$folder/$name.urdf")
  joints=$(grep -c '<joint name=' "$folder/$name.urdf")
  if [ "$links" -ne $((elements + 1)) ] || [ "$joints" -ne "$elements" ]; then
    echo "$name: $links links and $joints joints for $elements elements"
    exit 1
  fi
  echo "$name: $(sed -n 's/^root Link: //p' "$folder/$name.txt"); $links links"
  count=$((count + 1))
done
echo "$count files"
[ "$count" -gt 0 ]
