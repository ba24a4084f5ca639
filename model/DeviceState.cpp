#include "model/DeviceState.h"

#include <ostream>

namespace Hardware::Kest::Slice {

namespace {

constexpr char const* typeName = "DeviceState";
constexpr char const* names[] = {"deviceStateUnknown", "deviceStateUp", "deviceStateDown"};

}  // namespace

Mox::String8 stringValue(DeviceState value) {
  auto const number = static_cast<std::int32_t>(value);
  if (number >= 0 && static_cast<std::size_t>(number) < std::size(names)) return names[number];
  return Mox::format("%s(%d)", typeName, number);
}

DeviceState DeviceStateInstance(unsigned int number) {
  if (number >= std::size(names)) Mox::throwRangeException(typeName);
  return static_cast<DeviceState>(number);
}

DeviceState DeviceStateInstance(Mox::String8 const& name) {
  for (unsigned number = 0; number < std::size(names); ++number) {
    if (name == names[number]) return DeviceStateInstance(number);
  }
  Mox::throwRangeException(typeName);
}

Mox::String8 valueToStrep(DeviceState const& value) {
  return Mox::valueToStrep(stringValue(value));
}

DeviceState sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                            DeviceState*) {
  Mox::needString(it, end, " ");
  Mox::String8::IteratorConst const start = it;
  Mox::String8 const name = Mox::sequenceToValue(it, end, static_cast<Mox::String8*>(nullptr));
  try {
    return DeviceStateInstance(name);
  } catch (Mox::RangeException const&) {
    it = start;  // the name as a whole is refused
    throw;
  }
}

std::ostream& operator<<(std::ostream& out, DeviceState const& value) {
  return out << stringValue(value);
}

}  // namespace Hardware::Kest::Slice
