#include "driver/sim/SimControl.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "driver/sim/SimDriver.h"
#include "test/driver/SimFixture.h"

namespace Hardware::Kest::Sim {
namespace {

using testing::ElementsAre;
using testing::Pair;

/// The library as a process sees it that only loads it.
class SimControl : public testing::Test {
 protected:
  SimControl() {
    simDriver().reset();
    addFap0(simDriver());
  }
  ~SimControl() override {
    simDriver().reset();
    dlclose(library_);
  }

  /// The entry declared as `declared`, found by its name.
  template <class Function>
  Function* entry(Function* /*declared*/, char const* name) {
    void* const found = dlsym(library_, name);
    if (found == nullptr) throw std::runtime_error(dlerror());
    return reinterpret_cast<Function*>(found);
  }

  /// The text that is asked for, or the error.
  std::string text(char const* what) {
    std::string taken;
    auto const sink = [](void* context, char const* chars, unsigned bytes) {
      static_cast<std::string*>(context)->append(chars, bytes);
    };
    int const result =
        entry(&kestDmaSimText, "kestDmaSimText")(what, sink, &taken, error_, sizeof error_);
    return result == 0 ? taken : error_;
  }

  /// What an entry hands over for a name; "nothing" when it does not.
  template <class Entry>
  std::string found(Entry* declared, char const* entryName, std::string const& name) {
    std::string taken = "nothing";
    auto const sink = [](void* context, char const* chars, unsigned bytes) {
      static_cast<std::string*>(context)->assign(chars, bytes);
    };
    auto const bytes = static_cast<unsigned>(name.size());
    EXPECT_EQ(entry(declared, entryName)(name.data(), bytes, sink, &taken, error_, sizeof error_),
              0);
    return taken;
  }

  std::pair<int, std::string> flip(std::string const& devName) {
    *error_ = '\0';
    auto const bytes = static_cast<unsigned>(devName.size());
    int const result = entry(&kestDmaSimDeviceFlip, "kestDmaSimDeviceFlip")(devName.data(), bytes,
                                                                            error_, sizeof error_);
    return {result, error_};
  }

  std::pair<int, std::string> faults(char const* faultText) {
    *error_ = '\0';
    int const result =
        entry(&kestDmaSimFaultsAre, "kestDmaSimFaultsAre")(faultText, error_, sizeof error_);
    return {result, error_};
  }

  std::pair<int, std::string> stateFile(char const* path) {
    *error_ = '\0';
    int const result =
        entry(&kestDmaSimStateFileIs, "kestDmaSimStateFileIs")(path, error_, sizeof error_);
    return {result, error_};
  }

  void* library_ = dlopen(KEST_DRIVER_SIM, RTLD_NOW | RTLD_LOCAL);
  char error_[300] = "";
};

TEST_F(SimControl, HandsOverItsTexts) {
  EXPECT_THAT(faults("fail kestDmaIfdel 'et1' 5 always"), Pair(0, ""));
  EXPECT_EQ(text("log"),
            "#1 kestDmaDeviceRename('fap0', '0000:05:00.0') = 0\n"
            "#2 kestDmaDeviceParam('fap0', numFaps 2, fapType fapTypeArad, cpuTmSysPort 1, "
            "cpuEthSysPort 2, cpuRawSysPort 3, sflowPort 4, cpuAradSysPort 5, cpuArad 6, "
            "cpuAradBridge 7) = 0\n");
  EXPECT_EQ(text("faults"), "fail kestDmaIfdel 'et1' 5 always\n");
  EXPECT_EQ(text("dump"), simDriver().dumpText());
  EXPECT_NE(text("dump"), "");
  EXPECT_EQ(text("state"), stateText({Interfaces(), Devices(simDriver().devices())}));
  simDriver().reset();
  EXPECT_EQ(text("log"), "");
  EXPECT_EQ(text("logs"), "expected dump, log, faults or state, found 'logs'");
  EXPECT_EQ(text(nullptr), "expected dump, log, faults or state, found ''");
}

TEST_F(SimControl, FindsOneInterfaceOrDeviceByItsName) {
  std::string const strange = "et%\xff";
  for (std::string const& ifName : {std::string("et2"), strange, std::string("et1")}) {
    simDriver().ifadd(Mox::String8(ifName),
                      {7, -1, 0, "fap0", 1, false, true, "00:1c:73:00:00:01"});
  }
  auto const interface = [&](std::string const& name) {
    return found(&kestDmaSimInterface, "kestDmaSimInterface", name);
  };
  EXPECT_EQ(interface(strange),
            R"({"et%25%FF":{"destId":7,"shadowIntfId":-1,"trafficClass":0,"devName":"fap0",)"
            R"("fapNum":1,"ctrl":false,"hwLag":true,"macAddr":"00:1c:73:00:00:01",)"
            R"("nativeVlan":4096,"mode":false}})");
  EXPECT_EQ(interface("et3"), "nothing");
  EXPECT_EQ(interface(std::string("et1\0", 4)), "nothing");
  auto const device = [&](std::string const& name) {
    return found(&kestDmaSimDevice, "kestDmaSimDevice", name);
  };
  EXPECT_EQ(device("fap0"),
            R"({"0000:05:00.0":{"name":"fap0","param":{"numFaps":2,"fapType":"fapTypeArad",)"
            R"("cpuTmSysPort":1,"cpuEthSysPort":2,"cpuRawSysPort":3,"sflowPort":4,)"
            R"("cpuAradSysPort":5,"cpuArad":6,"cpuAradBridge":7},"up":false,"flips":0}})");
  EXPECT_EQ(device("fap1"), "nothing");
  Mox::Ptr<Fru::PciHam> const unnamed(new Fru::PciHam("unnamed"));
  simDriver().deviceRename("", unnamed);
  EXPECT_EQ(device(""), "nothing");
  auto const next = [&](std::string const& name) {
    return found(&kestDmaSimNextInterface, "kestDmaSimNextInterface", name);
  };
  EXPECT_EQ(next(""), strange);
  EXPECT_EQ(next(strange), "et1");
  EXPECT_EQ(next("et1a"), "et2");
  EXPECT_EQ(next("et2"), "nothing");
}

TEST_F(SimControl, KeepsAnExceptionOfTheSinkToItself) {
  auto const ask = entry(&kestDmaSimText, "kestDmaSimText");
  auto const throws = [](void*, char const*, unsigned) { throw std::runtime_error("no room"); };
  EXPECT_EQ(ask("dump", throws, nullptr, error_, sizeof error_), -1);
  EXPECT_STREQ(error_, "no room");
  auto const throwsOther = [](void*, char const*, unsigned) { throw 1; };
  EXPECT_EQ(ask("dump", throwsOther, nullptr, error_, sizeof error_), -1);
  EXPECT_STREQ(error_, "unknown exception");
  EXPECT_EQ(ask("dump", throwsOther, nullptr, nullptr, 0), -1);
}

TEST_F(SimControl, ReplacesTheFaultsOrSaysWhatIsWrongWithThem) {
  EXPECT_THAT(faults("fail kestDmaIfdel * 5 always\n# and\nflip 'fap0'"), Pair(0, ""));
  EXPECT_EQ(simDriver().device("fap0")->flips, 1u);
  EXPECT_THAT(faults("fail kestDmaIfadd * 5 always\nflip 'fap9'"),
              Pair(-1, "faults:2:6: expected the name of a device that there is, found 'fap9'"));
  EXPECT_EQ(simDriver().faultsText(), "fail kestDmaIfdel * 5 always\n");
  EXPECT_THAT(faults(nullptr), Pair(0, ""));
  EXPECT_EQ(simDriver().faultsText(), "");
}

TEST_F(SimControl, FlipsADeviceAndKeepsThat) {
  TempFolder const folder;
  EXPECT_THAT(stateFile(folder.file("state").c_str()), Pair(0, ""));
  std::string const before = simDriver().stateText();
  EXPECT_EQ(stateIn(folder.file("state")), before);
  EXPECT_THAT(flip(std::string("fap0\0", 5)), Pair(-1, "there is no device 'fap0\\x00' to flip"));
  EXPECT_THAT(flip(""), Pair(-1, "there is no device '' to flip"));
  EXPECT_EQ(simDriver().stateText(), before);
  EXPECT_THAT(flip("fap0"), Pair(0, ""));
  EXPECT_TRUE(simDriver().device("fap0")->up);
  EXPECT_EQ(stateIn(folder.file("state")), simDriver().stateText());
  EXPECT_NE(simDriver().stateText(), before);
}

TEST_F(SimControl, TakesTheStateFromAFileOrSaysWhatIsWrongWithIt) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  std::ofstream(path) << "{\"format\": 2}";
  EXPECT_THAT(stateFile(path.c_str()),
              Pair(-1, path + ":1:2: /format: expected \"kest-dma-sim-state/1\", found 2"));
  EXPECT_THAT(stateFile(nullptr),
              Pair(-1, "expected the path of a state file, found an empty one"));
  EXPECT_NE(simDriver().device("fap0"), nullptr);
  std::ofstream(path) << stateText({});
  EXPECT_THAT(stateFile(path.c_str()), Pair(0, ""));
  EXPECT_EQ(simDriver().device("fap0"), nullptr);
}

}  // namespace
}  // namespace Hardware::Kest::Sim
