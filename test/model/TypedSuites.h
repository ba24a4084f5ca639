#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "test/model/Collections.h"

/// For suites that are typed by entity or by collection.
namespace Hardware::Kest::Slice {

/// Every collection of both entities.
using AllCollections =
    testing::Types<SwitchPortOf<KestSliceDmaConfig>, NativeVlanOf<KestSliceDmaConfig>,
                   SwitchportModeOf<KestSliceDmaConfig>, DeviceOf<KestSliceDmaConfig>,
                   DeviceStateOf<KestSliceDmaConfig>, SwitchPortOf<KestSliceDmaStatus>,
                   NativeVlanOf<KestSliceDmaStatus>, SwitchportModeOf<KestSliceDmaStatus>,
                   DeviceOf<KestSliceDmaStatus>, DeviceStateOf<KestSliceDmaStatus>>;

using BothEntities = testing::Types<KestSliceDmaConfig, KestSliceDmaStatus>;

/// What the types are called.
struct EntityNames {
  template <class E>
  static std::string GetName(int) {
    return std::is_same_v<E, KestSliceDmaConfig> ? "Config" : "Status";
  }
};
struct CollectionNames {
  template <class C>
  static std::string GetName(int) {
    return EntityNames::GetName<typename C::Entity>(0) + (C::handler + 2);
  }
};

}  // namespace Hardware::Kest::Slice
