#!/usr/bin/env bash
# Fails when a tracked C++ or CMake file is not laid out as .clang-format and .cmake-format.yaml say.
# With --fix, lays the files out instead.
set -euo pipefail
cd "$(dirname "$0")/.."

cpp_mode=(--dry-run -Werror)
cmake_mode=(--check)
case "${1-}" in
  "") ;;
  --fix)
    cpp_mode=(-i)
    cmake_mode=(-i)
    ;;
  *)
    echo "usage: $0 [--fix]" >&2
    exit 2
    ;;
esac

for tool in git clang-format-14 cmake-format; do
  if ! command -v "$tool" >/dev/null; then
    echo "check-format.sh: $tool is missing; ./setup.sh --ci installs it" >&2
    exit 1
  fi
done

# Prints the tracked files that match some patterns and are still on the disk, each ended by a NUL.
tracked() {
  local file
  while IFS= read -r -d '' file; do
    if [ -f "$file" ]; then
      printf '%s\0' "$file"
    fi
  done < <(git ls-files -z -- "$@")
}

failed=0
tracked '*.h' '*.cpp' | xargs -0 -r clang-format-14 --style=file "${cpp_mode[@]}" || failed=1
tracked 'CMakeLists.txt' '*/CMakeLists.txt' '*.cmake' |
  xargs -0 -r cmake-format --config-files .cmake-format.yaml "${cmake_mode[@]}" -- || failed=1
if [ "$failed" -ne 0 ]; then
  echo "check-format.sh: some files are not laid out as they should be; run $0 --fix" >&2
fi
exit "$failed"
