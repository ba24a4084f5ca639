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
  ObserverList() = default;
  ObserverList(ObserverList const&) = delete;
  ObserverList& operator=(ObserverList const&) = delete;

  std::size_t count() const noexcept { return observers_.size(); }
  /// Changes with every `append` and `remove`.
  std::uint32_t version() const noexcept { return version_; }

  /// Lets the next `append` find memory.
  void makeRoom() {
    Observers roomier;
    if (count() == observers_.capacity()) roomier.reserve(more(count()));
    makeRoomToTell(count() + 1);  // what may fail is done
    if (roomier.capacity() == 0) return;
    roomier.assign(observers_.begin(), observers_.end());
    observers_.swap(roomier);
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

  /// Lets the next `tell` find memory: before a change, so that when there is none nothing has
  /// changed yet, and what has changed is announced.
  void makeRoomToTell() const { makeRoomToTell(count()); }

  /// Calls `tellOne(observer)` for each observer, which reacts to a change of `attribute`. What is
  /// announced without a change finds its memory here.
  template <class TellOne>
  void tell(Mox::AttributeId attribute, TellOne const& tellOne) const {
    makeRoomToTell();
    std::size_t const first = told_;
    std::size_t const end = takeSnapshot();
    unsigned const depth = Mox::ExpectationScope::depth();
    for (std::size_t i = first; i < end; ++i) {
      ListedNotifiee& observer = *toTell_[i];
      bool const released = i > first && observer.references() == 1;
      if (!released) contain(observer, attribute, depth, tellOne);
      observer.referenceDel();
    }
    told_ = first;
  }

 private:
  using Observers = std::vector<ListedNotifiee*>;

  static std::size_t more(std::size_t places) { return std::max<std::size_t>(4, 2 * places); }

  void makeRoomToTell(std::size_t observers) const {
    std::size_t const places = told_ + observers;
    if (places > toTell_.size()) toTell_.resize(more(places));
  }

  /// Returns where it ends. Each observer has a reference then.
  std::size_t takeSnapshot() const noexcept {
    ListedNotifiee** place = toTell_.data() + told_;
    for (ListedNotifiee* const observer : observers_) {
      observer->referenceNew();
      *place++ = observer;
    }
    told_ += count();
    return told_;
  }

  template <class TellOne>
  static void contain(ListedNotifiee& observer, Mox::AttributeId attribute, unsigned depth,
                      TellOne const& tellOne) {
    try {
      Mox::ExpectationScope const scope(depth);
      tellOne(observer);
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

  Observers observers_;
  std::uint32_t version_ = 0;
  // Places for snapshots. The first `told_` are those of deliveries under way, the innermost last.
  Observers mutable toTell_;
  std::size_t mutable told_ = 0;
};

}  // namespace Hardware::Kest::Slice::detail
