#include "platform/mox/PtrInterface.h"

namespace Mox {

std::atomic<bool> detail::ThreadSafePtr::on{false};

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
  Counts const left = counts_.become([](Counts counts) {
    Counts const others = counts - outside;
    bool const onlyObservers = others != 0 && all(others) == ofObservers(others);
    // An observer's in its place keeps the object until it is told: others may let go meanwhile.
    return onlyObservers ? others + observers : others;
  });
  if (left == 0) {
    delete this;
  } else if (all(left) == ofObservers(left)) {
    tellZeroReferences();
    notifierReferenceDel();
  }
}

void PtrInterface::notifierReferenceNew() const noexcept {
  counts_.add(observers);
}

void PtrInterface::notifierReferenceDel() const noexcept {
  if (counts_.sub(observers) == 0) delete this;
}

void PtrInterface::tellZeroReferences() const noexcept {
  if (flag(tellingZero)) return;
  flagIs(tellingZero, true);
  const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
  flagIs(tellingZero, false);
}

}  // namespace Mox
