#!/usr/bin/env bash
# sizes.py finds what is planted here, at its line, and nothing else.
set -euo pipefail

check=$(cd "$(dirname "$0")" && pwd)/sizes.py
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/agent" "$tree/test"

# lines COUNT TEXT: that line so many times.
lines() {
  local i
  for ((i = 0; i < $1; ++i)); do echo "$2"; done
}

# expect EXIT_CODE TEXT: what sizes.py makes of the tree.
expect() {
  local code=0 found
  found=$("$check" "$tree" 2>&1) || code=$?
  [[ $code == "$1" ]] || { echo "expected exit code $1, found $code:" "$found"; exit 1; }
  diff <(echo "$2") <(echo "$found") || { echo "expected < , found >"; exit 1; }
}

{
  echo 'namespace Kest {'
  echo 'int fits(int a) {'
  lines 29 '  if (a > 0) {'
  lines 29 '  }'
  echo '}'
  echo 'int tells(char const* text) {'
  echo '  static Row const rows[] = {'
  lines 100 '      {"{", {1, 2}},'
  echo '  };'
  lines 56 "  look(text, '}');  // {"
  echo '}'
  echo 'Row const table[] = {'
  lines 100 '    {f(1), 2},'
  echo '};'
  echo '}'
} >"$tree/agent/Fits.cpp"
lines 400 '// as long as it may be' >"$tree/agent/Fits.h"
expect 0 ""

{
  echo 'struct Long {'
  echo '  void tooLong() const {'
  lines 30 '    call([] {'
  lines 30 '    });'
  echo '  }'
  echo '};'
} >"$tree/test/Long.h"
{
  cat "$tree/agent/Fits.h"
  echo 'TEST(Long, IsTooLong) {'
  lines 60 '  check(1);'
  echo '}'
} >"$tree/agent/Long.cpp"
expect 1 'agent/Long.cpp:401: the file has 462 lines
agent/Long.cpp:401: the function has 62 lines
test/Long.h:2: the function has 62 lines'
