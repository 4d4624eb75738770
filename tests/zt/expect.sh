# What the tests in this folder share; sourced by them. A test calls its cases and ends with "finish".
# shellcheck shell=bash

set -euo pipefail

failures=0
# Readable for every user: some cases run as another one.
work=$(mktemp -d)
chmod 755 "$work"
trap 'rm -rf "$work"' EXIT

# expect NAME WANTED GOT
expect() {
  if [[ $2 != "$3" ]]; then
    printf 'FAILED %s\n  wanted: %s\n  got:    %s\n' "$1" "$2" "$3"
    failures=$((failures + 1))
  fi
}

# expect_line NAME LINE TEXT: TEXT has this line.
expect_line() { grep -qxF -- "$2" <<<"$3" || expect "$1" "a line '$2'" "$3"; }

# expect_no NAME PART TEXT: TEXT does not have PART.
expect_no() { ! grep -qF -- "$2" <<<"$3" || expect "$1" "no '$2'" "$3"; }

finish() {
  ((failures == 0)) || exit 1
  echo "all as expected"
}
