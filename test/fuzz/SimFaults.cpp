#include "driver/sim/SimDriver.h"
#include "platform/fru/PciHam.h"
#include "platform/mox/RangeException.h"
#include "test/fuzz/Fuzz.h"

/// Fault files of the simulated driver: refused with a place, and then nothing has happened; or
/// taken, shown again in a form that is taken alike, and carried out call by call.
namespace {

using namespace Hardware::Kest::Sim;

constexpr std::size_t callsKept = 8;

/// A slice with a device that is down.
void prepare(SimDriver& driver) {
  Mox::Ptr<Fru::PciHam const> const handle(new Fru::PciHam("0000:05:00.0"));
  driver.deviceRename("fap0", handle);
  driver.deviceParam("fap0", {});
}

void call(SimDriver& driver, Fuzz::Input& input) {
  Mox::String8 const name = input.flag() ? "fap0" : "et1";
  bool up = false;
  switch (input.below(6)) {
    case 0:
      driver.ifadd(name, {});
      break;
    case 1:
      driver.ifdel(name);
      break;
    case 2:
      driver.nativeVlan(name, input.flag(), input.byte());
      break;
    case 3:
      driver.deviceUp(name);
      break;
    case 4:
      driver.deviceDown(name);
      break;
    default:
      driver.isDeviceUp(name, &up);
  }
}

}  // namespace

/// The file ends at the first NUL; calls are made from the rest.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Fuzz::Input input(bytes, size);
  std::string_view const text = input.takeTo('\0');
  SimDriver driver(callsKept), other(callsKept);
  prepare(driver);
  prepare(other);
  try {
    driver.faultsAre(text);
  } catch (Mox::RangeException const& refused) {
    Fuzz::requirePlace(refused.what(), "faults", text);
    Fuzz::requireSame(driver.stateText(), other.stateText(), "what is refused changes nothing");
    Fuzz::require(driver.faultsText().empty(), "what is refused plans nothing");
    return 0;
  }
  std::string const shown = driver.faultsText();
  other.faultsAre(shown);
  Fuzz::requireSame(other.faultsText(), shown, "faults are read as they are shown");
  Fuzz::Input same = input;
  for (int calls = 0; calls < 32 && !input.empty(); ++calls) {
    call(driver, input);
    call(other, same);
    Fuzz::requireSame(driver.faultsText(), other.faultsText(), "faults are used up alike");
  }
  return 0;
}
