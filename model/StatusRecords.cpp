#include "model/StatusRecords.h"

#include <ostream>

#include "model/detail/RecordText.h"

namespace Hardware::Kest::Slice {

StatusSwitchPort::StatusSwitchPort(Mox::String8::IteratorConst& it,
                                   Mox::String8::IteratorConst const& end) {
  detail::readRecord<StatusSwitchPort>(fields_, it, end);
}

Mox::String8 valueToStrep(StatusSwitchPort const& record) {
  return detail::recordToStrep(record);
}

std::ostream& operator<<(std::ostream& out, StatusSwitchPort const& record) {
  return out << valueToStrep(record);
}

StatusDevice::StatusDevice(Mox::String8::IteratorConst& it,
                           Mox::String8::IteratorConst const& end) {
  detail::readRecord<StatusDevice>(fields_, it, end);
}

Mox::String8 valueToStrep(StatusDevice const& record) {
  return detail::recordToStrep(record);
}

std::ostream& operator<<(std::ostream& out, StatusDevice const& record) {
  return out << valueToStrep(record);
}

}  // namespace Hardware::Kest::Slice
