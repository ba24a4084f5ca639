#include "test/complexity/Texts.h"
#include "test/support/Readers.h"

namespace Kest::Complexity {

namespace {

std::string const handle = "pciHam '/pci/0'\n";
std::string const deviceStart =
    "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {";
std::string const portStart =
    "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {";

std::vector<Case> statements() {
  return {
      pieces("many handles", "", "pciHam '/pci/@'\n"),
      pieces("handles in many directories", "", "pciHam '/p@/0'\n"),
      pieces("handles of one hash", "", "pciHam '/pci/%'\n"),
      pieces("deep handle", "pciHam '", "/d", "/0'\n"),
      halves("handles below a deep one", "pciHam '", "/d", "/0'\n", "pciHam '/x@'\n"),
      pieces("handle in the way of directories", "pciHam '/a'\npciHam '/a", "/d", "'\n"),
      pieces("many ports", "", portStart + "'ifName': 'et@'})\n"),
      pieces("ports of one hash", "", portStart + "'ifName': '%'})\n"),
      pieces("many devices of one handle", handle,
             deviceStart + "'devName': 'f@', 'pciHam': EntityPtr('/pci/0', 'Fru::PciHam')})\n" +
                 "deviceState 'f@' 'deviceStateUp'\n"),
      pieces("many devices and handles", "",
             "pciHam '/pci/@'\n" + deviceStart +
                 "'devName': 'f@', 'pciHam': EntityPtr('/pci/@', 'Fru::PciHam')})\n" +
                 "deviceState 'f@' 'deviceStateUp'\n"),
      pieces("devices without a state", handle, deviceStart + "'devName': 'f@'})\n"),
      pieces("many states", "", "deviceState 'f@' 'deviceStateUp'\n"),
      pieces("many native VLANs", "", "nativeVlan 'et@' 10\n"),
      pieces("native VLANs of one hash", "", "nativeVlan '%' 10\n"),
      pieces("native VLANs of crowded hashes", "", "nativeVlan '^' 10\n"),
      pieces("many modes", "", "switchportMode 'et@' 'switchportModeTrunk'\n"),
      pieces("a key given twice at the end", "nativeVlan 'et' 1\n", "nativeVlan 'et@' 10\n",
             "nativeVlan 'et' 2\n"),
      pieces("empty lines", "", "\n"),
      pieces("lines of two characters to end them", "", "\r\n"),
      pieces("comments", "", "# @\n"),
      pieces("one long comment", "#", "comment "),
      pieces("blanks", "", " "),
      pieces("refused after many lines", "", "sliceId\t'x' \n", "x"),
      pieces("refused after empty lines", "", "\n", "x"),
      pieces("unknown name", "", "x"),
      pieces("one long line that is refused", "nativeVlan 'et1' 10 ", "x"),
      pieces("long string", "sliceId '", "x", "'\n"),
      pieces("many escapes", "sliceId '", "\\x41", "'\n"),
      pieces("unterminated string", "sliceId '", "x"),
      pieces("unterminated escapes", "sliceId '", "\\\\"),
      pieces("bytes that are no characters", "sliceId '", "\x80", "\n"),
      pieces("zero bytes", "", std::string(1, '\0')),
      pieces("blanks in a record", portStart, " ", "'ifName': 'et1'})\n"),
      pieces("one field again and again", portStart + "'ifName': 'et1'", ", 'destId': 1", "})\n"),
      pieces("unknown fields", portStart + "'ifName': 'et1'", ", 'x@': 1", "})\n"),
      pieces("long reference", deviceStart + "'devName': 'f', 'pciHam': EntityPtr('", "/d",
             "', 'Fru::PciHam')})\n"),
      pieces("long number", "nativeVlan 'et1' ", "0", "\n"),
  };
}

std::vector<Case> json() {
  return {
      pieces("many handles", R"({"pciHam":["/pci/a")", R"(,"/pci/@")", "]}"),
      pieces("deep handle", R"({"pciHam":[")", "/d", R"("]})"),
      halves("handles below a deep one", R"({"pciHam":[")", "/d", "\"", R"(,"/x@")", "]}"),
      pieces("many ports", R"({"switchPort":{"et":{})", R"(,"et@":{})", "}}"),
      pieces("ports of one hash", R"({"switchPort":{"et":{})", R"(,"%":{})", "}}"),
      pieces("many devices of one handle", R"({"pciHam":["/p"],"device":{"f":{"pciHam":"/p"})",
             R"(,"f@":{"pciHam":"/p"})", "}}"),
      pieces("many states", R"({"deviceState":{"f":"deviceStateUp")", R"(,"f@":"deviceStateUp")",
             "}}"),
      pieces("many native VLANs", R"({"nativeVlan":{"et":10)", R"(,"et@":10)", "}}"),
      pieces("native VLANs of one hash", R"({"nativeVlan":{"et":10)", R"(,"%":10)", "}}"),
      pieces("a bad value at the end", R"({"nativeVlan":{"et":10)", R"(,"et@":10)",
             R"(,"ets":4095}})"),
      pieces("unknown fields", R"({"switchPort":{"et1":{"destId":1)", R"(,"x@":1)", "}}}"),
      pieces("many lines", "{", "\n", "}"),
      pieces("refused after many lines", "{", "\n", "x"),
  };
}

}  // namespace

std::vector<Reader> sliceReaders() {
  return {{"slice file", counting(Support::readSliceStatements), statements()},
          {"slice file, JSON", counting(Support::readSliceJson),
           both(jsonTexts(R"({"sliceId":)"), json())}};
}

}  // namespace Kest::Complexity
