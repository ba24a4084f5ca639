#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"
#include "test/fuzz/Fuzz.h"

/// State files of the simulated driver: refused with a place, or read back as they are written.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  using namespace Hardware::Kest::Sim;
  std::string_view const text = Fuzz::Input(bytes, size).rest();
  SliceState state;
  try {
    state = readState(text, "state");
  } catch (Mox::RangeException const& refused) {
    Fuzz::require(refused.text().view().starts_with("state:"), "a refusal names the file",
                  refused.what());
    return 0;
  }
  std::string const written = stateText(state);
  Fuzz::require(readState(written, "written") == state, "a state is read as it was written",
                written);
  return 0;
}
