#pragma once

#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Mox {

/// Base of every observer. It holds a reference to the object that it observes (its notifier),
/// counted there as an observer's; whether and how it is registered with that object is up to the
/// derived observer bases.
class MOX_API NotifieeConst : public PtrInterface {
 public:
  // The order of these virtual operations is part of the binary interface.

  /// Joins (true) or leaves (false) the notifier's observers.
  virtual void isRegisteredNotifieeIs(bool registered) const = 0;
  /// What the observer watches, for diagnostics; empty without a notifier.
  virtual String8 name() const = 0;
  /// Records the new notifier; null lets go of the old one.
  virtual void notifierIs(Ptr<PtrInterface const> const& notifier);
  /// One of this observer's handlers let an exception out while it was told of `attribute`.
  virtual void onNotificationException(AttributeId attribute);
  /// Only observers still hold the notifier.
  virtual void onZeroReferences();

  ~NotifieeConst() override;

 protected:
  NotifieeConst() = default;
  PtrInterface const* rawNotifier() const noexcept { return notifier_; }
  /// A reference to the notifier, a `T`, or null. To take and drop it tells nobody.
  template <class T>
  Ptr<T const> lentNotifier() const noexcept {
    if (notifier_ != nullptr) notifier_->notifierReferenceLent();
    return static_cast<T const*>(notifier_);
  }

 private:
  PtrInterface const* notifier_ = nullptr;
};

/// Marks one call of an observer's handler: open while the handler runs, however it ends.
class MOX_API ExpectationScope {
 public:
  ExpectationScope() noexcept { ++depth_; }
  ~ExpectationScope() { --depth_; }
  ExpectationScope(ExpectationScope const&) = delete;
  ExpectationScope& operator=(ExpectationScope const&) = delete;

  /// How many scopes are open: 0 outside notifications, more than 1 in nested ones.
  static unsigned depth() noexcept { return depth_; }

 private:
  static unsigned depth_;
};

}  // namespace Mox
