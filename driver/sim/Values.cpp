#include "driver/sim/Values.h"

#include <ostream>
#include <utility>

#include "platform/mox/Strep.h"

namespace Hardware::Kest::Sim {

namespace {

/// As in "destId 7, shadowIntfId -1".
template <class Param>
std::ostream& streamMembers(std::ostream& out, Param const& param) {
  char const* separator = "";
  forMembers(param, [&]<class Member>(char const* name, Member const& member) {
    out << std::exchange(separator, ", ") << name << ' ';
    if constexpr (std::same_as<Member, bool> || std::same_as<Member, Mox::String8>) {
      out << Mox::valueToStrep(member);
    } else {
      out << member;
    }
  });
  return out;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, InterfaceParam const& param) {
  return streamMembers(out, param);
}

std::ostream& operator<<(std::ostream& out, Interface const& interface) {
  out << interface.param << ", nativeVlan ";
  if (interface.nativeVlan == Interface::noVlan) return out << "none";
  return out << interface.nativeVlan << ", mode " << Mox::valueToStrep(interface.mode);
}

std::ostream& operator<<(std::ostream& out, DeviceParam const& param) {
  return streamMembers(out, param);
}

std::ostream& operator<<(std::ostream& out, Device const& device) {
  out << Mox::valueToStrep(device.name) << ", " << (device.up ? "up" : "down") << ", flips "
      << device.flips;
  return device.param ? out << ", " << *device.param : out << ", not registered";
}

}  // namespace Hardware::Kest::Sim
