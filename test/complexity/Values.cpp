#include "platform/fru/PciHam.h"
#include "test/complexity/Texts.h"
#include "test/support/Readers.h"

namespace Kest::Complexity {

namespace {

using namespace Hardware::Kest::Slice;

/// A record's text form: it has `string` among its fields, the first of which is `field`.
std::vector<Case> recordCases(std::string const& type, std::string const& field,
                              std::string const& string) {
  std::string const start = "Value('Hardware::Kest::Slice::" + type + "', ** {";
  std::string const stringStart = start + "'" + string + "': '";
  return {
      pieces("blanks", start, " ", "})"),
      pieces("blanks in front", "", " ", start + "})"),
      pieces("blanks after it", start + "})", " "),
      pieces("unknown fields", start + "'x': 1", ", 'x@': 1", "})"),
      pieces("one field again and again", start + field, ", " + field, "})"),
      pieces("long string", stringStart, "x", "'})"),
      pieces("many escapes", stringStart, "\\x41", "'})"),
      pieces("unterminated string", stringStart, "x"),
      pieces("long field", start + "'", "x", "': 1})"),
      pieces("long type", "Value('", "x", "', ** {})"),
      pieces("another value after it", start + "})", start + "})"),
      nested("deep", start + "'" + string + "': ", "{", "", "}", "})"),
  };
}

std::vector<Case> textCases() {
  return {
      pieces("blanks", "", " "),
      pieces("digits", "", "1"),
      pieces("zeros", "", "0", "1"),
      pieces("digits after a point", "0.", "1"),
      pieces("long string", "'", "x", "'"),
      pieces("many escapes", "'", "\\x41", "'"),
      pieces("unterminated string", "'", "x"),
      pieces("unterminated escapes", "'", "\\\\"),
      pieces("long word", "", "x"),
      pieces("bytes that are no characters", "'", "\x80", "'"),
      pieces("deep reference", "EntityPtr('", "/d", "', 'Fru::PciHam')"),
      pieces("reference of a long type", "EntityPtr('/d', '", "x", "')"),
      pieces("reference of many slashes", "EntityPtr('", "/", "', 'Fru::PciHam')"),
  };
}

std::vector<Case> jsonCases() {
  return {
      pieces("one field again and again", "{\"devName\":\"\"", ",\"devName\":\"x\"", "}"),
      pieces("long number", "{\"fapNum\":", "1", "}"),
      pieces("many lines", "{", "\n", "}"),
      pieces("deep handle", "{\"pciHam\":\"", "/d", "\"}"),
  };
}

}  // namespace

std::vector<Reader> valueReaders() {
  std::vector<Case> const json = both(jsonTexts(R"({"devName":)"), jsonCases());
  return {
      {"text: string", counting(Support::readText<Mox::String8>), textCases()},
      {"text: number", counting(Support::readText<unsigned>), textCases()},
      {"text: floating number", counting(Support::readText<double>), textCases()},
      {"text: flag", counting(Support::readText<bool>), textCases()},
      {"text: MAC address", counting(Support::readText<Pelk::EthAddr>), textCases()},
      {"text: enumeration", counting(Support::readText<DeviceState>), textCases()},
      {"text: name", counting(Support::readText<Mox::Name>), textCases()},
      {"text: reference", counting(Support::readText<Mox::Ptr<Fru::PciHam>>), textCases()},
      {"text: configured port", counting(Support::readText<ConfigSwitchPort>),
       recordCases("KestSliceDmaConfig::SwitchPort", "'destId': 1", "ifName")},
      {"text: configured device", counting(Support::readText<ConfigDevice>),
       recordCases("KestSliceDmaConfig::Device", "'numFaps': 1", "devName")},
      {"text: port's status", counting(Support::readText<StatusSwitchPort>),
       recordCases("KestSliceDmaStatus::SwitchPort", "'created': True", "ifName")},
      {"text: device's status", counting(Support::readText<StatusDevice>),
       recordCases("KestSliceDmaStatus::Device", "'registered': True", "devName")},
      {"typed: port", counting(Support::readTyped<ConfigSwitchPort>), json},
      {"typed: device", counting(Support::readTyped<ConfigDevice>), json},
      {"typed: string", counting(Support::readTyped<Mox::String8>), textCases()},
      {"typed: number", counting(Support::readTyped<std::uint16_t>), textCases()},
      {"typed: enumeration", counting(Support::readTyped<DeviceState>), textCases()},
      {"typed: reference", counting(Support::readTyped<Fru::PciHam>), textCases()},
  };
}

}  // namespace Kest::Complexity
