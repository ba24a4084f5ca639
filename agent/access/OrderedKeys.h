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
/// First they are gathered, a bounded number in each step, so that a large collection holds nothing
/// up; then they are taken in order. Collections may change meanwhile: a key that is added or
/// removed may be among the keys or not.
class OrderedKeys {
 public:
  /// Returns the next key each time, and nothing at the end.
  using Source = std::function<std::optional<Mox::String8>()>;

  void add(Source source) { sources_.push_back(std::move(source)); }
  /// The keys of a collection of a slice entity. Holds a reference until they have been gathered.
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

  /// The next key in order; nothing after the last. Only after all have been gathered.
  std::optional<Mox::String8> take();

 private:
  static constexpr std::size_t bytesOfKey = 64;  // with the set's own

  std::vector<Source> sources_;  // the last one is being gathered
  std::set<Mox::String8, NaturalOrder> keys_;
};

}  // namespace Kest::Agent
