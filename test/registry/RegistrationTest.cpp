#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "platform/mox/IntrospectionReactor.h"
#include "registry/DeviceStateType.h"
#include "registry/EntityTypes.h"
#include "registry/RecordTypes.h"
#include "registry/Registration.h"
#include "registry/SmType.h"
#include "test/model/RecordNames.h"
#include "test/registry/RegistryText.h"
#include "test/support/Refusal.h"

namespace Hardware::Kest::Slice {
namespace {

using ::Test::refusal;

/// The file but for its comment, which ends with the first empty line.
std::string golden() {
  std::ifstream file(KEST_REGISTRY_GOLDEN);
  std::stringstream text;
  for (std::string line; std::getline(file, line) && !line.empty();) EXPECT_EQ(line[0], '#');
  text << file.rdbuf();
  return text.str();
}

TEST(Registration, IsWhatTheGoldenFileSays) {
  EXPECT_EQ(Mox::registryText(Mox::IntrospectionReactor::global(), "Hardware::Kest::Slice"),
            golden());
}

TEST(Registration, FindsTheTypeObjectsByName) {
  for (Mox::MoxType const* type :
       {DeviceState_fwkType(), KestSliceDmaConfig::_fwkType(), ConfigSwitchPort::_fwkType(),
        ConfigDevice::_fwkType(), KestSliceDmaStatus::_fwkType(), StatusSwitchPort::_fwkType(),
        StatusDevice::_fwkType(), KestSliceDmaSm::_fwkType()}) {
    EXPECT_EQ(Mox::IntrospectionReactor::global().type(type->fullName()), type);
  }
}

TEST(Registration, IsRefusedASecondTime) {
  EXPECT_EQ(refusal([] { moxInitKestSliceDmaSm(); }),
            "'Hardware::Kest::Slice::DeviceState' is registered already");
}

TEST(Registration, ObjectsNameTheirTypes) {
  EXPECT_EQ(Mox::Ptr<KestSliceDmaConfig>(new KestSliceDmaConfig("config"))->fwkType(),
            KestSliceDmaConfig::_fwkType());
  EXPECT_EQ(Mox::Ptr<KestSliceDmaStatus>(new KestSliceDmaStatus("status"))->fwkType(),
            KestSliceDmaStatus::_fwkType());
}

}  // namespace
}  // namespace Hardware::Kest::Slice
