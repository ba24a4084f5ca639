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

void PtrInterface::outsideIsGone(Counts left) const noexcept {
  if (all(left) == 0) {
    delete this;
  } else {
    if (flag(lent)) {
      flagIs(lent, false);
    } else {
      tellZeroReferences();
    }
    notifierReferenceDel();
  }
}

void PtrInterface::notifierReferenceNew() const noexcept {
  counts_.add(observers);
}

void PtrInterface::notifierReferenceDel() const noexcept {
  if (all(counts_.sub(observers)) == 0) delete this;
}

void PtrInterface::tellZeroReferences() const noexcept {
  if (flag(tellingZero)) return;
  flagIs(tellingZero, true);
  const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
  flagIs(tellingZero, false);
}

}  // namespace Mox
