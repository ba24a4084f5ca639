#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"

namespace Hardware::Kest::Sim {

/// A state with every kind of value in it.
inline SliceState richState() {
  std::map<Mox::String8, Interface> interfaces;
  interfaces["et3/1"] = {{7, -1, 2, "fap0", 1, true, false, "00:1c:73:0a:0b:0c"}, 10, true};
  interfaces[Mox::String8(std::string_view("\xff\"%\0\n", 5))] = {
      {-2147483647 - 1, 2147483647, 0, "", 77, false, true, "FF:00:00:00:00:01"}, 4096, false};
  std::map<Mox::String8, Device> devices;
  devices["/pci/a"] = {"fap0", DeviceParam{1, FapType::fapTypeArad_, 1, 2, 3, 4, 5, 6, 7}, true, 3};
  devices["/pci/b"] = {"\xc3\xa9 %", DeviceParam{3, static_cast<FapType>(-7), 4294967295u}, false,
                       4294967295u};
  devices[""] = {};
  return {Interfaces(interfaces), Devices(devices)};
}

inline constexpr char const* richText = R"({
  "format": "kest-dma-sim-state/1",
  "interfaces": {
    "et3/1": {
      "destId": 7,
      "shadowIntfId": -1,
      "trafficClass": 2,
      "devName": "fap0",
      "fapNum": 1,
      "ctrl": true,
      "hwLag": false,
      "macAddr": "00:1c:73:0a:0b:0c",
      "nativeVlan": 10,
      "mode": true
    },
    "%FF\"%25\u0000\n": {
      "destId": -2147483648,
      "shadowIntfId": 2147483647,
      "trafficClass": 0,
      "devName": "",
      "fapNum": 77,
      "ctrl": false,
      "hwLag": true,
      "macAddr": "FF:00:00:00:00:01",
      "nativeVlan": 4096,
      "mode": false
    }
  },
  "devices": {
    "": {
      "name": "",
      "param": null,
      "up": false,
      "flips": 0
    },
    "/pci/a": {
      "name": "fap0",
      "param": {
        "numFaps": 1,
        "fapType": "fapTypeArad",
        "cpuTmSysPort": 1,
        "cpuEthSysPort": 2,
        "cpuRawSysPort": 3,
        "sflowPort": 4,
        "cpuAradSysPort": 5,
        "cpuArad": 6,
        "cpuAradBridge": 7
      },
      "up": true,
      "flips": 3
    },
    "/pci/b": {
      "name": "é %25",
      "param": {
        "numFaps": 3,
        "fapType": -7,
        "cpuTmSysPort": 4294967295,
        "cpuEthSysPort": 0,
        "cpuRawSysPort": 0,
        "sflowPort": 0,
        "cpuAradSysPort": 0,
        "cpuArad": 0,
        "cpuAradBridge": 0
      },
      "up": false,
      "flips": 4294967295
    }
  }
}
)";

/// What is wrong with `text`.
inline std::string refusal(std::string_view text) {
  try {
    readState(text, "my.state");
  } catch (Mox::RangeException const& exception) {
    return std::string(exception.text().view());
  }
  return "accepted";
}

/// `richText` with the first `from` replaced.
inline std::string changed(std::string_view from, std::string_view to) {
  std::string text = richText;
  std::size_t const at = text.find(from);
  if (at == std::string::npos) throw std::logic_error("not in the text: " + std::string(from));
  return text.replace(at, from.size(), to);
}

}  // namespace Hardware::Kest::Sim
