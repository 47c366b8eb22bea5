#!/usr/bin/env bash
# Makes the Debian packages liborvo1, liborvo-dev and orvo-tools in build/packages, and has lintian
# look at them: an error of lintian is a failure.
#
#   scripts/packages.sh [CMake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."

for tool in cpack dpkg-shlibdeps lintian; do
  if ! command -v "$tool" >/dev/null; then
    echo "packages.sh: $tool is missing; ./setup.sh --ci installs it" >&2
    exit 1
  fi
done

packages=$PWD/build/packages
log=$(mktemp)
trap 'rm -f "$log"' EXIT
rm -rf "$packages"
# Files and folders get the rights that packages have, whoever makes them.
umask 022
if ! {
  cmake --preset package "$@" && cmake --build --preset package &&
    cpack --config build/package/CPackConfig.cmake -B "$packages"
} >"$log" 2>&1; then
  cat "$log" >&2
  echo "packages.sh: the packages could not be made" >&2
  exit 1
fi
rm -rf "$packages/_CPack_Packages"

for package in "$packages"/*.deb; do
  printf '%s: %s bytes, needs %s\n' "$(basename "$package")" "$(stat -c %s "$package")" \
    "$(dpkg-deb -f "$package" Depends)"
done
lintian --allow-root --fail-on error "$packages"/*.deb
