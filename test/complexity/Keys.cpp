#include <string_view>

#include "platform/mox/HashMap.h"
#include "test/complexity/Texts.h"

namespace Kest::Complexity {

namespace {

class KeyEntry : public Mox::HashMapEntry {
 public:
  explicit KeyEntry(Mox::String8 const& key) : HashMapEntry(key) {}
};
using KeyMap = Mox::HashMap<KeyEntry>;

/// A key a line.
std::vector<Mox::String8> keysOf(std::string_view text) {
  std::vector<Mox::String8> keys;
  while (!text.empty()) {
    std::size_t const end = text.find('\n');
    keys.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return keys;
}

void insertAll(KeyMap& map, std::vector<Mox::String8> const& keys) {
  for (Mox::String8 const& key : keys) map.insert(Mox::Ptr<KeyEntry>(new KeyEntry(key)));
}

void insertKeys(std::string const& text) {
  std::vector<Mox::String8> const keys = keysOf(text);
  KeyMap map;
  Counted const counted;
  insertAll(map, keys);
}

void insertKeysBackwards(std::string const& text) {
  std::vector<Mox::String8> const keys = keysOf(text);
  KeyMap map;
  Counted const counted;
  insertAll(map, {keys.rbegin(), keys.rend()});
}

void findKeys(std::string const& text) {
  std::vector<Mox::String8> const keys = keysOf(text);
  KeyMap map;
  insertAll(map, keys);
  Counted const counted;
  for (Mox::String8 const& key : keys) map.find(key);
}

/// Deletes in the order of a walk, as an entity's `DelAll` does.
void removeKeys(std::string const& text) {
  KeyMap map;
  insertAll(map, keysOf(text));
  Counted const counted;
  for (auto it = map.iteratorConst(); it; ++it) map.remove(it.key());
}

}  // namespace

std::vector<Reader> keyReaders() {
  std::vector<Case> const cases{pieces("ordinary keys", "", "Ethernet@\n"),
                                pieces("keys of one hash", "", "%\n"),
                                pieces("keys of crowded hashes", "", "^\n")};
  return {{"hash map: insertion", insertKeys, cases},
          {"hash map: insertion backwards", insertKeysBackwards, cases},
          {"hash map: lookup", findKeys, cases},
          {"hash map: deletion", removeKeys, cases}};
}

}  // namespace Kest::Complexity
