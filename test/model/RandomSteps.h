#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/mox/PtrInterface.h"
#include "platform/mox/String8.h"

/// What a random run does to an entity and to its plain model, and what it hears back from either.
///
/// Observers react: what one does when it is told depends on nothing but the number of
/// notifications before, so the two runs stay the same exactly as long as the two sequences of
/// notifications do.
namespace Hardware::Kest::Slice {

inline constexpr unsigned entities = 2;    // observers are pointed from one to the other
inline constexpr unsigned observers = 12;  // at a time: more than a delivery holds on the stack
inline constexpr unsigned collections = 5;
inline constexpr unsigned reactionDepth = 3;

inline constexpr unsigned keys = 20;

inline std::array<Mox::String8, keys> const& keyPool() {
  static std::array<Mox::String8, keys> const all = [] {
    std::array<Mox::String8, keys> pool;  // the first stays empty
    for (unsigned i = 1; i < keys; ++i) pool[i] = Mox::String8("et" + std::to_string(i));
    return pool;
  }();
  return all;
}

/// A small stream of random numbers, cheap to start (splitmix64).
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}

  unsigned below(unsigned bound) {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return static_cast<unsigned>((z ^ (z >> 31)) % bound);
  }
  bool oneIn(unsigned bound) { return below(bound) == 0; }

 private:
  std::uint64_t state_;
};

enum class Do {
  set,
  insert,  // bare; left out when the key is there
  del,
  delAt,
  delFirst,
  delAll,
  notify,
  lookup,
  sliceId,  // a lookup where there is none
  zeroReferences,
  join,
  leave,
  point,
  renew,  // the observer is released and another takes its place
};

struct Step {
  Do what;
  unsigned entity;
  unsigned collection;
  Mox::String8 key;
  unsigned value;
  unsigned observer;
};

inline Step randomStep(Dice& dice) {
  static constexpr struct {
    Do what;
    unsigned weight;
  } weights[] = {{Do::set, 40},     {Do::insert, 3}, {Do::del, 12},           {Do::delAt, 5},
                 {Do::delFirst, 3}, {Do::delAll, 2}, {Do::notify, 4},         {Do::lookup, 8},
                 {Do::sliceId, 6},  {Do::join, 8},   {Do::zeroReferences, 1}, {Do::leave, 3},
                 {Do::point, 3},    {Do::renew, 2}};
  static constexpr unsigned all = [] {
    unsigned sum = 0;
    for (auto const& one : weights) sum += one.weight;
    return sum;
  }();

  unsigned left = dice.below(all);
  auto const* chosen = weights;
  for (; left >= chosen->weight; ++chosen) left -= chosen->weight;
  return {
      chosen->what,  dice.oneIn(6) ? 1U : 0U, dice.below(collections), keyPool()[dice.below(keys)],
      dice.below(4), dice.below(observers)};
}

/// Something heard: an observer was told, or an operation returned.
struct Heard {
  char what;       // 't' told, 'x' told of an exception, 'l' looked up, 'd' deleted
  unsigned who;    // the observer, or the entity
  unsigned which;  // collection, `toldSliceId`, `toldZeroReferences` or attribute
  Mox::String8 key;
  unsigned value;

  friend bool operator==(Heard const&, Heard const&) = default;
  friend std::ostream& operator<<(std::ostream& out, Heard const& h) {
    return out << h.what << " by " << h.who << " of " << h.which << " '" << h.key << "' "
               << h.value;
  }
};
inline constexpr unsigned toldSliceId = 100;
inline constexpr unsigned toldZeroReferences = 101;
inline constexpr unsigned noValue = 99;

/// Base of both runs: what was heard, and how observers react. `Run` has `take(Step)`.
template <class Run>
class Reactions {
 public:
  std::vector<Heard> heard;

  /// Observer `who` is told; its handler does this.
  void told(unsigned who, unsigned which, Mox::String8 const& key) {
    heard.push_back({'t', who, which, key, 0});
    react(4);
  }
  /// Observer `who` is told of its exception.
  void toldException(unsigned who, Mox::AttributeId id) {
    heard.push_back({'x', who, static_cast<unsigned>(id), "", 0});
    react(6);
  }

 private:
  void react(unsigned oneIn) {
    Dice dice(++notifications_);
    if (!dice.oneIn(oneIn)) return;
    if (depth_ < reactionDepth) {
      ++depth_;
      for (unsigned steps = 1 + dice.below(2); steps > 0; --steps) {
        static_cast<Run*>(this)->take(randomStep(dice));
      }
      --depth_;
    }
    if (dice.oneIn(3)) throw std::runtime_error("refused");
  }

  std::uint64_t notifications_ = 0;
  unsigned depth_ = 0;
};

}  // namespace Hardware::Kest::Slice
