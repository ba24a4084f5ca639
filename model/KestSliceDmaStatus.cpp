#include "model/KestSliceDmaStatus.h"

#include <utility>

namespace Hardware::Kest::Slice {

template class SliceEntity<KestSliceDmaStatus, StatusTraits>;

KestSliceDmaStatus::KestSliceDmaStatus(Mox::Name name) noexcept : SliceEntity(std::move(name)) {}

KestSliceDmaStatus::~KestSliceDmaStatus() = default;

Mox::MoxType const* KestSliceDmaStatus::fwkType() const {
  return _fwkType();
}

KestSliceDmaStatus::NotifieeConst::~NotifieeConst() = default;

KestSliceDmaStatus::Notifiee::~Notifiee() = default;

}  // namespace Hardware::Kest::Slice
