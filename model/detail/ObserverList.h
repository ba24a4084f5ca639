#pragma once

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
  ListedNotifiee const mutable* next_ = nullptr;
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

  std::size_t count() const noexcept { return count_; }
  /// Changes with every `append` and `remove`.
  std::uint32_t version() const noexcept { return version_; }

  /// Lets the next `append` find memory.
  void makeRoom() const { room_.reserve(count_ + 1); }

  /// At the tail. The observer must not be on a list.
  void append(ListedNotifiee const& observer) {
    makeRoom();
    *link(nullptr) = &observer;
    ++count_;
    ++version_;
  }

  /// The observer must be on this list.
  void remove(ListedNotifiee const& observer) noexcept {
    *link(&observer) = observer.next_;
    observer.next_ = nullptr;
    --count_;
    ++version_;
  }

  /// Takes every observer off the list; they count as not registered from then on.
  void clear() noexcept {
    while (head_ != nullptr) {
      head_->registered_ = false;
      remove(*head_);
    }
  }

 private:
  using Snapshot = std::vector<Mox::Ptr<ListedNotifiee>>;

  /// The link that points at `observer`; the one at the tail for null.
  ListedNotifiee const** link(ListedNotifiee const* observer) noexcept {
    ListedNotifiee const** at = &head_;
    while (*at != observer) at = &(*at)->next_;
    return at;
  }

  ListedNotifiee const* head_ = nullptr;
  std::size_t count_ = 0;
  std::uint32_t version_ = 0;
  Snapshot mutable room_;  // empty; for all observers, unless a delivery has taken it
};

/// Tells the observers of one change. It is made before the change, and takes its room then: when
/// there is none nothing has changed yet, and what has changed is announced.
class ObserverList::Delivery {
 public:
  explicit Delivery(ObserverList const& list) : list_(list) {
    if (list.room_.capacity() >= list.count_) {
      observers_.swap(list.room_);
    } else {
      observers_.reserve(list.count_);
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
    for (ListedNotifiee const* at = list_.head_; at != nullptr; at = at->next_) {
      observers_.emplace_back(const_cast<ListedNotifiee*>(at));
    }
    for (std::size_t i = 0; i < observers_.size(); ++i) {
      bool const released = i > 0 && observers_[i]->references() == 1;
      if (!released) tellOne(*observers_[i], attribute, tell);
      observers_[i] = nullptr;
    }
  }

 private:
  template <class Tell>
  static void tellOne(ListedNotifiee& observer, Mox::AttributeId attribute, Tell const& tell) {
    try {
      Mox::ExpectationScope const scope;
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
  Snapshot observers_;
};

}  // namespace Hardware::Kest::Slice::detail
