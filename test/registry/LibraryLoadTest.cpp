#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/bridging/SwitchportMode.h"
#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Activity.h"
#include "platform/mox/GenericEnum.h"
#include "platform/mox/IntrospectionReactor.h"
#include "platform/pelk/EthAddr.h"
#include "test/registry/Access.h"
#include "test/support/VirtualTime.h"

/// The library as an agent meets it that knows nothing but the platform: loaded, found by name,
/// used by name, unloaded.
namespace Hardware::Kest::Slice {
namespace {

using Lines = std::vector<std::string>;
using Mox::genericOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// A loaded library.
class Library {
 public:
  Library(char const* path, int flags) : handle_(dlopen(path, flags)) {
    if (handle_ == nullptr) ADD_FAILURE() << dlerror();
  }
  Library(Library const&) = delete;
  Library& operator=(Library const&) = delete;
  ~Library() { EXPECT_EQ(dlclose(handle_), 0) << dlerror(); }

  static bool isLoaded(char const* path) {
    void* const handle = dlopen(path, RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
  }

 private:
  void* handle_;
};

Lines typesOfTheLibrary() {
  Lines names;
  for (Mox::MoxType const* type : Mox::IntrospectionReactor::global().types()) {
    if (type->fullName().view().starts_with("Hardware::Kest::Slice")) {
      names.emplace_back(type->fullName().view());
    }
  }
  return names;
}

Mox::MoxType const& type(std::string const& name) {
  auto const* const found =
      Mox::IntrospectionReactor::global().type(Mox::String8("Hardware::Kest::Slice::" + name));
  if (found == nullptr) throw std::runtime_error("no type " + name);
  return *found;
}

Generic text(std::string const& typeName, char const* value) {
  return type(typeName).genericIf(Mox::String8(value), true);
}

/// All members of all collections, one a line.
Lines content(Mox::GenericIf& entity) {
  Lines lines;
  for (Mox::Attribute const& attribute : entity.type()->typeNode()->attributes()) {
    if (attribute.introspectionClass != Mox::IntrospectionClass::collection) continue;
    for (auto const it = entity.attributeIteratorConst(attribute.id); *it; ++*it) {
      lines.push_back(std::string(attribute.name.view()) + " " + it->key()->strRep().charPtr() +
                      ": " + entity.attributeIterator_iterObj(*it)->strRep().charPtr());
    }
  }
  return lines;
}

class LibraryLoadTest : public testing::Test {
 protected:
  LibraryLoadTest() { unsetenv("SIMULATION_VMID"); }

  /// A machine between its entities, made and used by name, until a slice works and is cleared.
  void runASlice();
  void configure(Mox::GenericIf& config) const;
  void poll();

  Support::Journal journal;
  Support::VirtualTime time{journal};
  Mox::Ptr<Fru::PciHam const> const handle{new Fru::PciHam("0000:05:00.0")};
};

void LibraryLoadTest::configure(Mox::GenericIf& config) const {
  store(config, "sliceId", string("Linecard3/1"));
  store(config, "device",
        type("KestSliceDmaConfig::Device")
            .genericIfNew(listOf(string("fap0"), genericOf(handle),
                                 genericOf(FapType::fapTypeArad_), number(2), number(11))));
  store(config, "deviceState", text("DeviceState", "'deviceStateUp'"), string("fap0"));
  store(config, "nativeVlan", genericOf(std::uint16_t{10}), string("et1"));
  store(config, "switchportMode", genericOf(Bridging::SwitchportMode::switchportModeDot1qTunnel_),
        string("et1"));
  store(config, "switchPort",
        type("KestSliceDmaConfig::SwitchPort")
            .genericIfNew(listOf(string("et1"), number(7), number(4096), number(3), string("fap0"),
                                 number(1), genericOf(true), genericOf(false),
                                 genericOf(Pelk::EthAddr("00:1c:73:0a:0b:0c")))));
}

void LibraryLoadTest::poll() {
  time.advance(2000000);
  Mox::activityManager()->clock()->dispatch();
}

void LibraryLoadTest::runASlice() {
  Generic const config =
      type("KestSliceDmaConfig").genericIfNew(listOf(genericOf(Mox::Name("config"))));
  Generic const status =
      type("KestSliceDmaStatus").genericIfNew(listOf(genericOf(Mox::Name("status"))));
  Generic const sm = type("KestSliceDmaSm").genericIfNew(listOf(config->clone(), status->clone()));

  configure(*config);
  store(*sm, "mode", genericOf(SmMode::smModePolling_));
  EXPECT_EQ(Mox::activityManager()->clock()->timeMin(), Mox::now() + 2.0);
  poll();
  EXPECT_EQ(Mox::activityManager()->clock()->timeMin(), Mox::now() + 2.0) << "it polled";
  invoke(*sm, "doVerify");
  EXPECT_THAT(
      content(*status),
      ElementsAre("switchPort 'et1': Value('Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort',"
                  " ** {'ifName': 'et1', 'created': True})",
                  "nativeVlan 'et1': 10", "switchportMode 'et1': 'switchportModeDot1qTunnel'",
                  "device 'fap0': Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device',"
                  " ** {'devName': 'fap0', 'registered': True})",
                  "deviceState 'fap0': 'deviceStateUp'"));

  for (char const* collection : {"nativeVlan", "switchportMode", "switchPort"}) {
    remove(*config, collection, string("et1"));
  }
  for (char const* collection : {"device", "deviceState"}) {
    remove(*config, collection, string("fap0"));
  }
  EXPECT_THAT(content(*config), IsEmpty());
  invoke(*sm, "doVerify");
}

TEST_F(LibraryLoadTest, IsLoadedUsedByNameAndUnloadedAsOftenAsOneLikes) {
  // Global, as the agent has it, so that the library finds the nine operations.
  Library const driver(KEST_DRIVER_SIM, RTLD_NOW | RTLD_GLOBAL);
  for (int round = 1; round <= 2; ++round) {
    SCOPED_TRACE(round);
    ASSERT_FALSE(Library::isLoaded(KEST_SLICE_DMA));
    {
      Library const library(KEST_SLICE_DMA, RTLD_LAZY | RTLD_LOCAL);
      ASSERT_THAT(typesOfTheLibrary(),
                  ElementsAre("Hardware::Kest::Slice::DeviceState",
                              "Hardware::Kest::Slice::KestSliceDmaConfig",
                              "Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort",
                              "Hardware::Kest::Slice::KestSliceDmaConfig::Device",
                              "Hardware::Kest::Slice::KestSliceDmaStatus",
                              "Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort",
                              "Hardware::Kest::Slice::KestSliceDmaStatus::Device",
                              "Hardware::Kest::Slice::KestSliceDmaSm"));
      runASlice();
    }
    EXPECT_FALSE(Library::isLoaded(KEST_SLICE_DMA));
    EXPECT_THAT(typesOfTheLibrary(), IsEmpty());
    EXPECT_TRUE(Mox::IntrospectionReactor::global().hasNamespace("Hardware::Kest::Slice"));
    EXPECT_NE(Mox::TypeOf<SmMode>::type()->typeNode(), nullptr) << "the platform's stay";
    EXPECT_EQ(Mox::activityManager()->clock()->timeMin(), Mox::never) << "nobody waits";
    EXPECT_EQ(handle->references(), 1U);
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
