#!/bin/sh
# Installs what building and testing need on Debian 12 (and its relatives). Says nothing and changes
# nothing where everything is there already.
#
#   ./setup.sh          to build the library and the program, and to run the tests
#   ./setup.sh --ci     also what only the continuous integration needs: a second compiler, sanitizer
#                       runtimes, valgrind, formatters, coverage reports, the compiler cache, the
#                       compilers and emulators of --cross, the tools of Debian packages, and other
#                       systems that read what is written here
#   ./setup.sh --cross  also what building and testing for ARM64 and for Windows need, with the source
#                       of tinyxml2 in /usr/local/src
#   ./setup.sh --benchmarks   also the other systems that the benchmarks compare with
#   ./setup.sh --list   prints the names of the packages, one a line (after --ci: those too)
set -eu

packages="
  cmake ninja-build g++ pkg-config python3
  libtinyxml2-dev libutfcpp-dev libcli11-dev libgtest-dev libgmock-dev
  nlohmann-json3-dev libfmt-dev
"
ci_packages="
  git clang-14 clang libclang-rt-14-dev llvm-14 valgrind clang-format-14 cmake-format gcovr ccache
  libbenchmark-dev libeigen3-dev doxygen clang-tidy-14 abigail-tools lintian debootstrap
  help2man groff-base
  liborocos-kdl-dev libkdl-parser-dev libassimp-dev liburdfdom-tools
"
# dpkg-dev unpacks sources; libgtest-dev holds the source of GoogleTest already.
cross_packages="
  g++-aarch64-linux-gnu qemu-user libsimde-dev
  g++-mingw-w64-x86-64-posix wine64
  dpkg-dev
"
benchmark_packages="
  libbenchmark-dev libeigen3-dev liborocos-kdl-dev libassimp-dev
"

list_only=no
cross=no
for argument in "$@"; do
  case "$argument" in
    --ci)
      packages="$packages $ci_packages $cross_packages"
      # Not beside a Node.js of another source, which brings its own.
      command -v npm >/dev/null 2>&1 || packages="$packages nodejs npm"
      cross=yes
      ;;
    --cross)
      packages="$packages $cross_packages"
      cross=yes
      ;;
    --benchmarks) packages="$packages $benchmark_packages" ;;
    --list) list_only=yes ;;
    -h | --help)
      sed -n '2,/^set -eu/s/^# \{0,1\}//p' "$0"
      exit 0
      ;;
    *)
      echo "setup.sh: unknown argument '$argument' (try --help)" >&2
      exit 2
      ;;
  esac
done

if [ "$list_only" = yes ]; then
  # Word splitting is meant here and below: the list holds plain names.
  # shellcheck disable=SC2086
  printf '%s\n' $packages
  exit 0
fi

if ! command -v dpkg-query >/dev/null 2>&1 || ! command -v apt-get >/dev/null 2>&1; then
  echo "setup.sh: no apt-get here; please provide what these Debian packages hold:" >&2
  # shellcheck disable=SC2086
  printf '  %s\n' $packages >&2
  exit 0
fi

missing=
for package in $packages; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing="$missing $package"
done

# The source of tinyxml2 is not among the binary packages.
source_folder=/usr/local/src/orvo-tinyxml2
fetch=no
if [ "$cross" = yes ] && [ ! -f "$source_folder/tinyxml2.cpp" ]; then
  fetch=yes
fi
[ -n "$missing" ] || [ "$fetch" = yes ] || exit 0

as_root=
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null 2>&1; then
    echo "setup.sh: neither root nor sudo; as root, please run: $0 $*" >&2
    exit 1
  fi
  as_root=sudo
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Runs one apt-get command; its output is shown only when it fails.
run_apt() {
  if ! $as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=600 \
    -o Acquire::Retries=3 "$@" </dev/null >"$work/log" 2>&1; then
    cat "$work/log" >&2
    echo "setup.sh: 'apt-get $*' failed; see above" >&2
    exit 1
  fi
}

if [ -n "$missing" ]; then
  echo "Installing:$missing"
  run_apt update
  # shellcheck disable=SC2086
  run_apt install --no-install-recommends $missing
fi

# Debian's own source of the tinyxml2 that is installed, its signature checked by apt. The lists of
# source packages are kept apart, so that the machine's own settings stay as they are.
if [ "$fetch" = yes ]; then
  echo "Fetching the source of tinyxml2"
  version=$(dpkg-query -W -f='${source:Version}' libtinyxml2-dev)
  keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  signed_by=
  [ ! -f "$keyring" ] || signed_by="[signed-by=$keyring]"
  apt-get indextargets --format '$(REPO_URI) $(CODENAME) $(COMPONENT)' \
    'Identifier: Packages' 'Origin: Debian' 'Component: main' | sort -u |
    sed "s|^|deb-src $signed_by |" >"$work/sources.list"
  mkdir -p "$work/lists/partial" "$work/source"
  chmod -R a+rX "$work"
  run_apt_for_sources() {
    run_apt -o Dir::Etc::SourceList="$work/sources.list" -o Dir::Etc::SourceParts=- \
      -o Dir::State::Lists="$work/lists" "$@"
  }
  run_apt_for_sources update
  (cd "$work/source" && run_apt_for_sources source "tinyxml2=$version")
  $as_root mkdir -p /usr/local/src
  $as_root rm -rf "$source_folder"
  $as_root cp -r "$work/source/tinyxml2-${version%-*}" "$source_folder"
  $as_root chown -R root:root "$source_folder"
fi
