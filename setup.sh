#!/bin/sh
# Installs what building and testing need on Debian 12 (and its relatives). Says nothing and changes
# nothing where everything is there already.
#
#   ./setup.sh          to build the library and the program, and to run the tests
#   ./setup.sh --ci     also what only the continuous integration needs: a second compiler, sanitizer
#                       runtimes, valgrind, formatters, coverage reports, the compiler cache
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
  libbenchmark-dev libeigen3-dev doxygen
"
benchmark_packages="
  libbenchmark-dev libeigen3-dev liborocos-kdl-dev libassimp-dev
"

list_only=no
for argument in "$@"; do
  case "$argument" in
    --ci) packages="$packages $ci_packages" ;;
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
[ -n "$missing" ] || exit 0

as_root=
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null 2>&1; then
    echo "setup.sh: neither root nor sudo; as root, please run: apt-get install$missing" >&2
    exit 1
  fi
  as_root=sudo
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Runs one apt-get command; its output is shown only when it fails.
run_apt() {
  if ! $as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=600 \
    -o Acquire::Retries=3 "$@" </dev/null >"$log" 2>&1; then
    cat "$log" >&2
    echo "setup.sh: 'apt-get $*' failed; see above" >&2
    exit 1
  fi
}

echo "Installing:$missing"
run_apt update
# shellcheck disable=SC2086
run_apt install --no-install-recommends $missing
