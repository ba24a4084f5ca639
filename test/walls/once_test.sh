#!/usr/bin/env bash
# once.sh finds what is planted here, at its line, and nothing else.
set -euo pipefail

check=$(cd "$(dirname "$0")" && pwd)/once.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/model/detail" "$tree/sm" "$tree/registry" "$tree/agent"

# expect EXIT_CODE TEXT: what once.sh makes of the tree.
expect() {
  local code=0 found
  found=$("$check" "$tree" 2>&1) || code=$?
  [[ $code == "$1" ]] || { echo "expected exit code $1, found $code:" "$found"; exit 1; }
  diff <(echo "$2") <(echo "$found") || { echo "expected < , found >"; exit 1; }
}

cat >"$tree/model/Records.h" <<'END'
  detail::field("ifName", &Fields::ifName),
  detail::field("destId", &Fields::destId),
END
cat >"$tree/model/detail/Collections.h" <<'END'
  static constexpr char const* name = "port";
  static constexpr char const* keyName = "ifName";
END
echo '  static constexpr char const* sliceIdName = "sliceId";' >"$tree/model/Config.h"
echo 'int destId = 0;  // the name as an identifier is free' >"$tree/sm/Sm.cpp"
expect 0 ""

echo 'if (name == "destId") return 3;' >>"$tree/sm/Sm.cpp"
echo '  static constexpr char const* name = "port";' >"$tree/model/Second.h"
echo 'char const* keyword = "port";' >"$tree/model/Third.h"
echo 'reactor.onAttribute({"sliceId"});' >"$tree/registry/Registration.cpp"
echo "char const* heading = \"port\";  // people's words are free" >"$tree/agent/Agent.cpp"
expect 1 'sm/Sm.cpp:2: "destId" is named elsewhere too
model/Third.h:1: "port" is named elsewhere too
model: collection "port" is described more than once
registry/Registration.cpp:1: "sliceId" is named elsewhere too
4 defects'
