#!/usr/bin/env bash
# same_run.sh SIMULATION PLAIN: both programs come through the same seeds, with the same digest and counts.
set -euo pipefail

usage='usage: same_run.sh SIMULATION PLAIN'
real=$("${1:?$usage}" --seeds 1-50 --events 1000) || { echo "$real"; exit 1; }
plain=$("${2:?$usage}" --seeds 1-50 --events 1000) || { echo "$plain"; exit 1; }
diff <(echo "$real") <(echo "$plain") || { echo "expected < , found > on the plain platform"; exit 1; }
