#!/usr/bin/env bash
# hardening_test.sh COMPILER: hardening.sh finds each protection that a small program made here lacks.
set -euo pipefail

compiler=${1:?usage: hardening_test.sh COMPILER}
check=$(cd "$(dirname "$0")" && pwd)/hardening.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
cd "$tree"

cat >program.cpp <<'END'
#include <cstdio>
#include <cstring>
int main(int count, char** arguments) {
  char copy[16];
  std::strcpy(copy, arguments[count - 1]);
  return std::puts(copy);
}
END
hardened=(-O2 -w -fPIE -pie -fstack-protector-strong -U_FORTIFY_SOURCE '-D_FORTIFY_SOURCE=2'
  -z relro -z now -z noexecstack)

# expect TEXT OPTION...: what hardening.sh makes of the program with OPTION added.
expect() {
  local text=$1 found
  shift
  "$compiler" program.cpp -o program "${hardened[@]}" "$@"
  found=$("$check" program) || true
  diff <(echo "$text") <(echo "$found") || { echo "expected < , found >, with $*"; exit 1; }
}

expect ''
expect 'program: is not position independent' -fno-pie -no-pie
expect 'program: has an executable stack' -z execstack
expect 'program: leaves its relocations writable' -z norelro
expect 'program: is not bound at its start' -z lazy
expect 'program: does not guard its stack' -fno-stack-protector
expect 'program: uses no checked function of the C library' -U_FORTIFY_SOURCE
