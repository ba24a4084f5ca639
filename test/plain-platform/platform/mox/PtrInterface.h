#pragma once

#include <cstdint>

#include "platform/mox/Export.h"

namespace Mox {

class MoxType;

using AttributeId = std::uint32_t;

/// Base of every framework object: two counts and the flags, each a member of its own. For one
/// thread: the thread-safe pointer switch is remembered and changes nothing.
class PtrInterface {
 public:
  PtrInterface(PtrInterface const&) = delete;
  PtrInterface& operator=(PtrInterface const&) = delete;

  // In this order.
  virtual void hasNotificationActiveIs(bool active) { notificationActive_ = active; }
  virtual unsigned moxAuditErrors(unsigned) const { return 0; }
  virtual unsigned auditErrors(unsigned) const { return 0; }
  virtual void zeroReferencesIs(bool) {}
  virtual MoxType const* fwkType() const { return nullptr; }
  virtual ~PtrInterface() = default;

  bool hasNotificationActive() const noexcept { return notificationActive_; }
  bool moxMarkedForDeletion() const noexcept { return markedForDeletion_; }
  void moxMarkedForDeletionIs(bool marked) noexcept { markedForDeletion_ = marked; }

  /// All references, and those among them that observers hold on their notifier.
  std::uint32_t references() const noexcept { return references_; }
  std::uint32_t notifierReferences() const noexcept { return notifierReferences_; }

  void referenceNew() const noexcept { ++references_; }
  void referenceDel() const noexcept {
    --references_;
    if (references_ == 0) {
      delete this;
    } else if (references_ == notifierReferences_) {
      tellThatOnlyObserversAreLeft();
    }
  }
  void notifierReferenceNew() const noexcept {
    ++references_;
    ++notifierReferences_;
  }
  void notifierReferenceDel() const noexcept {
    --references_;
    --notifierReferences_;
    if (references_ == 0) delete this;
  }
  /// Before a reference that an observer lends of its notifier: its end tells nobody.
  void notifierReferenceLent() const noexcept {
    if (references_ == notifierReferences_) lent_ = true;
  }

  static void threadSafePtrIs(bool on) noexcept { threadSafePtr_ = on; }

 protected:
  PtrInterface() = default;

 private:
  void tellThatOnlyObserversAreLeft() const noexcept {
    bool const toTell = !lent_ && !telling_;
    lent_ = false;
    if (!toTell) return;
    notifierReferenceNew();  // keeps the object while it is told
    telling_ = true;
    const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
    telling_ = false;
    notifierReferenceDel();
  }

  std::uint32_t mutable references_ = 0;
  std::uint32_t mutable notifierReferences_ = 0;
  bool mutable lent_ = false;
  bool mutable telling_ = false;
  bool notificationActive_ = false;
  bool markedForDeletion_ = false;
  static inline bool threadSafePtr_ = false;
};

}  // namespace Mox
