# shellcheck shell=bash
# Completion for bash: kestctl itself knows its verbs and options, and asks a running agent for
# paths, types and handlers.

_kestctl() {
  # Bash cuts words at colons, which paths and types have: put them together again.
  local line=${COMP_LINE:0:COMP_POINT} words
  read -ra words <<<"$line"
  [[ $line == *[[:space:]] ]] && words+=("")
  local current=${words[-1]}

  local candidate candidates
  mapfile -t candidates < <("${words[0]}" complete -- "${words[@]:1}" 2>/dev/null)
  if [[ ${candidates[0]-} == file: ]]; then
    compopt -o default
    COMPREPLY=()
    return
  fi
  # What stands before the last colon is on the line already.
  local before=""
  [[ $current == *:* && $COMP_WORDBREAKS == *:* ]] && before=${current%"${current##*:}"}
  COMPREPLY=()
  for candidate in "${candidates[@]}"; do
    COMPREPLY+=("${candidate#"$before"}")
  done
  # A path that goes on is not followed by a blank.
  [[ ${#COMPREPLY[@]} == 1 && ${COMPREPLY[0]} == */ ]] && compopt -o nospace
}

complete -F _kestctl kestctl
