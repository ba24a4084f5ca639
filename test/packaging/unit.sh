#!/usr/bin/env bash
# unit.sh UNIT AGENT DRIVER SLICE: systemd accepts UNIT, if it is there to be asked; and AGENT, started
# as UNIT says, serves SLICE on DRIVER and polls, and refuses to start where no driver is named.
set -euo pipefail
unit=$1 agent=$2 driver=$3 slice=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

if command -v systemd-analyze >/dev/null; then
  # It looks for the program where systemd would.
  sed "s|=kest-slice-agent |=$agent |" "$unit" >"$work/kest-slice-agent.service"
  found=$(systemd-analyze verify --man=no "$work/kest-slice-agent.service" 2>&1) ||
    { echo "$found"; exit 1; }
  [[ $found != *kest-slice-agent* ]] || { echo "$found"; exit 1; }
fi

# started DRIVER OPTION...: what the agent says when it is started as the unit does it, with OPTION added.
started() {
  local command
  command=$(sed -n 's|^ExecStart=kest-slice-agent ||p' "$unit")
  command=${command/\/etc\/kest-slice-dma\/linecard.slice/$slice}
  KEST_DRIVER=$1 eval "set -- ${command/\$\{KEST_DRIVER\}/\"\$KEST_DRIVER\"} ${*:2}"
  "$agent" "$@" 2>&1 || echo "exit code $?"
}

# expect TEXT FOUND
expect() {
  [[ $2 == "$1" ]] || { printf 'expected:\n%s\nfound:\n%s\n' "$1" "$2"; exit 1; }
}

expect $'kest-slice-agent: no driver is named\nexit code 2' "$(started '')"
modes=$(started "$driver" --once --trace KestSliceDma/2 | grep -c handleMode || true)
expect 1 "$modes"  # polling
grep -q '^ExecStart=.* --require-end ' "$unit" || { echo "the unit takes a file that is cut off"; exit 1; }
