#!/usr/bin/env bash
# oracle.sh ROOT: every planted defect of the repository at ROOT still fits its sources and names its
# test program.
set -euo pipefail

cd "${1:?usage: oracle.sh ROOT}"
defects=0
for patch in test/oracle/*.patch; do
  grep -q '^Test: [a-z_]\+$' "$patch" || { echo "$patch: names no test program"; defects=$((defects + 1)); }
  patch --dry-run --silent --strip=0 --fuzz=0 --input="$patch" >/dev/null ||
    { echo "$patch: does not fit"; defects=$((defects + 1)); }
done
((defects == 0)) || { echo "$defects defects"; exit 1; }
