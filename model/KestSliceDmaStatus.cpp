#include "model/KestSliceDmaStatus.h"

#include <ostream>
#include <utility>

#include "model/detail/RecordText.h"

namespace Hardware::Kest::Slice {

KestSliceDmaStatus::SwitchPort::SwitchPort(Mox::String8::IteratorConst& it,
                                           Mox::String8::IteratorConst const& end) {
  detail::readRecord<SwitchPort>(fields_, it, end);
}

KestSliceDmaStatus::Device::Device(Mox::String8::IteratorConst& it,
                                   Mox::String8::IteratorConst const& end) {
  detail::readRecord<Device>(fields_, it, end);
}

Mox::String8 valueToStrep(KestSliceDmaStatus::SwitchPort const& record) {
  return detail::recordToStrep(record);
}

Mox::String8 valueToStrep(KestSliceDmaStatus::Device const& record) {
  return detail::recordToStrep(record);
}

std::ostream& operator<<(std::ostream& out, KestSliceDmaStatus::SwitchPort const& record) {
  return out << valueToStrep(record);
}

std::ostream& operator<<(std::ostream& out, KestSliceDmaStatus::Device const& record) {
  return out << valueToStrep(record);
}

KestSliceDmaStatus::KestSliceDmaStatus(Mox::Name name) noexcept : ObservedEntity(std::move(name)) {}

KestSliceDmaStatus::~KestSliceDmaStatus() {
  observers().clear();
}

Mox::MoxType const* KestSliceDmaStatus::fwkType() const {
  return _fwkType();
}

KestSliceDmaStatus::NotifieeConst::~NotifieeConst() = default;

KestSliceDmaStatus::Notifiee::~Notifiee() = default;

}  // namespace Hardware::Kest::Slice
