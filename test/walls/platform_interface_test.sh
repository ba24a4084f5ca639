#!/usr/bin/env bash
# platform_interface.py finds every use that is planted here and not on the list, and what is wrong with
# the list.
set -euo pipefail

check=$(cd "$(dirname "$0")" && pwd)/platform_interface.py
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/platform/mox" "$tree/model" "$tree/driver/sim"

# expect EXIT_CODE TEXT: what platform_interface.py makes of the tree.
expect() {
  local code=0 found
  found=$("$check" "$tree/list" "$tree" 2>&1) || code=$?
  [[ $code == "$1" ]] || { echo "expected exit code $1, found $code:" "$found"; exit 1; }
  diff <(echo "$2") <(echo "$found") || { echo "expected < , found >"; exit 1; }
}

cat >"$tree/platform/mox/Text.h" <<'END_OF_FILE'
#pragma once
#include <string>
namespace Mox {
using Number = int;
enum class Kind { small, large };
struct Base {
  virtual void told(int) {}
  virtual ~Base() = default;
  int held() const { return 1; }
};
class Text : public Base {
 public:
  static constexpr int most = 4;
  Text() = default;
  explicit Text(int) {}
  explicit operator bool() const { return held() > 0; }
  friend bool operator==(Text const&, Text const&) { return true; }
  int size() const { return detail(); }
  int spare() const { return 0; }
  int field = 0;
 private:
  int detail() const { return 0; }
};
bool operator<(Text const&, Text const&);
template <class T>
struct Map {
  struct Place { T* entry = nullptr; };
  T* find(int) const { return place().entry; }
  Place place() const { return {}; }
};
int now();
template <class T>
int read(T*) { return now(); }
}
END_OF_FILE
cat >"$tree/model/Entry.h" <<'END_OF_FILE'
#pragma once
#include "platform/mox/Text.h"
namespace Hardware::Kest::Slice {
struct Entry : Mox::Text {
  void told(int) override {}
};
template <class Value>
class Collection {
 public:
  bool has(int key) const { return map_.find(key) != nullptr; }
  bool never() const { return map_.place().entry == nullptr; }
 private:
  Mox::Map<Value> map_;
};
}
END_OF_FILE
cat >"$tree/model/Entry.cpp" <<'END_OF_FILE'
#include "model/Entry.h"
namespace Hardware::Kest::Slice {
bool use(Collection<Entry> const& all, Mox::Text const& text) {
  return all.has(Mox::Text::most) && text && text == Mox::Text(1) && text.size() == 1;
}
}
END_OF_FILE
cat >"$tree/driver/sim/Sim.cpp" <<'END_OF_FILE'
#include "platform/mox/Text.h"
namespace Hardware::Kest::Sim {
auto late = [](auto const& text) { return text.field + (text < text ? 1 : 0); };
int number = late(Mox::Text());
}
END_OF_FILE
cat >"$tree/list" <<'END_OF_FILE'
# What is promised.
Mox::Base::told
Mox::Map
Mox::Map::find
Mox::Text
Mox::Text::field
Mox::Text::most   # a constant
+ Mox::Text::size   every text must have one
Mox::operator<
END_OF_FILE
expect 0 ""

cat >>"$tree/model/Entry.cpp" <<'END_OF_FILE'
namespace Hardware::Kest::Slice {
Mox::Number wrong(Collection<Entry> const& all, Entry const& entry) {
  auto const kind = Mox::Kind::large;
  return all.never() + entry.spare() + entry.held() + Mox::now() + Mox::read(&kind);
}
}
END_OF_FILE
sed -i -e '/told/d' -e 's/ every text.*//' -e '$ a Mox::Text\nMox::Dir\nMox::now because' "$tree/list"
expect 1 "list:7: Mox::Text::size is added without a reason
list:9: Mox::Text is listed twice
list:10: Mox::Dir is used nowhere
list:11: Mox::now has a reason, but is no addition
model/Entry.cpp:10: Mox::Base is not promised
model/Entry.cpp:10: Mox::Base::held is not promised
model/Entry.h:5: Mox::Base::told is not promised
model/Entry.cpp:9: Mox::Kind is not promised
model/Entry.cpp:9: Mox::Kind::large is not promised
model/Entry.h:11: Mox::Map::Place is not promised
model/Entry.h:11: Mox::Map::Place::entry is not promised
model/Entry.h:11: Mox::Map::place is not promised
model/Entry.cpp:8: Mox::Number is not promised
model/Entry.cpp:10: Mox::Text::spare is not promised
model/Entry.cpp:10: Mox::read is not promised
15 defects"

echo 'int broken = ;' >"$tree/model/Broken.cpp"
found=$("$check" "$tree/list" "$tree" 2>&1) && { echo "took sources that cannot be parsed"; exit 1; }
grep -q 'clang++ cannot parse the sources' <<<"$found" || { echo "$found"; exit 1; }
