#include <algorithm>

#include "driver/sim/ChangeLine.h"
#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"
#include "test/fuzz/Fuzz.h"

/// State files of the simulated driver: each is refused with a place, or read back as it was
/// written, as a document with changes too.
namespace {

using namespace Hardware::Kest::Sim;

SliceState readAsWritten(std::string const& written) {
  return readState(written, "written");
}

void requireReadAsWritten(SliceState const& state) {
  std::string const written = stateText(state);
  Fuzz::require(readAsWritten(written) == state, "a state is read as it was written", written);

  // Everything as a change of an empty state, and its removal as another.
  Change all, none;
  for (auto const& [name, interface] : state.interfaces.all()) {
    all.interfaces[name] = interface;
    none.interfaces[name] = std::nullopt;
  }
  for (auto const& [path, device] : state.devices.all()) {
    all.devices[path] = device;
    none.devices[path] = std::nullopt;
  }
  std::string text = stateText({});
  std::uint32_t check = checkOf(text);
  text += changeLine(changeText(all), check);
  Fuzz::require(readAsWritten(text) == state, "a change is read as it was written", text);
  text += changeLine(changeText(none), check);
  Fuzz::require(readAsWritten(text) == SliceState(), "what has gone is not read", text);
}

/// Any bytes may be a name. Short inputs are tried as one.
void requireNameKept(Mox::String8 const& name) {
  constexpr std::size_t longestTried = 32;
  if (name.empty() || name.bytes() > longestTried) return;
  Device device;
  device.name = name;
  Interface interface;
  interface.param = {1, -1, 0, name, 0, false, false, "00:1c:73:0a:0b:0c"};
  requireReadAsWritten({Interfaces({{name, interface}}), Devices({{name, device}})});
}

/// The text with each line after the document made a change that has its check: no fuzzer finds
/// one.
std::string withChecks(std::string_view text) {
  std::size_t const newline = text.find("\n+");
  std::string checked(text.substr(0, newline == text.npos ? text.size() : newline + 1));
  text.remove_prefix(checked.size());
  std::uint32_t check = checkOf(checked);
  while (!text.empty()) {
    std::string_view const line = text.substr(0, text.find('\n'));
    checked += changeLine(line.substr(std::min(line.size(), changePrefixBytes)), check);
    text.remove_prefix(std::min(text.size(), line.size() + 1));
  }
  return checked;
}

void tryText(std::string_view text) {
  SliceState state;
  try {
    state = readState(text, "state");
  } catch (Mox::RangeException const& refused) {
    Fuzz::requirePlace(refused.what(), "state", text);
    return;
  }
  requireReadAsWritten(state);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  std::string_view const text = Fuzz::Input(bytes, size).rest();
  requireNameKept(Mox::String8(text));
  tryText(text);
  tryText(withChecks(text));
  return 0;
}
