#include "platform/mox/Notifiee.h"

#include <utility>

namespace Mox {

unsigned ExpectationScope::depth_ = 0;

NotifieeConst::~NotifieeConst() {
  if (notifier_ != nullptr) notifier_->notifierReferenceDel();
}

void NotifieeConst::notifierIs(Ptr<PtrInterface const> const& notifier) {
  if (notifier) notifier->notifierReferenceNew();
  PtrInterface const* const old = std::exchange(notifier_, notifier.ptr());
  if (old != nullptr) old->notifierReferenceDel();
}

void NotifieeConst::onNotificationException(AttributeId) {}

void NotifieeConst::onZeroReferences() {}

}  // namespace Mox
