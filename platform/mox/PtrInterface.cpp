#include "platform/mox/PtrInterface.h"

namespace Mox {

std::atomic<bool> detail::ReferenceCount::threadSafe_{false};

PtrInterface::~PtrInterface() = default;

void PtrInterface::hasNotificationActiveIs(bool active) {
  flagIs(notificationActive, active);
}

unsigned PtrInterface::moxAuditErrors(unsigned) const {
  return references() < notifierReferences() ? 1 : 0;
}

unsigned PtrInterface::auditErrors(unsigned) const {
  return 0;
}

void PtrInterface::zeroReferencesIs(bool) {}

MoxType const* PtrInterface::fwkType() const {
  return nullptr;
}

void PtrInterface::referenceDel() const noexcept {
  // Read first: once this reference is gone, another thread may destroy the object.
  std::uint32_t const observers = notifierReferences_.value();
  std::uint32_t const left = references_.dec();
  if (left == 0) {
    delete this;
  } else if (left == observers) {
    tellZeroReferences();
  }
}

void PtrInterface::notifierReferenceNew() const noexcept {
  references_.inc();
  notifierReferences_.inc();
}

void PtrInterface::notifierReferenceDel() const noexcept {
  notifierReferences_.dec();
  if (references_.dec() == 0) delete this;
}

void PtrInterface::tellZeroReferences() const noexcept {
  if (flag(tellingZero)) return;
  flagIs(tellingZero, true);
  notifierReferenceNew();  // observers may let go of the object while they are told
  const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
  flagIs(tellingZero, false);
  notifierReferenceDel();
}

}  // namespace Mox
