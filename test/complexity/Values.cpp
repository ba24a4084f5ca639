#include <utility>

#include "agent/access/GenericJson.h"
#include "platform/fru/PciHam.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "registry/DeviceStateType.h"
#include "registry/RecordTypes.h"
#include "test/complexity/Texts.h"
#include "test/model/RecordNames.h"

namespace Kest::Complexity {

namespace {

using namespace Hardware::Kest::Slice;

/// A value's text form.
template <class T>
void readStrep(std::string const& text) {
  Mox::String8 const form(text);
  Counted const counted;
  try {
    Mox::strepToValue<T>(form);
  } catch (Mox::RangeException const&) {  // NOLINT(bugprone-empty-catch): refused is fine
  }
}

/// What a person types, or a client sends as JSON.
template <class T>
void readTyped(std::string const& text) {
  Counted const counted;
  try {
    Agent::fromTyped(*Mox::TypeOf<T>::type(), text);
  } catch (Mox::RangeException const&) {  // NOLINT(bugprone-empty-catch): refused is fine
  }
}

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
      pieces("digits behind a point", "0.", "1"),
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
      pieces("many members", "{\"x\":1", ",\"m@\":1", "}"),
      pieces("members of one hash", "{\"x\":1", ",\"%\":1", "}"),
      pieces("equal members", "{\"x\":1", ",\"x\":1", "}"),
      pieces("one field again and again", "{\"devName\":\"\"", ",\"devName\":\"x\"", "}"),
      pieces("long string", "{\"devName\":\"", "x", "\"}"),
      pieces("many escapes", "{\"devName\":\"", "\\u0041", "\"}"),
      pieces("control characters", "{\"devName\":\"", "\\u0001", "\"}"),
      pieces("unterminated string", "{\"devName\":\"", "x"),
      pieces("elements in place of a string", "{\"devName\":[0", ",0", "]}"),
      pieces("members in place of a string", "{\"devName\":{\"x\":0", ",\"m@\":0", "}}"),
      pieces("long member", "{\"", "x", "\":1}"),
      pieces("long number", "{\"fapNum\":", "1", "}"),
      nested("deep", "{\"devName\":", "[", "", "]", "}"),
      pieces("unterminated deep", "", "{\"a\":"),
      pieces("many lines", "{", "\n", "}"),
      pieces("zero bytes", "{", std::string(1, '\0'), "}"),
      pieces("deep handle", "{\"pciHam\":\"", "/d", "\"}"),
      pieces("blanks", "{", " ", "}"),
  };
}

}  // namespace

std::vector<Reader> valueReaders() {
  return {
      {"text: string", readStrep<Mox::String8>, textCases()},
      {"text: number", readStrep<unsigned>, textCases()},
      {"text: floating number", readStrep<double>, textCases()},
      {"text: flag", readStrep<bool>, textCases()},
      {"text: MAC address", readStrep<Pelk::EthAddr>, textCases()},
      {"text: enumeration", readStrep<DeviceState>, textCases()},
      {"text: name", readStrep<Mox::Name>, textCases()},
      {"text: reference", readStrep<Mox::Ptr<Fru::PciHam>>, textCases()},
      {"text: configured port", readStrep<ConfigSwitchPort>,
       recordCases("KestSliceDmaConfig::SwitchPort", "'destId': 1", "ifName")},
      {"text: configured device", readStrep<ConfigDevice>,
       recordCases("KestSliceDmaConfig::Device", "'numFaps': 1", "devName")},
      {"text: port's status", readStrep<StatusSwitchPort>,
       recordCases("KestSliceDmaStatus::SwitchPort", "'created': True", "ifName")},
      {"text: device's status", readStrep<StatusDevice>,
       recordCases("KestSliceDmaStatus::Device", "'registered': True", "devName")},
      {"typed: port", readTyped<ConfigSwitchPort>, jsonCases()},
      {"typed: device", readTyped<ConfigDevice>, jsonCases()},
      {"typed: string", readTyped<Mox::String8>, textCases()},
      {"typed: number", readTyped<std::uint16_t>, textCases()},
      {"typed: enumeration", readTyped<DeviceState>, textCases()},
      {"typed: reference", readTyped<Fru::PciHam>, textCases()},
  };
}

}  // namespace Kest::Complexity
