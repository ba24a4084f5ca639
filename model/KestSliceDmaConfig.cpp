#include "model/KestSliceDmaConfig.h"

#include <utility>

namespace Hardware::Kest::Slice {

template class SliceEntity<KestSliceDmaConfig, ConfigTraits>;

KestSliceDmaConfig::_Type::_Type() : MoxType("Hardware::Kest::Slice::KestSliceDmaConfig") {}

Mox::Ptr<KestSliceDmaConfig> KestSliceDmaConfig::_Type::newEntity(Mox::Name const& name,
                                                                  Mox::Dir*) {
  return new KestSliceDmaConfig(name);
}

KestSliceDmaConfig::KestSliceDmaConfig(Mox::Name name) noexcept : SliceEntity(std::move(name)) {}

KestSliceDmaConfig::~KestSliceDmaConfig() = default;

Mox::MoxType const* KestSliceDmaConfig::_fwkType() {
  static _Type const type;
  return &type;
}

Mox::MoxType const* KestSliceDmaConfig::fwkType() const {
  return _fwkType();
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
