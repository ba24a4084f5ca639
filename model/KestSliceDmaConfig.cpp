#include "model/KestSliceDmaConfig.h"

#include <ostream>
#include <utility>

#include "model/detail/RecordText.h"

namespace Hardware::Kest::Slice {

KestSliceDmaConfig::SwitchPort::SwitchPort(Mox::String8::IteratorConst& it,
                                           Mox::String8::IteratorConst const& end) {
  detail::readRecord<SwitchPort>(fields_, it, end);
}

KestSliceDmaConfig::Device::Device(Mox::String8::IteratorConst& it,
                                   Mox::String8::IteratorConst const& end) {
  detail::readRecord<Device>(fields_, it, end);
  rangeCheck();
}

void KestSliceDmaConfig::Device::rangeCheck() const {
  if (fields_.numFaps - 1 > 2) {
    Mox::throwRangeException("Device::numFaps < 1 or > 3 not allowed");
  }
}

Mox::String8 valueToStrep(KestSliceDmaConfig::SwitchPort const& record) {
  return detail::recordToStrep(record);
}

Mox::String8 valueToStrep(KestSliceDmaConfig::Device const& record) {
  return detail::recordToStrep(record);
}

std::ostream& operator<<(std::ostream& out, KestSliceDmaConfig::SwitchPort const& record) {
  return out << valueToStrep(record);
}

std::ostream& operator<<(std::ostream& out, KestSliceDmaConfig::Device const& record) {
  return out << valueToStrep(record);
}

KestSliceDmaConfig::KestSliceDmaConfig(Mox::Name name) noexcept : ObservedEntity(std::move(name)) {}

KestSliceDmaConfig::~KestSliceDmaConfig() {
  observers().clear();
}

Mox::MoxType const* KestSliceDmaConfig::fwkType() const {
  return _fwkType();
}

void KestSliceDmaConfig::sliceIdIs(Mox::String8 sliceId) {
  if (sliceId == sliceId_) return;
  sliceId_ = std::move(sliceId);
  changeCountInc();
  observers().tell(sliceIdAttributeId, [](detail::ListedNotifiee& observer) {
    static_cast<NotifieeConst&>(observer).onSliceId();
  });
}

KestSliceDmaConfig::NotifieeConst::~NotifieeConst() = default;

KestSliceDmaConfig::Notifiee::~Notifiee() = default;

}  // namespace Hardware::Kest::Slice
