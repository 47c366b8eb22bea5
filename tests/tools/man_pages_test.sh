#!/usr/bin/env bash
# Makes the manual pages and has groff look at them: one for the program and one for each command,
# without a warning, each with its name, its options, the statuses and an example.
#
#   man_pages_test.sh ORVO MAN-PAGES-SCRIPT
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$2" "$1" "$folder"
fail() {
  echo "man_pages_test.sh: $*" >&2
  exit 1
}
commands=$("$1" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z][a-z]*\)  .*/\1/p')
[ "$(wc -w <<<"$commands")" -ge 8 ] || fail "the commands are not found in the help"
for page in orvo $(sed 's/^/orvo-/' <<<"$commands"); do
  file=$folder/$page.1
  [ -s "$file" ] || fail "$page.1 is missing"
  warnings=$(groff -man -Tutf8 -ww -z "$file" 2>&1)
  [ -z "$warnings" ] || fail "$page.1: $warnings"
  grep -q "^\.TH ${page^^} " "$file" || fail "$page.1 has another title"
  grep -qF "${page//-/\\-} \\- " "$file" || fail "$page.1 doesn't begin with its name"
  for section in OPTIONS '"EXIT STATUS"'; do
    grep -q "^\.SH $section" "$file" || fail "$page.1 has no section $section"
  done
  [ "$page" = orvo ] || grep -q '^\.SH EXAMPLE' "$file" || fail "$page.1 has no example"
done
[ "$(find "$folder" -type f | wc -l)" -eq $(($(wc -w <<<"$commands") + 1)) ] ||
  fail "there are files that nobody asked for"
