#!/usr/bin/env bash
# oracle_test.sh: oracle.sh finds a planted defect that does not fit, and one without a test.
set -euo pipefail

check=$(cd "$(dirname "$0")" && pwd)/oracle.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
cd "$tree"
mkdir -p test/oracle

# expect TEXT TEST LINE: what oracle.sh says where a defect names TEST and the source holds LINE.
expect() {
  local found
  echo "$3" >source
  printf '%s\n' "What: a defect" "Test: $2" "" "--- source" "+++ source" "@@ -1 +1 @@" "-right" "+wrong" \
    >test/oracle/defect.patch
  found=$("$check" .) || true
  diff <(echo "$1") <(echo "$found") || { echo "expected < , found >, with $2 and $3"; exit 1; }
}

expect '' test_model right
expect $'test/oracle/defect.patch: names no test program\n1 defects' '' right
expect $'test/oracle/defect.patch: does not fit\n1 defects' test_model left
