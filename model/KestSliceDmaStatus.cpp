#include "model/KestSliceDmaStatus.h"

#include <utility>

namespace Hardware::Kest::Slice {

template class SliceEntity<KestSliceDmaStatus, StatusTraits>;

KestSliceDmaStatus::_Type::_Type() : MoxType("Hardware::Kest::Slice::KestSliceDmaStatus") {}

Mox::Ptr<KestSliceDmaStatus> KestSliceDmaStatus::_Type::newEntity(Mox::Name const& name,
                                                                  Mox::Dir*) {
  return new KestSliceDmaStatus(name);
}

KestSliceDmaStatus::KestSliceDmaStatus(Mox::Name name) noexcept : SliceEntity(std::move(name)) {}

KestSliceDmaStatus::~KestSliceDmaStatus() = default;

Mox::MoxType const* KestSliceDmaStatus::_fwkType() {
  static _Type const type;
  return &type;
}

Mox::MoxType const* KestSliceDmaStatus::fwkType() const {
  return _fwkType();
}

KestSliceDmaStatus::NotifieeConst::~NotifieeConst() = default;

KestSliceDmaStatus::Notifiee::~Notifiee() = default;

}  // namespace Hardware::Kest::Slice
