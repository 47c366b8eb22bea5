#!/usr/bin/env bash
# Installs the packages of build/packages into a fresh Debian root, as a user would: the library and
# the program first, which must bring no compiler; then the development files and a compiler, with
# which the example of README.md is built by pkg-config and run. At the end all is removed again and
# nothing may be left. The root is a folder of its own and is deleted.
#
# Says so and ends with success where the machine can't have such a root: without the rights to
# change the root folder, without debootstrap or without a mirror of Debian in reach.
#
#   scripts/try-packages.sh [MIRROR]
set -euo pipefail
cd "$(dirname "$0")/.."

mirror=${1-http://deb.debian.org/debian}
packages=build/packages

skip() {
  echo "SKIPPED: the packages were not tried in a fresh root: $1"
  exit 0
}

if ! ls "$packages"/*.deb >/dev/null 2>&1; then
  echo "try-packages.sh: no packages in $packages; scripts/packages.sh makes them" >&2
  exit 1
fi
[ "$(id -u)" -eq 0 ] || skip "only root can"
command -v debootstrap >/dev/null || skip "debootstrap is missing; ./setup.sh --ci installs it"
chroot / true 2>/dev/null || skip "chroot is not allowed here"

root=$(mktemp -d)
log=$(mktemp)
trap 'rm -rf "$root" "$log"' EXIT
chmod 755 "$root"
if ! debootstrap --print-debs --variant=minbase bookworm "$root/probe" "$mirror" >"$log" 2>&1; then
  skip "$mirror is not in reach: $(tail -n 1 "$log")"
fi
rm -rf "$root/probe"

# Runs a command in the root; its output is shown only when it fails.
inside() {
  if ! env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C DEBIAN_FRONTEND=noninteractive \
    chroot "$root" "$@" </dev/null >"$log" 2>&1; then
    cat "$log" >&2
    echo "try-packages.sh: '$*' failed in the fresh root" >&2
    exit 1
  fi
}

if ! debootstrap --variant=minbase --include=ca-certificates bookworm "$root" "$mirror" \
  >"$log" 2>&1; then
  cat "$log" >&2
  echo "try-packages.sh: no root could be made" >&2
  exit 1
fi
cp /etc/resolv.conf "$root/etc/resolv.conf"
mkdir "$root/packages" "$root/work"
cp "$packages"/*.deb "$root/packages"
cp -r examples "$root/work"
inside apt-get -q update

inside sh -c 'apt-get -q -y install --no-install-recommends /packages/liborvo1_*.deb \
  /packages/orvo-tools_*.deb'
inside sh -c '! command -v g++'
inside orvo info /work/examples/machines/trunnion_ac/trunnion_ac.xml
grep -q 'valid' "$log"

inside sh -c 'apt-get -q -y install --no-install-recommends /packages/liborvo-dev_*.deb \
  g++ pkg-config'
inside sh -c 'cd /work && g++ -std=c++17 examples/readme/first_solve.cpp \
  $(pkg-config --cflags --libs orvo) -o first_solve'
inside sh -c 'cd /work && ./first_solve > output && cmp output examples/readme/first_solve.expected.txt'

inside sh -c 'apt-get -q -y purge liborvo1'
inside sh -c '! find / -xdev \( -name "*liborvo*" -o -path "*include/Orvo*" -o -name orvo \) \
  -not -path "/packages/*" -not -path "/work/*" -not -path "/proc/*" \
  -not -path "/var/log/*" -not -path "/var/cache/*" | grep .'
echo "installed, used and removed in a fresh root"
