#include "platform/mox/HashMap.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "test/fuzz/Fuzz.h"
#include "test/support/KeysOfHash.h"

/// The hash map beside a plain ordered one. The input is a list of operations.
namespace {

using Mox::String8;

struct Entry : Mox::HashMapEntry {
  Entry(String8 key, int number, std::set<int>& living)
      : Mox::HashMapEntry(std::move(key)), id(number), alive(living) {
    alive.insert(id);
  }
  ~Entry() override { alive.erase(id); }

  int id;
  std::set<int>& alive;
};

/// A map and what it should hold: entries by id, in the order that the map promises; and iterators
/// with what they should designate.
class Run {
 public:
  explicit Run(Fuzz::Input input) : input_(input) {}

  void all() {
    while (!input_.empty()) step();
    compare();
    map_.clear();
    model_.clear();
    compare();
  }

 private:
  using Place = std::pair<std::uint32_t, String8>;
  struct Walker {
    Mox::HashMap<Entry>::IteratorConst it;
    Place place;
    int id;
  };
  static constexpr std::size_t mostWalkers = 8;

  /// Four pairs of keys with one hash each, the empty key, two of the crowd, then numbered ports.
  String8 key() {
    static String8 const special[] = {
        "bunaba",           "lesuso", "gutoki", "pogale", "setube",
        "seviza",           "bogoka", "vakega", "",       String8(crowd()[0]),
        String8(crowd()[1])};
    std::size_t const number = input_.byte();
    return number < std::size(special) ? special[number] : String8("et" + std::to_string(number));
  }
  /// So many keys with one home that the map gives its table up.
  static std::vector<std::string> const& crowd() {
    static std::vector<std::string> const keys =
        Support::KeysOfHash().next(Mox::HashTable::mostMoved + 8, 1);
    return keys;
  }
  static Place placeOf(String8 const& key) { return {key.hash(), key}; }

  void step() {
    switch (input_.below(10)) {
      case 0:
        insertMany();
        break;
      case 1:
      case 2:
        insert(key());
        break;
      case 3:
        remove(key());
        break;
      case 4:
        removeAtWalker();
        break;
      case 5:
        expectAt(map_.iteratorConst(), model_.begin());
        break;
      case 6: {
        String8 const start = key();
        expectAt(map_.iteratorConst(start), model_.find(placeOf(start)));
        break;
      }
      case 7:
      case 8:
        stepWalker();
        break;
      default:
        input_.below(16) == 0 ? clear() : find(key());
    }
    Fuzz::require(map_.count() == model_.size(), "the map counts its entries");
  }

  /// So that buckets are doubled and keys share them.
  void insertMany() {
    unsigned const first = input_.byte() * 16U;
    if (first == 0) {
      for (std::string const& one : crowd()) insert(String8(one));
    }
    for (unsigned i = 0; i < 16; ++i) insert(String8("po" + std::to_string(first + i)));
  }

  void insert(String8 const& key) {
    map_.insert(Mox::Ptr<Entry>(new Entry(key, ++lastId_, alive_)));
    model_[placeOf(key)] = lastId_;
  }

  void remove(String8 const& key) {
    bool const isThere = model_.erase(placeOf(key)) > 0;
    auto const place = map_.place(key);
    Fuzz::require((place.entry() != nullptr) == isThere, "a key is found", key.view());
    if (isThere) map_.remove(place);
  }

  void removeAtWalker() {
    if (walkers_.empty()) return;
    Walker const& walker = walkers_[input_.byte() % walkers_.size()];
    auto const found = model_.find(walker.place);
    bool const isThere = found != model_.end() && found->second == walker.id;
    auto const place = map_.place(walker.it);
    Fuzz::require((place.entry() != nullptr) == isThere,
                  "an iterator knows whether its entry has left");
    if (!isThere) return;
    map_.remove(place);
    model_.erase(found);
  }

  void clear() {
    map_.clear();
    model_.clear();
  }

  void stepWalker() {
    if (walkers_.empty()) return;
    auto const chosen = walkers_.begin() + static_cast<int>(input_.byte() % walkers_.size());
    Walker walker = *chosen;
    walkers_.erase(chosen);
    ++walker.it;
    expectAt(walker.it, model_.upper_bound(walker.place));
  }

  /// Keeps the iterator if it designates something.
  void expectAt(Mox::HashMap<Entry>::IteratorConst const& it,
                std::map<Place, int>::const_iterator expected) {
    Fuzz::require(static_cast<bool>(it) == (expected != model_.end()), "a walk ends in time");
    if (!it) return;
    Fuzz::requireSame(it.key().view(), expected->first.second.view(), "a walk is in order");
    Fuzz::require(it->id == expected->second, "an iterator is at the entry that is there now");
    if (walkers_.size() == mostWalkers) walkers_.erase(walkers_.begin());
    walkers_.push_back({it, expected->first, expected->second});
  }

  void find(String8 const& key) {
    auto const expected = model_.find(placeOf(key));
    Entry const* const entry = map_.find(key);
    Fuzz::require((entry != nullptr) == (expected != model_.end()), "a key is found", key.view());
    if (entry != nullptr) Fuzz::require(entry->id == expected->second, "the last entry is found");
  }

  /// The whole content in order; nothing else is alive but what iterators hold.
  void compare() {
    std::set<int> expectedAlive;
    auto expected = model_.begin();
    for (auto it = map_.iteratorConst(); it; ++it, ++expected) {
      Fuzz::require(expected != model_.end(), "a walk ends in time");
      Fuzz::requireSame(it.key().view(), expected->first.second.view(), "a walk is in order");
      expectedAlive.insert(expected->second);
    }
    Fuzz::require(expected == model_.end(), "a walk meets every entry");
    for (Walker const& walker : walkers_) expectedAlive.insert(walker.id);
    Fuzz::require(alive_ == expectedAlive, "what nobody holds any more is gone");
  }

  Fuzz::Input input_;
  std::set<int> alive_;
  Mox::HashMap<Entry> map_;
  std::map<Place, int> model_;
  std::vector<Walker> walkers_;
  int lastId_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Run(Fuzz::Input(bytes, size)).all();
  return 0;
}
