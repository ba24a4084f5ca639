#include "registry/DeviceStateType.h"

#include <vector>

namespace Hardware::Kest::Slice {

namespace {

std::vector<Mox::String8> stateNames() {
  std::vector<Mox::String8> all;
  for (DeviceState const state : deviceStates) all.push_back(stringValue(state));
  return all;
}

}  // namespace

Mox::MoxType const* deviceStateType() {
  static Mox::EnumType<DeviceState> const type("Hardware::Kest::Slice::DeviceState", stateNames());
  return &type;
}

}  // namespace Hardware::Kest::Slice
