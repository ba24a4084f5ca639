#include <bit>

#include "agent/access/JsonText.h"
#include "driver/sim/SimDriver.h"
#include "test/fuzz/Cost.h"
#include "test/fuzz/Fuzz.h"
#include "test/support/Readers.h"

/// Looks for texts that cost more by the byte than others. The first byte selects the reader;
/// whether it accepts the text does not matter.
namespace {

void readFaults(std::string_view text) {
  Hardware::Kest::Sim::SimDriver().faultsAre(text);
}

void readRequest(std::string_view text) {
  static_cast<void>(Kest::Agent::objectFromText(text));
}

void showReply(std::string_view text) {
  Support::showResult(Kest::Ctl::Json::parse(text));
}

using Hardware::Kest::Slice::ConfigDevice;
using Hardware::Kest::Slice::ConfigSwitchPort;

constexpr void (*readers[])(std::string_view) = {
    Support::readSliceStatements,
    Support::readSliceJson,
    readFaults,
    Support::readSimState,
    readRequest,
    Support::readText<ConfigSwitchPort>,
    Support::readText<ConfigDevice>,
    Support::readTyped<ConfigSwitchPort>,
    Support::readTyped<ConfigDevice>,
    showReply,
};
constexpr std::size_t costs = 64, sizes = 16;

/// libFuzzer keeps an input that sets one of these for the first time: one that costs twice as much
/// by the byte as all others of its reader and about its size.
__attribute__((section("__libfuzzer_extra_counters")))
std::uint8_t dearest[std::size(readers)][sizes][costs];

/// In shorter texts, fixed costs hide the cost of the bytes.
constexpr std::size_t leastBytes = 256;
/// Edges. The dearest honest text is a slice file of many small devices, at about 400; a reader
/// that compares each of 1,000 bytes with all others needs as many for that alone.
constexpr std::uint64_t mostByByte = 1000;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Fuzz::Input input(bytes, size);
  std::size_t const number = input.below(std::size(readers));
  std::string const text(input.rest());
  Fuzz::cost = 0;
  try {
    readers[number](text);
  } catch (std::exception const&) {  // NOLINT(bugprone-empty-catch): refused is fine
  }
  std::uint64_t const byByte = Fuzz::cost / (text.size() + 1);
  dearest[number][std::bit_width(text.size())][std::bit_width(byByte)] = 1;
  Fuzz::require(text.size() < leastBytes || byByte <= mostByByte,
                "a text costs no more than its size",
                std::to_string(byByte) + " edges a byte by reader " + std::to_string(number));
  return 0;
}
