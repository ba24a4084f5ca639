#!/usr/bin/env bash
# breaches.sh SIMULATION: a run in which the real world leaves out some kind of event fails and prints a
# short script, which fails only when such events are left out. A seed runs the same every time.
set -euo pipefail

simulation=${1:?usage: breaches.sh SIMULATION}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$*"
  cat "$scratch/out"
  exit 1
}

# run EXIT_CODE OPTION...: its output in $scratch/out.
run() {
  local expected=$1 code=0
  shift
  "$simulation" "$@" >"$scratch/out" 2>&1 || code=$?
  [[ $code == "$expected" ]] || fail "expected exit code $expected, found $code: $*"
}

longest=7
for event in set del-all notify step renew leave fault pass timer-drop zombie mode handle; do
  run 1 --seeds 1-20 --events 500 --without "$event"
  [[ $(tail -n 1 "$scratch/out") == *", failures 1, leaks 0" ]] || fail "$event: another table"
  sed -n '/^# /,/^simulation: /{/^# \|^simulation: /!p}' "$scratch/out" >"$scratch/script"
  lines=$(wc -l <"$scratch/script")
  ((lines >= 1 && lines <= longest)) || fail "$event: a script of $lines lines"
  run 1 --script "$scratch/script" --without "$event"
  run 0 --script "$scratch/script"
done

run 0 --seed 7 --events 2000
mv "$scratch/out" "$scratch/first"
run 0 --seed 7 --events 2000
cmp "$scratch/first" "$scratch/out"
