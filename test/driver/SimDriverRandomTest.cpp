#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "driver/sim/SimDriver.h"
#include "test/driver/SimFixture.h"
#include "test/support/Effort.h"

namespace Hardware::Kest::Sim {
namespace {

struct PlainFault {
  std::string operation;
  std::string name;
  int answer;
  int times;  // -1: always
};

/// The slice once more, in the plainest way.
struct PlainSlice {
  std::map<std::string, Interface> interfaces;
  std::map<std::string, Device> devices;  // by path
  std::vector<PlainFault> faults;

  Device* named(std::string const& name) {
    for (auto& entry : devices) {
      if (!name.empty() && entry.second.name == name) return &entry.second;
    }
    return nullptr;
  }

  std::optional<int> fault(std::string const& operation, std::string const& name) {
    for (PlainFault& f : faults) {
      if (f.operation != operation || f.times == 0 || (f.name != "*" && f.name != name)) continue;
      if (f.times > 0) --f.times;
      return f.answer;
    }
    return std::nullopt;
  }

  int ifadd(std::string const& name, InterfaceParam const& param) {
    if (auto const answer = fault("kestDmaIfadd", name)) return *answer;
    if (param.macAddr == "bad") return 22;
    if (!(param.devName == "")) {
      Device const* const device = named(param.devName.charPtr());
      if (device == nullptr) return 19;
      int const faps = device->param ? static_cast<int>(device->param->numFaps) : 3;
      if (param.fapNum >= faps) return 22;
    }
    interfaces[name].param = param;
    return 0;
  }
  int ifdel(std::string const& name) {
    if (auto const answer = fault("kestDmaIfdel", name)) return *answer;
    return interfaces.erase(name) == 1 ? 0 : 19;
  }
  int nativeVlan(std::string const& name, bool mode, unsigned short vlan) {
    if (auto const answer = fault("kestDmaNativeVlan", name)) return *answer;
    if (interfaces.count(name) == 0) return 19;
    if (vlan == 0 || vlan == 4095 || vlan > 4096) return 22;
    interfaces[name].nativeVlan = vlan;
    interfaces[name].mode = vlan == 4096 ? false : mode;
    return 0;
  }
  int rename(std::string const& name, std::string const& path) {
    if (auto const answer = fault("kestDmaDeviceRename", name)) return *answer;
    Device& chip = devices[path];
    if (name.empty()) return 22;
    if (named(name) != nullptr && named(name) != &chip) return 17;
    for (auto& entry : interfaces) {
      Mox::String8& carrier = entry.second.param.devName;
      if (!carrier.empty() && carrier == chip.name) carrier = Mox::String8(name);
    }
    chip.name = Mox::String8(name);
    return 0;
  }
  int param(std::string const& name, DeviceParam const& param) {
    if (auto const answer = fault("kestDmaDeviceParam", name)) return *answer;
    if (named(name) == nullptr) return 19;
    if (named(name)->up) return 16;
    if (param.numFaps == 0 || param.numFaps > 3) return 22;
    named(name)->param = param;
    return 0;
  }
  int upIs(std::string const& name, bool up) {
    if (auto const answer = fault(up ? "kestDmaDeviceUp" : "kestDmaDeviceDown", name)) {
      return *answer;
    }
    if (named(name) == nullptr) return 19;
    if (up && !named(name)->param) return 22;
    named(name)->up = up;
    return 0;
  }
  int isUp(std::string const& name, bool* up) {
    if (auto const answer = fault("kestDmaIsDeviceUp", name)) return *answer;
    if (named(name) == nullptr) return 19;
    *up = named(name)->up;
    return 0;
  }
};

template <class Value>
std::map<std::string, Value> plain(std::map<Mox::String8, Value> const& map) {
  std::map<std::string, Value> result;
  for (auto const& [key, value] : map) result.emplace(key.charPtr(), value);
  return result;
}

class RandomRun {
 public:
  explicit RandomRun(std::uint64_t seed) : random_(seed) {}

  void keepState() { sim_.stateFileIs(folder_.file("state")); }

  /// One operation on both: their answers, and what they stored as the answer to a question.
  void step() {
    std::string const port = any({"et1", "et2", "et3"});
    std::string const name = any({"fap0", "fap1", "fap2", ""});
    Mox::String8 const ifName(port);
    Mox::String8 const devName(name);
    switch (below(10)) {
      case 0:
      case 1: {
        InterfaceParam const param{below(5),      -1,
                                   below(8),      devName,
                                   below(4),      below(2) == 0,
                                   below(2) == 0, any({"00:1c:73:0a:0b:0c", "bad"})};
        return same(sim_.ifadd(ifName, param), plain_.ifadd(port, param));
      }
      case 2:
        return same(sim_.ifdel(ifName), plain_.ifdel(port));
      case 3: {
        unsigned short const vlans[] = {0, 1, 77, 4094, 4095, 4096, 4097, 65535};
        unsigned short const vlan = vlans[below(static_cast<int>(std::size(vlans)))];
        bool const mode = below(2) == 0;
        return same(sim_.nativeVlan(ifName, mode, vlan), plain_.nativeVlan(port, mode, vlan));
      }
      case 4: {
        char const* const path = any({"a", "b", "c"});
        return same(sim_.deviceRename(devName, pciHam(path)), plain_.rename(name, path));
      }
      case 5: {
        DeviceParam const param = faps(static_cast<unsigned>(below(5)));
        return same(sim_.deviceParam(devName, param), plain_.param(name, param));
      }
      case 6:
        return same(sim_.deviceDown(devName), plain_.upIs(name, false));
      case 7:
        return same(sim_.deviceUp(devName), plain_.upIs(name, true));
      case 8: {
        bool simUp = false;
        bool plainUp = false;
        same(sim_.isDeviceUp(devName, &simUp), plain_.isUp(name, &plainUp));
        return same(simUp, plainUp);
      }
      default:
        return rarelyNewFaults();
    }
  }

  void expectSameState() {
    EXPECT_EQ(plain(sim_.interfaces()), plain_.interfaces);
    EXPECT_EQ(plain(sim_.devices()), plain_.devices);
  }

  /// The next process finds the same slice in the state file.
  void expectSameAfterRestart() {
    SimDriver next;
    next.stateFileIs(folder_.file("state"));
    EXPECT_EQ(next.stateText(), sim_.stateText());
  }

 private:
  int below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  char const* any(std::initializer_list<char const*> choices) {
    return choices.begin()[below(static_cast<int>(choices.size()))];
  }

  void same(int simulated, int expected) { EXPECT_EQ(simulated, expected); }

  void rarelyNewFaults() {
    if (below(8) != 0) return;
    plain_.faults.clear();
    std::string text;
    for (int count = below(4); count > 0; --count) {
      PlainFault const fault{
          any({"kestDmaIfadd", "kestDmaIfdel", "kestDmaNativeVlan", "kestDmaDeviceRename",
               "kestDmaDeviceParam", "kestDmaDeviceDown", "kestDmaDeviceUp", "kestDmaIsDeviceUp"}),
          any({"*", "et1", "et2", "fap0", "fap1"}), 1 + below(40),
          below(4) == 0 ? -1 : 1 + below(6)};
      plain_.faults.push_back(fault);
      text += "fail " + fault.operation + (fault.name == "*" ? " *" : " '" + fault.name + "'") +
              " " + std::to_string(fault.answer) +
              (fault.times < 0 ? " always" : " times " + std::to_string(fault.times)) + "\n";
    }
    sim_.faultsAre(text);
  }

  std::mt19937_64 random_;
  TempFolder const folder_;
  SimDriver sim_;
  PlainSlice plain_;
};

TEST(SimDriverRandom, StaysTheSameAsAPlainModel) {
  for (int seed = 1; seed <= effort(10); ++seed) {
    RandomRun run(static_cast<std::uint64_t>(seed));
    for (int step = 0; step < 2000; ++step) {
      run.step();
      run.expectSameState();
      if (step == 1900) run.keepState();
      if (step >= 1900) run.expectSameAfterRestart();
      ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << step;
    }
  }
}

}  // namespace
}  // namespace Hardware::Kest::Sim
