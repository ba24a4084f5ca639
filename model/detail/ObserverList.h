#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "model/detail/EndProcess.h"
#include "platform/mox/Entity.h"
#include "platform/mox/Ptr.h"

namespace Hardware::Kest::Slice::detail {

/// An observer that can be on an `ObserverList`, to which it lends its link.
class ListedNotifiee : public Mox::Entity::NotifieeConst {
 public:
  bool isRegisteredNotifiee() const noexcept { return registered_; }

 protected:
  bool mutable registered_ = false;

 private:
  friend class ObserverList;
  mutable ListedNotifiee* next_ = nullptr;
};

/// The observers of one entity, in the order in which they registered.
///
/// Ownership. The list holds no references: an observer leaves it before it dies. A delivery holds
/// a reference to every observer that it has not told yet.
///
/// Delivery. The observers that are on the list when a delivery starts are told, in order. One that
/// joins meanwhile is not told. One that leaves meanwhile still is, unless only the delivery holds
/// it any more. An exception that leaves an observer's handler is reported to that observer alone.
///
/// Re-entrancy. Handlers may change the list and start deliveries of their own. The caller holds a
/// reference to the entity, so that the list outlives the delivery.
///
/// Memory. To join and to leave takes none. A delivery to more than a few observers does; when
/// there is none it ends the process, because the change that it tells of has been made.
class ObserverList {
 public:
  ObserverList() = default;
  ObserverList(ObserverList const&) = delete;
  ObserverList& operator=(ObserverList const&) = delete;

  std::size_t count() const noexcept { return count_; }
  /// Changes whenever an observer joins or leaves.
  std::uint32_t version() const noexcept { return version_; }

  /// Adds the observer at the tail. It must not be on a list.
  void append(ListedNotifiee const& observer) noexcept {
    auto* const added = const_cast<ListedNotifiee*>(&observer);
    (tail_ == nullptr ? head_ : tail_->next_) = added;
    tail_ = added;
    ++count_;
    ++version_;
  }

  /// The observer must be on this list.
  void remove(ListedNotifiee const& observer) noexcept {
    ListedNotifiee* before = nullptr;
    for (ListedNotifiee* one = head_; one != &observer; one = one->next_) before = one;
    (before == nullptr ? head_ : before->next_) = observer.next_;
    if (tail_ == &observer) tail_ = before;
    observer.next_ = nullptr;
    --count_;
    ++version_;
  }

  /// Takes every observer off the list; none of them counts as registered afterwards.
  void clear() noexcept {
    while (head_ != nullptr) {
      head_->registered_ = false;
      remove(*head_);
    }
  }

  /// Calls `tellOne(observer)` for each observer, to tell it of `attribute`.
  template <class TellOne>
  void tell(Mox::AttributeId attribute, TellOne const& tellOne) const noexcept {
    if (head_ == nullptr) return;
    alignas(Observer) std::byte few[8 * sizeof(Observer)];
    std::unique_ptr<std::byte[]> many;
    std::size_t const bytes = count_ * sizeof(Observer);
    if (bytes > sizeof few) many = memory(bytes);
    auto* const snapshot = reinterpret_cast<Observer*>(many ? many.get() : few);
    Observer* end = snapshot;
    for (ListedNotifiee* one = head_; one != nullptr; one = one->next_) new (end++) Observer(one);
    for (Observer* observer = snapshot; observer != end; ++observer) {
      bool const released = observer != snapshot && (*observer)->references() == 1;
      if (!released) contain(**observer, attribute, tellOne);
      observer->~Observer();
    }
  }

 private:
  using Observer = Mox::Ptr<ListedNotifiee>;

  static std::unique_ptr<std::byte[]> memory(std::size_t bytes) noexcept {
    std::unique_ptr<std::byte[]> got(new (std::nothrow) std::byte[bytes]);
    if (!got) {
      endProcess("KestSliceDma: no memory to tell the observers of an entity what has changed");
    }
    return got;
  }

  template <class TellOne>
  static void contain(ListedNotifiee& observer, Mox::AttributeId attribute,
                      TellOne const& tellOne) noexcept {
    try {
      Mox::ExpectationScope const scope;
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

  ListedNotifiee* head_ = nullptr;
  ListedNotifiee* tail_ = nullptr;
  std::size_t count_ = 0;
  std::uint32_t version_ = 0;
};

}  // namespace Hardware::Kest::Slice::detail
