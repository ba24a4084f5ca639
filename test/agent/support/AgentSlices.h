#pragma once

#include <string>

/// Slices for the real agent.
namespace Kest::Agent {

inline std::string const examples = KEST_EXAMPLES "/";

inline std::string device(std::string const& name, std::string const& more = "") {
  return "pciHam '/pci/" + name +
         "'\ndevice Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': '" +
         name + "', 'pciHam': EntityPtr('/pci/" + name + "', 'Fru::PciHam')" + more +
         "})\ndeviceState '" + name + "' 'deviceStateUp'\n";
}

inline std::string port(int number) {
  return "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** "
         "{'ifName': 'et" +
         std::to_string(number) + "'})\n";
}

/// More ports than an agent can create before a test has said what it wants to say.
inline std::string manyPorts() {
  std::string text;
  for (int number = 1; number <= 1000; ++number) text += port(number);
  return text;
}

}  // namespace Kest::Agent
