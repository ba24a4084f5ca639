#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"
#include "test/fuzz/Fuzz.h"

/// State files of the simulated driver: refused with a place, or read back as they are written.
namespace {

using namespace Hardware::Kest::Sim;

void requireReadAsWritten(SliceState const& state) {
  std::string const written = stateText(state);
  Fuzz::require(readState(written, "written") == state, "a state is read as it was written",
                written);
}

/// Any bytes may be a name. Short inputs are tried as one.
void requireNameKept(Mox::String8 const& name) {
  constexpr std::size_t longestName = 32;
  if (name.empty() || name.bytes() > longestName) return;
  Device device;
  device.name = name;
  Interface interface;
  interface.param = {1, -1, 0, name, 0, false, false, "00:1c:73:0a:0b:0c"};
  requireReadAsWritten({Interfaces({{name, interface}}), Devices({{name, device}})});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  std::string_view const text = Fuzz::Input(bytes, size).rest();
  requireNameKept(Mox::String8(text));
  SliceState state;
  try {
    state = readState(text, "state");
  } catch (Mox::RangeException const& refused) {
    Fuzz::require(refused.text().view().starts_with("state:"), "a refusal names the file",
                  refused.what());
    return 0;
  }
  requireReadAsWritten(state);
  return 0;
}
