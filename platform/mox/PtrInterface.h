#pragma once

#include <atomic>
#include <cstdint>

#include "platform/mox/Export.h"

namespace Mox {

class MoxType;

/// Number of an attribute within its type; fixed, part of the interface.
using AttributeId = std::uint32_t;

namespace detail {

/// A reference count that is atomic only while the thread-safe pointer switch is on
/// (`PtrInterface::threadSafePtrIs`); otherwise a plain increment.
class MOX_API ReferenceCount {
 public:
  explicit ReferenceCount(std::uint32_t initial) noexcept : count_(initial) {}

  std::uint32_t value() const noexcept { return count_.load(std::memory_order_relaxed); }

  void inc() noexcept {
    if (threadSafe_.load(std::memory_order_relaxed)) {
      count_.fetch_add(1, std::memory_order_relaxed);
    } else {
      count_.store(value() + 1, std::memory_order_relaxed);
    }
  }

  /// Returns the count that is left.
  std::uint32_t dec() noexcept {
    if (threadSafe_.load(std::memory_order_relaxed)) {
      return count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
    std::uint32_t const left = value() - 1;
    count_.store(left, std::memory_order_relaxed);
    return left;
  }

  static bool threadSafe() noexcept { return threadSafe_.load(std::memory_order_relaxed); }
  static void threadSafeIs(bool on) noexcept { threadSafe_.store(on, std::memory_order_relaxed); }

 private:
  std::atomic<std::uint32_t> count_;
  static std::atomic<bool> threadSafe_;
};

}  // namespace detail

/// Base of every framework object: intrusive reference counting and the flag word.
///
/// Ownership. An object is made with `new`, held through `Ptr` and destroys itself when its last
/// reference goes; it never lives on the stack. It keeps two counts: all references, and those
/// among them that observers hold on their notifier. When an ordinary reference goes and only the
/// observers' are left, the object is told through `zeroReferencesIs(true)`; it lives on until
/// they go too. It is told again if it was referenced from outside once more in the meantime, but
/// never while it is being told.
///
/// Threads. Counts are atomic only while `threadSafePtrIs(true)`; nothing else here is.
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

  std::uint32_t references() const noexcept { return references_.value(); }
  std::uint32_t notifierReferences() const noexcept { return notifierReferences_.value(); }
  void referenceNew() const noexcept { references_.inc(); }
  void referenceDel() const noexcept;
  void notifierReferenceNew() const noexcept;
  void notifierReferenceDel() const noexcept;

  /// The thread-safe pointer switch. Set it while a single thread runs.
  static bool threadSafePtr() noexcept { return detail::ReferenceCount::threadSafe(); }
  static void threadSafePtrIs(bool on) noexcept { detail::ReferenceCount::threadSafeIs(on); }

 protected:
  PtrInterface() = default;

 private:
  enum Flag : std::uint32_t { notificationActive = 1, markedForDeletion = 2, tellingZero = 4 };

  bool flag(Flag f) const noexcept { return (flags_ & f) != 0; }
  void flagIs(Flag f, bool on) const noexcept { flags_ = on ? flags_ | f : flags_ & ~f; }
  void tellZeroReferences() const noexcept;

  mutable detail::ReferenceCount references_{0};
  mutable detail::ReferenceCount notifierReferences_{0};
  mutable std::uint32_t flags_ = 0;
};

}  // namespace Mox
