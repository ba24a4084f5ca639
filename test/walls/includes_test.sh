#!/usr/bin/env bash
# includes.sh finds what is planted here, at its line, and nothing else.
set -euo pipefail

check=$(cd "$(dirname "$0")" && pwd)/includes.sh
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT

# plant FILE LINE...: a file with these lines.
plant() {
  local file=$tree/$1
  shift
  mkdir -p "$(dirname "$file")"
  printf '%s\n' "$@" >"$file"
}

# expect EXIT_CODE TEXT: what includes.sh makes of the tree.
expect() {
  local code=0 found
  found=$("$check" "$tree" 2>&1) || code=$?
  [[ $code == "$1" ]] || { echo "expected exit code $1, found $code:" "$found"; exit 1; }
  diff <(echo "$2") <(echo "$found") || { echo "expected < , found >"; exit 1; }
}

plant platform/mox/Ptr.h '#pragma once' '#include <atomic>' '#include "platform/mox/Name.h"' \
  '#include "platform/detail/EnumText.h"'
plant model/Entity.h '#pragma once' '#include "model/detail/Table.h"' '#include "platform/mox/Ptr.h"'
plant driver/sim/Sim.cpp '#include "driver/sim/Sim.h"' '#include "driver/KestDma.h"' '#include "text/File.h"'
plant sm/Sm.cpp '#include "driver/KestDma.h"' '#include "model/Entity.h"' '#include "sm/detail/Reactor.h"'
plant registry/Types.cpp '#include "sm/Sm.h"'
plant agent/main.cpp '#include <CLI/CLI.hpp>' '#include "registry/Types.h"' '#include "agent/Agent.h"'
plant agent/slice/Read.cpp '#include "agent/rules/Rules.h"' '#include "agent/slice/Read.h"' '#include "text/File.h"'
plant ctl/main.cpp '#include "agent/wire/Protocol.h"' '#include "ctl/Client.h"' '#include "text/File.h"'
plant text/File.cpp '#include "text/File.h"'
plant test/sm/Fixture.h '#pragma once' '#include "agent/Agent.h"'
expect 0 ""

plant agent/Agent.h '#include "driver/sim/Sim.h"'
plant agent/rules/Rules.cpp '#include "agent/access/Path.h"' '#include "agent/Agent.h"' '#include "agent/slice/Write.h"'
plant agent/lost/Room.cpp '#include "agent/lost/Room.h"'
plant model/Part.inc '  int part;' '#include "sm/Sm.h"'
plant driver/sim/There.h '#pragma once' '#include "driver/sim/Back.inc"'
plant driver/sim/Back.inc '#include "driver/sim/There.h"'
plant agent/show/There.h '#pragma once' '#include "agent/show/Back.h"'
plant agent/show/Back.cpp '#include "agent/show/There.h"'
plant ctl/Client.cpp '#include "agent/Agent.h"' '#include "platform/mox/Ptr.h"'
plant driver/KestDma.h '#pragma once' '#include "driver/sim/Sim.h"'
plant driver/sim/Up.cpp '#include "model/Entity.h"' '#include "driver/tap/Tap.h"'
plant model/Up.cpp '#include "model/Up.h"' '' ' #  include "sm/Sm.h"' '#include <agent/Agent.h>'
plant platform/mox/Up.h '#pragma once' '#include "model/Entity.h"'
plant registry/Low.cpp '#include "driver/KestDma.h"' '#include "platform/mox/detail/Rep.h"'
plant sm/Low.cpp '#include "platform/detail/EnumText.h"' '#include "model/../agent/Agent.h"' '#include "Sm.h"'
plant sm/Reads.cpp '#include "text/File.h"'
plant text/Up.cpp '#include "platform/mox/Ptr.h"' '#include "agent/Agent.h"'
plant sm/Sim.cpp '#include "driver/sim/Sim.h"' '#include "registry/Types.h"'
plant test/sm/Bare.h 'int once;'
expect 1 "agent/Agent.h:1: agent/ may not include driver/sim/Sim.h
agent/lost/Room.cpp:1: agent/ may not include agent/lost/Room.h
agent/rules/Rules.cpp:2: agent/ may not include agent/Agent.h
agent/rules/Rules.cpp:3: agent/ may not include agent/slice/Write.h
ctl/Client.cpp:1: ctl/ may not include agent/Agent.h
ctl/Client.cpp:2: ctl/ may not include platform/mox/Ptr.h
driver/KestDma.h:2: driver/ may not include driver/sim/Sim.h
driver/sim/Up.cpp:1: driver/ may not include model/Entity.h
driver/sim/Up.cpp:2: driver/ may not include driver/tap/Tap.h
model/Part.inc:2: model/ may not include sm/Sm.h
model/Up.cpp:3: model/ may not include sm/Sm.h
model/Up.cpp:4: model/ may not include agent/Agent.h
platform/mox/Up.h:2: platform/ may not include model/Entity.h
registry/Low.cpp:1: registry/ may not include driver/KestDma.h
registry/Low.cpp:2: platform/mox/detail/Rep.h is a detail of the platform
sm/Low.cpp:1: platform/detail/EnumText.h is a detail of the platform
sm/Low.cpp:2: sm/ may not include model/../agent/Agent.h
sm/Low.cpp:3: sm/ may not include Sm.h
sm/Reads.cpp:1: sm/ may not include text/File.h
sm/Sim.cpp:1: sm/ may not include driver/sim/Sim.h
sm/Sim.cpp:2: sm/ may not include registry/Types.h
text/Up.cpp:1: text/ may not include platform/mox/Ptr.h
text/Up.cpp:2: text/ may not include agent/Agent.h
agent/Agent.h:1: no #pragma once
test/sm/Bare.h:1: no #pragma once
these files include each other: agent/show/Back agent/show/There driver/KestDma driver/sim/Sim driver/sim/Back driver/sim/There
26 defects"
