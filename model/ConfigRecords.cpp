#include "model/ConfigRecords.h"

#include <ostream>

#include "model/detail/RecordText.h"

namespace Hardware::Kest::Slice {

ConfigSwitchPort::ConfigSwitchPort(Mox::String8::IteratorConst& it,
                                   Mox::String8::IteratorConst const& end) {
  detail::readRecord<ConfigSwitchPort>(fields_, it, end);
}

Mox::String8 valueToStrep(ConfigSwitchPort const& record) {
  return detail::recordToStrep(record);
}

std::ostream& operator<<(std::ostream& out, ConfigSwitchPort const& record) {
  return out << valueToStrep(record);
}

ConfigDevice::ConfigDevice(Mox::String8::IteratorConst& it,
                           Mox::String8::IteratorConst const& end) {
  detail::readRecord<ConfigDevice>(fields_, it, end);
  rangeCheck();
}

void ConfigDevice::rangeCheck() const {
  if (fields_.numFaps - 1 > 2) {
    Mox::throwRangeException("Device::numFaps < 1 or > 3 not allowed");
  }
}

Mox::String8 valueToStrep(ConfigDevice const& record) {
  return detail::recordToStrep(record);
}

std::ostream& operator<<(std::ostream& out, ConfigDevice const& record) {
  return out << valueToStrep(record);
}

}  // namespace Hardware::Kest::Slice
