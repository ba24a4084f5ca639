#!/usr/bin/env bash
# hardening.sh FILE...: every FILE, program or library, is position independent, has no executable
# stack and makes its relocations read-only; it guards its stack and uses the checked functions of the C
# library; and all is bound before it starts. Each defect is a line.
set -euo pipefail
export LC_ALL=C

(($#)) || { echo "usage: hardening.sh FILE..." >&2; exit 2; }

has() {
  grep -qE "$1" <<<"$2" || echo "$file: $3"
}

defects=$(
  for file in "$@"; do
    header=$(readelf --file-header "$file")
    segments=$(readelf --program-headers --wide "$file")
    dynamic=$(readelf --dynamic --wide "$file")
    imports=$(nm --dynamic --undefined-only --format=posix "$file" | cut -d@ -f1 | cut -d' ' -f1)
    has 'Type: +DYN' "$header" "is not position independent"
    has 'GNU_STACK.* RW ' "$segments" "has an executable stack"
    has 'GNU_RELRO' "$segments" "leaves its relocations writable"
    has 'BIND_NOW|Flags:.* NOW' "$dynamic" "is not bound at its start"
    has '^__stack_chk_fail' "$imports" "does not guard its stack"
    has '^__[a-z]+_chk$' "$imports" "uses no checked function of the C library"
  done
)
[[ -z $defects ]] || { echo "$defects"; exit 1; }
