#!/bin/sh
# Provides, for a build for another platform, the packages that the build needs: tinyxml2 and
# GoogleTest compiled for it, and the packages that are headers alone. They go to
# build/cross/<target>, where the presets arm64 and mingw look for them. Run ./setup.sh --cross
# first. Does nothing where everything is there already.
#
#   scripts/cross-packages.sh aarch64-linux-gnu | x86_64-w64-mingw32
set -eu
cd "$(dirname "$0")/.."

target=${1:?which target? aarch64-linux-gnu or x86_64-w64-mingw32}
toolchain=$PWD/cmake/toolchains/$target.cmake
if [ ! -f "$toolchain" ]; then
  echo "cross-packages.sh: no toolchain file $toolchain" >&2
  exit 2
fi

prefix=$PWD/build/cross/$target
# The mark holds the place, which the packages name, and what this script was.
mark=$(printf "%s %s" "$prefix" "$(cksum <scripts/cross-packages.sh)")
if [ -f "$prefix/complete" ] && [ "$(cat "$prefix/complete")" = "$mark" ]; then
  exit 0
fi
rm -rf "$prefix"
mkdir -p "$prefix/include"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Builds one package and installs it; its output is shown only when it fails.
install_package() {
  source=$1
  shift
  if ! {
    cmake -S "$source" -B "$work/$(basename "$source")" -G Ninja -DCMAKE_BUILD_TYPE=Release \
      -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_INSTALL_PREFIX="$prefix" \
      -DCMAKE_INSTALL_LIBDIR=lib "$@" &&
      cmake --build "$work/$(basename "$source")" --target install
  } >"$work/log" 2>&1; then
    cat "$work/log" >&2
    echo "cross-packages.sh: $source could not be built for $target" >&2
    exit 1
  fi
}

# On Linux tinyxml2 is a shared library of the system. On Windows it becomes a part of orvo.dll.
shared=ON
case "$target" in *mingw32) shared=OFF ;; esac
install_package /usr/local/src/orvo-tinyxml2 -DBUILD_SHARED_LIBS=$shared -DBUILD_TESTING=OFF
install_package /usr/src/googletest -DBUILD_SHARED_LIBS=OFF

for headers in utf8cpp CLI simde nlohmann fmt; do
  cp -r "/usr/include/$headers" "$prefix/include/"
done
# Makes the CMake package of a library that is headers alone: its name, its target, its folder.
headers_package() {
  mkdir -p "$prefix/lib/cmake/$1"
  cat >"$prefix/lib/cmake/$1/$1Config.cmake" <<END
if(NOT TARGET $2)
  add_library($2 INTERFACE IMPORTED)
  set_target_properties($2 PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "$prefix/$3")
endif()
END
}
headers_package utf8cpp utf8cpp include/utf8cpp
headers_package CLI11 CLI11::CLI11 include
headers_package nlohmann_json nlohmann_json::nlohmann_json include
headers_package fmt fmt::fmt-header-only include
printf '%s\n' 'set_property(TARGET fmt::fmt-header-only PROPERTY INTERFACE_COMPILE_DEFINITIONS' \
  '             FMT_HEADER_ONLY=1)' >>"$prefix/lib/cmake/fmt/fmtConfig.cmake"
# Wine's folder is made before several programs start at once.
case "$target" in
  *mingw32) scripts/run-under-wine.sh wineboot --init >/dev/null 2>&1 ;;
esac
printf "%s\n" "$mark" >"$prefix/complete"
