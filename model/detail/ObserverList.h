#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/mox/Entity.h"
#include "platform/mox/Ptr.h"

namespace Hardware::Kest::Slice::detail {

/// An observer that can be on an `ObserverList`.
class ListedNotifiee : public Mox::Entity::NotifieeConst {
 public:
  bool isRegisteredNotifiee() const noexcept { return registered_; }

 protected:
  bool mutable registered_ = false;

 private:
  friend class ObserverList;
};

/// The observers of one entity, in the order in which they registered.
///
/// Ownership. The list holds no references: an observer leaves it before it dies. A delivery holds
/// a reference to every observer that it is still to tell.
///
/// Delivery. The observers that are on the list when a delivery starts are told, in order; one that
/// joins meanwhile is not, one that leaves meanwhile still is, unless nobody but the delivery holds
/// it any more. What an observer's handler throws is reported to that observer and to nobody else.
///
/// Re-entrancy. Handlers may change the list and start deliveries of their own. The list itself
/// must live until they are through: whoever changes an entity holds a reference to it.
///
/// Memory. An observer that joins brings the room that a delivery needs for it, or is refused with
/// `std::bad_alloc`, and nothing has changed. So a delivery that is under way alone cannot fail,
/// whatever is left of the memory; one inside another takes room of its own.
class ObserverList {
 public:
  class Delivery;

  ObserverList() = default;
  ObserverList(ObserverList const&) = delete;
  ObserverList& operator=(ObserverList const&) = delete;

  std::size_t count() const noexcept { return observers_.size(); }
  /// Changes with every `append` and `remove`.
  std::uint32_t version() const noexcept { return version_; }

  /// Lets the next `append` find memory.
  void makeRoom() {
    std::size_t const count = observers_.size();
    if (count < observers_.capacity() && count < room_.capacity()) return;
    std::size_t const places = std::max<std::size_t>(4, 2 * count);
    Observers room;
    room.reserve(places);
    observers_.reserve(places);
    room_.swap(room);
  }

  /// At the tail. The observer must not be on a list.
  void append(ListedNotifiee const& observer) {
    makeRoom();
    observers_.push_back(const_cast<ListedNotifiee*>(&observer));
    ++version_;
  }

  /// The observer must be on this list.
  void remove(ListedNotifiee const& observer) noexcept {
    observers_.erase(std::find(observers_.begin(), observers_.end(), &observer));
    ++version_;
  }

  /// Takes every observer off the list; they count as not registered from then on.
  void clear() noexcept {
    for (ListedNotifiee const* const observer : observers_) observer->registered_ = false;
    version_ += static_cast<std::uint32_t>(observers_.size());
    observers_.clear();
  }

 private:
  using Observers = std::vector<ListedNotifiee*>;

  Observers observers_;
  std::uint32_t version_ = 0;
  Observers mutable room_;  // empty; for all observers, unless a delivery has taken it
};

/// Tells the observers of one change. It is made before the change, and takes its room then: when
/// there is none nothing has changed yet, and what has changed is announced.
class ObserverList::Delivery {
 public:
  explicit Delivery(ObserverList const& list) : list_(list) {
    if (list.count() == 0) return;
    if (list.room_.capacity() >= list.count()) {
      observers_.swap(list.room_);
    } else {
      observers_.reserve(list.count());
    }
  }
  Delivery(Delivery const&) = delete;
  Delivery& operator=(Delivery const&) = delete;
  ~Delivery() {
    observers_.clear();
    if (list_.room_.capacity() < observers_.capacity()) observers_.swap(list_.room_);
  }

  /// Calls `tell(observer)` for each observer, which reacts to a change of `attribute`. Once.
  template <class Tell>
  void run(Mox::AttributeId attribute, Tell const& tell) {
    observers_ = list_.observers_;
    for (ListedNotifiee const* const observer : observers_) observer->referenceNew();
    unsigned const depth = Mox::ExpectationScope::depth();
    bool first = true;
    for (ListedNotifiee* const observer : observers_) {
      bool const released = !first && observer->references() == 1;
      if (!released) tellOne(*observer, attribute, depth, tell);
      observer->referenceDel();
      first = false;
    }
  }

 private:
  template <class Tell>
  static void tellOne(ListedNotifiee& observer, Mox::AttributeId attribute, unsigned depth,
                      Tell const& tell) {
    try {
      Mox::ExpectationScope const scope(depth);
      tell(observer);
    } catch (...) {
      report(observer, attribute);
    }
  }

  static void report(ListedNotifiee& observer, Mox::AttributeId attribute) noexcept {
    try {
      observer.onNotificationException(attribute);
    } catch (...) {  // NOLINT(bugprone-empty-catch): nobody is left to tell
    }
  }

  ObserverList const& list_;
  Observers observers_;  // while they are told each has a reference
};

}  // namespace Hardware::Kest::Slice::detail
