#!/bin/sh
# Reads all programs and shared libraries below a folder. In a build tree ("tree"), none may look for libraries in the
# current folder or one relative to it. What is shipped finds them beside itself, wherever it is put, and is hardened: all
# of it ("shipped"), or as far as its size allows ("router").
#
#     elf_test.sh READELF tree|shipped|router FOLDER
set -eu
readelf=$1 kind=$2 folder=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
: >"$work/faults"

fault() {
  echo "$file: $*" >>"$work/faults"
}

has() {
  printf '%s\n' "$facts" | grep -Eq "$1"
}

needs() {
  has "$1" || fault "no $2"
}

# The search path of the dynamic linker, which takes an empty element for the current folder.
check_path() {
  printf '%s\n' "$facts" | sed -nE 's/.*(RPATH|RUNPATH).*\[(.*)\]$/\2:/p' | tr ':' '\n' | sed '$d' >"$work/elements"
  while read -r element; do
    case $kind:$element in
    *:\$ORIGIN | *:\$ORIGIN/* | tree:/*) ;;
    *) fault "looks for libraries in \"$element\"" ;;
    esac
  done <"$work/elements"
}

check_hardening() {
  needs 'FLAGS_1.* NOW' "binding at the start"
  needs 'GNU_STACK.* RW ' "stack that holds no code"
  [ "$kind" = shipped ] || return 0
  needs 'GNU_RELRO' "segment that is read-only after relocation"
  needs '__stack_chk_fail' "stack protector"
  case $file in
  */bin/*) needs 'FLAGS_1.* PIE' "independence of its address" ;;
  esac
  x86_marks='IBT, SHSTK'
  case $file in
  */librsvp_mor.so.*) ;; # the compiler knows all of its sizes, and it has no start files
  *)
    needs ' __[a-z]+_chk@' "checked call of the C library"
    x86_marks=SHSTK
    ;;
  esac
  has 'Machine:.*X86-64' || return 0
  needs "x86 feature:.*$x86_marks" "mark for $x86_marks"
  [ "$(LC_ALL=C grep -aoP '\xf3\x0f\x1e\xfa' "$file" | wc -l)" -gt 100 ] || fault "no targets for indirect branches"
}

# A shared library's file may lack the mode of a program.
find "$folder" -type f \( -perm -u+x -o -name '*.so*' \) >"$work/files"
read_files=0
while read -r file; do
  [ "$(head -c 4 "$file" | tail -c 3)" = ELF ] || continue
  facts=$("$readelf" -hldnW --dyn-syms "$file")
  read_files=$((read_files + 1))
  check_path
  [ "$kind" = tree ] || check_hardening
done <"$work/files"
echo "$read_files files"
cat "$work/faults"
[ "$read_files" -gt 0 ] && [ ! -s "$work/faults" ]
