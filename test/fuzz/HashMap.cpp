#include "platform/mox/HashMap.h"

#include <array>
#include <map>
#include <set>
#include <string>
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

  /// Four pairs of keys with one hash each, the empty key, two of each crowd, then numbered ports.
  String8 key() {
    static std::vector<String8> const special = [] {
      std::vector<String8> all{"bunaba", "lesuso", "gutoki", "pogale", "setube",
                               "seviza", "bogoka", "vakega", ""};
      for (auto const& crowd : crowds()) all.insert(all.end(), crowd.begin(), crowd.begin() + 2);
      return all;
    }();
    std::size_t const number = input_.byte();
    return number < special.size() ? special[number] : String8("et" + std::to_string(number));
  }
  /// Crowds are so many keys that the map gives its table up: of one hash, of one home, and of the
  /// last home.
  static std::array<std::vector<String8>, 3> const& crowds() {
    static auto const all = [] {
      constexpr std::uint32_t count = Mox::HashTable::mostMoved + 8;
      auto const crowd = [](std::uint32_t step, std::uint32_t hash) {
        std::vector<std::string> const keys = Support::KeysOfHash().next(count, step, hash);
        return std::vector<String8>(keys.begin(), keys.end());
      };
      return std::array{crowd(0, 0x20000000U), crowd(1, 0x40000000U), crowd(1, 0U - count)};
    }();
    return all;
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

  /// Enough for the table to grow, or for the map to give it up.
  void insertMany() {
    std::size_t const number = input_.byte();
    if (number < crowds().size()) {
      for (String8 const& one : crowds()[number]) insert(one);
    }
    for (std::size_t i = 0; i < 16; ++i) insert(String8("po" + std::to_string(number * 16 + i)));
  }

  void insert(String8 const& key) {
    map_.insert(Mox::Ptr<Entry>(new Entry(key, ++lastId_, alive_)));
    model_[placeOf(key)] = lastId_;
  }

  void remove(String8 const& key) {
    auto const expected = model_.extract(placeOf(key));
    Mox::Ptr<Entry> const removed = map_.remove(key);
    Fuzz::require(static_cast<bool>(removed) != expected.empty(), "a key is found", key.view());
    if (removed) Fuzz::require(removed->id == expected.mapped(), "the last entry leaves");
  }

  void removeAtWalker() {
    if (walkers_.empty()) return;
    Walker const& walker = walkers_[input_.byte() % walkers_.size()];
    auto const found = model_.find(walker.place);
    bool const isThere = found != model_.end() && found->second == walker.id;
    Fuzz::require((map_.find(walker.it.key()) == &*walker.it) == isThere,
                  "an iterator's entry is in the map until it leaves");
    if (isThere) remove(walker.it.key());
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
