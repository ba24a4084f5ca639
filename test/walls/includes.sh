#!/usr/bin/env bash
# includes.sh ROOT: every include in the repository at ROOT stays on its floor or goes down, is written
# from the repository's root, leaves the platform's details alone and forms no circle; every header can
# be included twice. Each defect is a line `file:line: what`.
set -euo pipefail
export LC_ALL=C

cd "${1:?usage: includes.sh ROOT}"
defects=0

defect() {
  echo "$*"
  defects=$((defects + 1))
}

# The agent's rooms: each may include itself and those before it.
agent_rooms=(wire process access rules slice show verbs control)

# agent_rooms_to FILE: FILE's room and those before it, as a pattern.
agent_rooms_to() {
  local room allowed=
  for room in "${agent_rooms[@]}"; do
    allowed+=${allowed:+|}$room
    [[ $1 != "agent/$room/"* ]] || break
  done
  echo "$allowed"
}

# What the files of FOLDER may include, as a pattern. The first that matches holds.
allowed_in() {
  case "$1" in
    text/*) echo 'text/' ;;
    platform/*) echo 'platform/' ;;
    model/*) echo '(model|platform)/' ;;
    driver/*/*) echo "${1%/*}/|driver/[^/]+$|platform/|text/" ;;
    driver/*) echo 'driver/[^/]+$|platform/' ;;
    sm/*) echo '(sm|model|platform)/|driver/[^/]+$' ;;
    registry/*) echo '(registry|model|sm|platform)/' ;;
    agent/*/*) echo "agent/($(agent_rooms_to "$1"))/|(registry|sm|model|platform|text)/|driver/[^/]+$" ;;
    agent/*) echo '(agent|registry|sm|model|platform|text)/|driver/[^/]+$' ;;
    ctl/*) echo '(ctl|agent/wire|text)/' ;;
  esac
}

check_include() {
  local file=$1 line=$2 target=$3
  if [[ $target == *../* ]] || ! [[ $target =~ ^($(allowed_in "$file")) ]]; then
    defect "$file:$line: ${file%%/*}/ may not include $target"
  elif [[ $target =~ ^platform/.*detail && $file != platform/* ]]; then
    defect "$file:$line: $target is a detail of the platform"
  fi
}

mapfile -t folders < <(ls -d text platform model driver sm registry agent ctl 2>/dev/null)
((${#folders[@]})) || { echo "no product folder in $PWD"; exit 1; }

# Includes in quotation marks, and those in angle brackets that lead into the repository.
include='^[[:space:]]*#[[:space:]]*include[[:space:]]*("|<(text|platform|model|driver|sm|registry|agent|ctl)/)'
includes=$(grep -rnE --include='*.h' --include='*.cpp' --include='*.in' --include='*.inc' "$include" "${folders[@]}" | sort -t: -k1,1 -k2,2n)
[[ -n $includes ]] || { echo "no include found in $PWD"; exit 1; }
while IFS=: read -r file line text; do
  target=${text#*[\"<]}
  check_include "$file" "$line" "${target%%[\">]*}"
done <<<"$includes"

for folder in "${folders[@]}" test bench fuzz; do
  [[ -d $folder ]] || continue
  while IFS= read -r file; do
    defect "$file:1: no #pragma once"
  done < <(grep -rLE --include='*.h' --include='*.h.in' '^#pragma once$' "$folder" | sort)
done

# No file includes another one that leads back to it. A header and its source count as one file. Left
# out is the platform, whose types are made of each other.
circles=$(sed -nE 's,^([^:]+)\.(h|cpp|in|inc):.*["<]([^">]+)\.(h|inc)[">].*,\1 \3,p' <<<"$includes" |
  grep -v '^platform/' | tsort 2>&1 >/dev/null) ||
  defect "these files include each other: $(sed -n 's/^tsort: \(.*[^:]\)$/\1/p' <<<"$circles" | paste -sd ' ')"

((defects == 0)) || { echo "$defects defects"; exit 1; }
