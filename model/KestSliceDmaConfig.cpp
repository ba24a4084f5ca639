#include "model/KestSliceDmaConfig.h"

#include <utility>

namespace Hardware::Kest::Slice {

template class SliceEntity<KestSliceDmaConfig, ConfigTraits>;

KestSliceDmaConfig::KestSliceDmaConfig(Mox::Name name) noexcept : SliceEntity(std::move(name)) {}

KestSliceDmaConfig::~KestSliceDmaConfig() = default;

Mox::MoxType const* KestSliceDmaConfig::fwkType() const {
  return _fwkType();
}

Mox::String8 KestSliceDmaConfig::attributeString(Mox::AttributeId id) const {
  return id == sliceIdAttributeId ? sliceIdName : SliceEntity::attributeString(id);
}

void KestSliceDmaConfig::sliceIdIs(Mox::String8 sliceId) {
  if (sliceId == sliceId_) return;
  sliceId_ = std::move(sliceId);
  changeCountInc();
  deliver(sliceIdAttributeId, [](NotifieeConst& observer) { observer.onSliceId(); });
}

KestSliceDmaConfig::NotifieeConst::~NotifieeConst() = default;

KestSliceDmaConfig::Notifiee::~Notifiee() = default;

}  // namespace Hardware::Kest::Slice
