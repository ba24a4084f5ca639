#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "agent/access/Collections.h"
#include "platform/mox/GenericIf.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// The keys of one or more sources, each key once, in the order in which people number things.
///
/// First they are gathered, a bounded number of keys a step, so that nothing is held up by a large
/// collection; then they are taken in order. Collections may change in between: a key that comes or
/// goes meanwhile may be among the keys or not. Only keys are held, each until it is taken.
class OrderedKeys {
 public:
  /// Yields another key each time, and nothing at its end.
  using Source = std::function<std::optional<Mox::String8>()>;

  void add(Source source) { sources_.push_back(std::move(source)); }
  /// The keys of that collection of a slice entity, which is held until they have been gathered.
  template <class Collection, class Entity>
  void add(Mox::Ptr<Entity> entity) {
    auto it = collectionOf<Collection>(std::as_const(*entity)).iteratorConst();
    add([entity = std::move(entity), it]() mutable -> std::optional<Mox::String8> {
      if (!it) return std::nullopt;
      Mox::String8 key = it.key();
      ++it;
      return key;
    });
  }

  /// The keys of a collection that is walked by name.
  void add(std::shared_ptr<Mox::AttributeIterator> entries);

  /// Gathers for half a millisecond or so. False once every key has been gathered.
  bool gather();

  /// Keys that have been gathered and not been taken.
  std::size_t count() const noexcept { return keys_.size(); }
  /// About how many bytes of memory they take, without the strings, which others share.
  std::size_t held() const noexcept { return keys_.size() * bytesOfKey; }

  /// The next key in order; nothing once all have been taken. Not before all have been gathered.
  std::optional<Mox::String8> take();

 private:
  static constexpr std::size_t bytesOfKey = 64;  // with the set's own

  std::vector<Source> sources_;  // the last one is being gathered
  std::set<Mox::String8, NaturalOrder> keys_;
};

}  // namespace Kest::Agent
