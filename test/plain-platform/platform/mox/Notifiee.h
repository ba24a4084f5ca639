#pragma once

#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Mox {

class NotifieeConst : public PtrInterface {
 public:
  // In this order.
  virtual void isRegisteredNotifieeIs(bool registered) const = 0;
  virtual String8 name() const = 0;
  virtual void notifierIs(Ptr<PtrInterface const> const& notifier) {
    if (notifier) notifier->notifierReferenceNew();
    PtrInterface const* const old = notifier_;
    notifier_ = notifier.ptr();
    if (old != nullptr) old->notifierReferenceDel();
  }
  virtual void onNotificationException(AttributeId) {}
  virtual void onZeroReferences() {}

  ~NotifieeConst() override {
    if (notifier_ != nullptr) notifier_->notifierReferenceDel();
  }

 protected:
  PtrInterface const* rawNotifier() const { return notifier_; }
  template <class T>
  Ptr<T const> lentNotifier() const {
    if (notifier_ != nullptr) notifier_->notifierReferenceLent();
    return static_cast<T const*>(notifier_);
  }

 private:
  PtrInterface const* notifier_ = nullptr;
};

class ExpectationScope {
 public:
  ExpectationScope() { ++depth_; }
  ~ExpectationScope() { --depth_; }
  ExpectationScope(ExpectationScope const&) = delete;
  ExpectationScope& operator=(ExpectationScope const&) = delete;

  static unsigned depth() { return depth_; }

 private:
  static inline unsigned depth_ = 0;
};

}  // namespace Mox
