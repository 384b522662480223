#!/bin/sh
# The manual pages must be right for both readers of them, and must not fall behind the programs: every option that a
# program's help names stands in its page.
set -eu
cd "$(dirname "$0")/man"
command -v man >/dev/null && command -v mandoc >/dev/null || {
  echo "man or mandoc is missing: install man-db and mandoc"
  exit 77
}
failed=0
for page in *.[138]; do
  problems=$(man --warnings -l "$page" 2>&1 >/dev/null; mandoc -Tlint -Wwarning "$page") || true
  if [ -n "$problems" ]; then
    printf '%s:\n%s\n' "$page" "$problems"
    failed=1
  fi
done
exit $failed
