#include "driver/sim/SimDriver.h"
#include "platform/mox/RangeException.h"
#include "test/complexity/Texts.h"
#include "test/support/Readers.h"

namespace Kest::Complexity {

namespace {

using namespace Hardware::Kest::Sim;

void readFaults(std::string const& text) {
  SimDriver driver;
  driver.deviceRename("fap0", Mox::Ptr<Fru::PciHam const>(new Fru::PciHam("handle")));
  driver.deviceParam("fap0", {});
  Counted const counted;
  try {
    driver.faultsAre(text);
  } catch (Mox::RangeException const&) {  // NOLINT(bugprone-empty-catch): refused is fine
  }
}

std::vector<Case> faultCases() {
  return {
      pieces("many faults", "", "fail kestDmaIfadd 'et@' 11 times 1\n"),
      pieces("faults of one hash", "", "fail kestDmaIfadd '%' 11 times 1\n"),
      pieces("one fault again and again", "", "fail kestDmaIfadd * 11 always\n"),
      pieces("flips at once", "", "flip 'fap0'\n"),
      pieces("flips later", "", "flip 'fap0' after 1 kestDmaIfadd 'et@'\n"),
      pieces("empty lines", "", "\n"),
      pieces("comments", "", "# @\n"),
      pieces("refused after many lines", "", "flip 'fap0'\n", "x"),
      pieces("one long word", "", "x"),
      pieces("long name", "fail kestDmaIfadd '", "x", "' 11 always\n"),
      pieces("many escapes", "fail kestDmaIfadd '", "\\x41", "' 11 always\n"),
      pieces("unterminated name", "fail kestDmaIfadd '", "x"),
      pieces("blanks", "fail", " ", "kestDmaIfadd * 11 always\n"),
      pieces("long number", "fail kestDmaIfadd * ", "0", "11 always\n"),
      pieces("long device", "flip '", "x", "'\n"),
  };
}

std::string const stateStart = R"({"format":"kest-dma-sim-state/1","interfaces":{)";
std::string const stateMiddle = R"(},"devices":{)";
std::string const interfaceFields =
    R"({"destId":7,"shadowIntfId":4096,"trafficClass":0,"devName":"fap0","fapNum":0,"ctrl":true,)"
    R"("hwLag":false,"macAddr":"00:1c:73:00:00:01","nativeVlan":4096,"mode":false})";
std::string const deviceFields = R"({"name":"f@","param":null,"up":false,"flips":0})";

std::vector<Case> stateCases() {
  std::string const interface = "\"et@\":" + interfaceFields, device = "\"/p@\":" + deviceFields;
  return {
      pieces("many interfaces", stateStart + "\"et\":" + interfaceFields, "," + interface,
             stateMiddle + "}}"),
      pieces("interfaces of one hash", stateStart + "\"et\":" + interfaceFields,
             ",\"%\":" + interfaceFields, stateMiddle + "}}"),
      pieces("one interface again and again", stateStart + "\"et\":" + interfaceFields,
             ",\"et\":" + interfaceFields, stateMiddle + "}}"),
      pieces("many devices", stateStart + stateMiddle + "\"/p\":" + deviceFields, "," + device,
             "}}"),
      pieces("devices of one name", stateStart + stateMiddle + "\"/p\":" + deviceFields,
             R"(,"/p@":{"name":"f","param":null,"up":false,"flips":0})", "}}"),
      pieces("many devices without a name", stateStart + stateMiddle + "\"/p\":" + deviceFields,
             R"(,"/p@":{"name":"","param":null,"up":false,"flips":0})", "}}"),
      pieces("unknown members of an interface", stateStart + "\"et\":{\"x\":1", ",\"x@\":1",
             "}" + stateMiddle + "}}"),
      pieces("a bad value at the end", stateStart + "\"et\":" + interfaceFields, "," + interface,
             ",\"ets\":1" + stateMiddle + "}}"),
      pieces("many escapes of bytes", stateStart + "\"", "\\\\x80", "\":1" + stateMiddle + "}}"),
      pieces("many lines", "{", "\n", "}"),
      pieces("refused after many lines", "{", "\n", "x"),
  };
}

}  // namespace

std::vector<Reader> simFileReaders() {
  return {{"fault file", readFaults, faultCases()},
          {"state file", counting(Support::readSimState),
           both(jsonTexts(R"({"format":)"), stateCases())}};
}

}  // namespace Kest::Complexity
