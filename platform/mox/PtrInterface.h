#pragma once

#include <atomic>
#include <cstdint>

#include "platform/mox/Export.h"

namespace Mox {

class MoxType;

/// Number of an attribute within its type; fixed, part of the interface.
using AttributeId = std::uint32_t;

namespace detail {

/// The thread-safe pointer switch (`PtrInterface::threadSafePtrIs`), one for all libraries.
struct MOX_API ThreadSafePtr {
  static std::atomic<bool> on;
};

/// A count that is atomic only while the thread-safe pointer switch is on; otherwise plain. After
/// an atomic `become` or `sub` a thread sees all that other threads did before theirs.
template <class Count>
class ReferenceCount {
 public:
  explicit ReferenceCount(Count initial) noexcept : count_(initial) {}

  Count value() const noexcept { return count_.load(std::memory_order_relaxed); }

  MOX_INLINE void add(Count more) noexcept {
    if (ThreadSafePtr::on.load(std::memory_order_relaxed)) [[unlikely]] {
      count_.fetch_add(more, std::memory_order_relaxed);
    } else {
      count_.store(value() + more, std::memory_order_relaxed);
    }
  }

  /// `next(count)` takes the place of the count and is returned.
  template <class Next>
  MOX_INLINE Count become(Next next) noexcept {
    Count count = value();
    if (ThreadSafePtr::on.load(std::memory_order_relaxed)) [[unlikely]] {
      while (!count_.compare_exchange_weak(count, next(count), std::memory_order_acq_rel,
                                           std::memory_order_relaxed)) {
      }
    } else {
      count_.store(next(count), std::memory_order_relaxed);
    }
    return next(count);
  }

  /// Returns the count that is left.
  MOX_INLINE Count sub(Count less) noexcept {
    return become([less](Count count) { return count - less; });
  }

 private:
  std::atomic<Count> count_;
};

}  // namespace detail

/// Base of every framework object: intrusive reference counting and the flag word.
///
/// Ownership. An object is made with `new`, held through `Ptr` and destroys itself when its last
/// reference goes; it never lives on the stack. It keeps two counts: all references, and those
/// among them that observers hold on their notifier. When an ordinary reference goes and only the
/// observers' are left, the object is told through `zeroReferencesIs(true)`; it lives on until
/// they go too. It is told again if it was referenced from outside once more in the meantime, but
/// never while it is being told, and not because of what an observer lent
/// (`notifierReferenceLent`). There are at most 268,435,455 references to an object.
///
/// Threads. Counts are atomic only while `threadSafePtrIs(true)`; nothing else here is. Threads may
/// then take and drop references to one object, observers' among them: it is told in the thread
/// that drops the last ordinary one, and destroyed in the thread that drops the last of all.
class MOX_API PtrInterface {
 public:
  PtrInterface(PtrInterface const&) = delete;
  PtrInterface& operator=(PtrInterface const&) = delete;

  // The order of these virtual operations is part of the binary interface.

  /// Sets the notification-active flag. Overriders forward it or (un)register themselves.
  virtual void hasNotificationActiveIs(bool active);
  /// Counts what is wrong with the framework's part of the object: 0 when it is sound.
  virtual unsigned moxAuditErrors(unsigned level) const;
  /// Counts what is wrong with the object's own part: 0 when it is sound.
  virtual unsigned auditErrors(unsigned level) const;
  /// Called with true when only observers still hold the object.
  virtual void zeroReferencesIs(bool zero);
  /// The object's type, or null for an object of no named type (an entry, a reactor).
  virtual MoxType const* fwkType() const;
  virtual ~PtrInterface();

  bool hasNotificationActive() const noexcept { return flag(notificationActive); }
  /// An object marked for deletion (a zombie) takes no part in notification any more.
  bool moxMarkedForDeletion() const noexcept { return flag(markedForDeletion); }
  void moxMarkedForDeletionIs(bool marked) noexcept { flagIs(markedForDeletion, marked); }

  std::uint32_t references() const noexcept { return all(counts_.value()); }
  std::uint32_t notifierReferences() const noexcept { return ofObservers(counts_.value()); }
  MOX_INLINE void referenceNew() const noexcept { counts_.add(outside); }
  MOX_INLINE void referenceDel() const noexcept {
    Counts const left = counts_.become(lessOutside);
    if (!isHeldOutside(left)) [[unlikely]]
      outsideIsGone(left);
  }
  void notifierReferenceNew() const noexcept;
  void notifierReferenceDel() const noexcept;
  /// Called before an observer hands out an ordinary reference to its notifier. If only observers
  /// hold the object, nobody is told when that reference and its copies have gone: looking at a
  /// notifier is not using it from outside.
  void notifierReferenceLent() const noexcept {
    if (!isHeldOutside(counts_.value())) flagIs(lent, true);
  }

  /// The thread-safe pointer switch. Set it while a single thread runs.
  static void threadSafePtrIs(bool on) noexcept {
    detail::ThreadSafePtr::on.store(on, std::memory_order_relaxed);
  }

 protected:
  PtrInterface() = default;

 private:
  /// Both counts and the flags in one word, so that no thread sees one of them without the others,
  /// and an object is small: all references in the low bits, observers' above, flags on top.
  using Counts = std::uint64_t;
  static constexpr unsigned countBits = 28;
  static constexpr Counts outside = 1;  // what one reference adds
  static constexpr Counts observers = (Counts{1} << countBits) + outside;
  static std::uint32_t all(Counts counts) noexcept {
    return static_cast<std::uint32_t>(counts & ((Counts{1} << countBits) - 1));
  }
  static std::uint32_t ofObservers(Counts counts) noexcept { return all(counts >> countBits); }
  static bool isHeldOutside(Counts counts) noexcept {
    return all(counts ^ (counts >> countBits)) != 0;
  }

  enum Flag : Counts {
    notificationActive = Counts{1} << 2 * countBits,
    markedForDeletion = notificationActive << 1,
    tellingZero = markedForDeletion << 1,
    lent = tellingZero << 1
  };

  bool flag(Flag f) const noexcept { return (counts_.value() & f) != 0; }
  void flagIs(Flag f, bool on) const noexcept {
    counts_.become([=](Counts counts) { return on ? counts | f : counts & ~Counts{f}; });
  }

  /// What is left without one ordinary reference. When only observers' are left, one more of those
  /// takes its place and keeps the object until it is told: others may let go meanwhile.
  static Counts lessOutside(Counts counts) noexcept {
    Counts const others = counts - outside;
    if (isHeldOutside(others)) [[likely]]
      return others;
    return all(others) == 0 ? others : others + observers;
  }
  void outsideIsGone(Counts left) const noexcept;
  void tellZeroReferences() const noexcept;

  mutable detail::ReferenceCount<Counts> counts_{0};
};

}  // namespace Mox
