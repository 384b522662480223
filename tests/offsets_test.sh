#!/bin/sh
# No offset beyond its value compiles. In a copy of each source of the library every offset is replaced by one that is too
# large, each by a different one, so that the compiler must report as many errors as there are offsets.
#
#     offsets_test.sh COMPILER SOURCE_FOLDER
set -eu
export LC_ALL=C
compiler=$1
cd "$2"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
view='(Load|Store)(Net|Raw)<|Part<'
folders='channel config status tables lsp p2mp'
total=0
all= # clang stops after some errors
"$compiler" --version | grep -q clang && all=-ferror-limit=0

for source in $(grep -lE "$view" $(find $folders -name '*.cpp' -o -name '*.h') | grep -v '^channel/wire.h$'); do
  awk -v view="$view" '{
    out = ""
    while (match($0, view)) {
      out = out substr($0, 1, RSTART + RLENGTH - 1) 9999 ++seeded
      $0 = substr($0, RSTART + RLENGTH)
      sub(/^[^>]*/, "")
    }
    print out $0
  }' "$source" >"$work/seeded.cpp"
  wanted=$(grep -oE "$view" "$source" | wc -l)
  # shellcheck disable=SC2086
  "$compiler" -std=c++20 -I. -Iinclude -fsyntax-only $all "$work/seeded.cpp" 2>"$work/errors" || true
  refused=$(grep -c 'error:.*lies beyond the value' "$work/errors" || true)
  [ "$refused" -eq "$wanted" ] || {
    echo "$source: of $wanted wrong offsets only $refused were refused"
    exit 1
  }
  total=$((total + wanted))
done
echo "$total wrong offsets, all refused"
[ "$total" -gt 0 ]

if grep -rn 'unchecked::' $folders | grep -vE '^channel/(wire\.h|items\.cpp):'; then
  echo "these lines bypass the checked views"
  exit 1
fi
