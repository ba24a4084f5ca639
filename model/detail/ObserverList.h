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
class ObserverList {
 public:
  ObserverList() = default;
  ObserverList(ObserverList const&) = delete;
  ObserverList& operator=(ObserverList const&) = delete;

  std::size_t count() const noexcept { return count_; }
  /// Changes with every `append` and `remove`.
  std::uint32_t version() const noexcept { return version_; }

  /// At the tail. The observer must not be on a list.
  void append(ListedNotifiee const& observer) noexcept {
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

  /// Calls `tell(observer)` for each observer, which reacts to a change of `attribute`.
  template <class Tell>
  void deliver(Mox::AttributeId attribute, Tell const& tell) const {
    if (head_ == nullptr) return;
    std::vector<Mox::Ptr<ListedNotifiee>> snapshot = observers();
    for (std::size_t i = 0; i < snapshot.size(); ++i) {
      bool const released = i > 0 && snapshot[i]->references() == 1;
      if (!released) tellOne(*snapshot[i], attribute, tell);
      snapshot[i] = nullptr;
    }
  }

 private:
  /// The link that points at `observer`; the one at the tail for null.
  ListedNotifiee const** link(ListedNotifiee const* observer) noexcept {
    ListedNotifiee const** at = &head_;
    while (*at != observer) at = &(*at)->next_;
    return at;
  }

  std::vector<Mox::Ptr<ListedNotifiee>> observers() const {
    std::vector<Mox::Ptr<ListedNotifiee>> all;
    all.reserve(count_);
    for (ListedNotifiee const* at = head_; at != nullptr; at = at->next_) {
      all.emplace_back(const_cast<ListedNotifiee*>(at));
    }
    return all;
  }

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

  ListedNotifiee const* head_ = nullptr;
  std::size_t count_ = 0;
  std::uint32_t version_ = 0;
};

}  // namespace Hardware::Kest::Slice::detail
