#!/usr/bin/env bash
# Makes the manual pages of the program out of its help: orvo.1, and one for each command.
#
#   scripts/man-pages.sh ORVO FOLDER
#
# ORVO is the built program; FOLDER gets orvo.1, orvo-info.1, ... Needs help2man. The date in the
# pages is that of SOURCE_DATE_EPOCH, if it is set.
set -euo pipefail

if [ $# -ne 2 ]; then
  echo "usage: man-pages.sh ORVO FOLDER" >&2
  exit 1
fi
orvo=$1
folder=$2
if ! command -v help2man >/dev/null; then
  echo "man-pages.sh: help2man is missing; ./setup.sh --ci installs it" >&2
  exit 1
fi
mkdir -p "$folder"
# A locale of the environment would translate the headings.
export LC_ALL=C
version=$("$orvo" --version)

# The page is called after the command, its sections have the usual names, and each example keeps
# its line.
mend() {
  sed -e "s/^\.TH ORVO /.TH ${1^^} /" \
    -e "/^\.SH NAME/,/^\.SH/s/^orvo \\\\- /$(sed 's/-/\\\\-/g' <<<"$1") \\\\- /" \
    -e 's/^\.SS "Exit status.*"$/.SH "EXIT STATUS"/' \
    -e '/^\.SH EXAMPLE/,$s/^\.IP$/.PP\n.nf/' \
    -e '/^\.SH EXAMPLE/,$s/^\.PP$/.fi\n.PP/' |
    sed -e '/^\.SH EXAMPLE/,${/^\.fi$/{N;/\n\.PP$/{N;s/^\.fi\n\.PP\n\.nf$/.PP\n.nf/}}}'
}

# Sections that help2man doesn't know come from here: what belongs together.
{
  echo "[SEE ALSO]"
  "$orvo" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z][a-z]*\)  .*/.BR orvo\\-\1 (1),/p' |
    sed '$s/,$//'
} >"$folder/see-also.h2m"

help2man --no-info --include="$folder/see-also.h2m" --version-string="$version" \
  --name="compute with the kinematics of multi-axis machine tools" "$orvo" |
  mend orvo >"$folder/orvo.1"
"$orvo" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z][a-z]*\)  *\(.*\)/\1 \2/p' |
  while read -r name summary; do
    help2man --no-info --version-string="$version" --name="$summary" "$orvo $name" |
      mend "orvo-$name" >"$folder/orvo-$name.1"
  done
rm "$folder/see-also.h2m"
