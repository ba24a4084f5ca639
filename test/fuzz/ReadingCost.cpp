#include <bit>
#include <nlohmann/json.hpp>

#include "agent/access/GenericJson.h"
#include "agent/access/JsonText.h"
#include "agent/slice/FileError.h"
#include "agent/slice/SliceFile.h"
#include "ctl/Present.h"
#include "ctl/Verbs.h"
#include "driver/sim/SimDriver.h"
#include "driver/sim/StateText.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "registry/RecordTypes.h"
#include "test/fuzz/Cost.h"
#include "test/fuzz/Fuzz.h"
#include "test/model/RecordNames.h"

/// What reading costs: libFuzzer looks for texts that cost more by the byte than others. The first
/// byte selects the reader; whether it takes the text does not matter.
namespace {

using Mox::String8;

void readStatements(std::string_view text) {
  Kest::Agent::parseSlice("fuzz.slice", text);
}

void readJson(std::string_view text) {
  Kest::Agent::parseSlice("fuzz.json", text);
}

void readFaults(std::string_view text) {
  Hardware::Kest::Sim::SimDriver().faultsAre(text);
}

void readState(std::string_view text) {
  Hardware::Kest::Sim::readState(text, "state");
}

void readRequest(std::string_view text) {
  static_cast<void>(Kest::Agent::objectFromText(text));
}

template <class Record>
void readText(std::string_view text) {
  Mox::strepToValue<Record>(String8(text));
}

template <class Record>
void readTyped(std::string_view text) {
  Kest::Agent::fromTyped(*Mox::TypeOf<Record>::type(), text);
}

void showReply(std::string_view text) {
  Kest::Ctl::Json const result = Kest::Ctl::Json::parse(text);
  Kest::Ctl::Options options;
  options.arguments = {"state"};
  for (Kest::Ctl::Verb const& verb : Kest::Ctl::verbs()) {
    try {
      verb.present(result, options, true);
    } catch (Kest::Ctl::Json::exception const&) {  // NOLINT(bugprone-empty-catch): of another form
    }
  }
}

using Hardware::Kest::Slice::ConfigDevice;
using Hardware::Kest::Slice::ConfigSwitchPort;

constexpr void (*readers[])(std::string_view) = {
    readStatements,
    readJson,
    readFaults,
    readState,
    readRequest,
    readText<ConfigSwitchPort>,
    readText<ConfigDevice>,
    readTyped<ConfigSwitchPort>,
    readTyped<ConfigDevice>,
    showReply,
};
constexpr std::size_t costs = 64, sizes = 16;

/// libFuzzer keeps an input that sets one of these for the first time: one that costs twice as much
/// by the byte as all others of its reader and about its size.
__attribute__((section("__libfuzzer_extra_counters")))
std::uint8_t dearest[std::size(readers)][sizes][costs];

/// Below, what is paid once hides what the bytes cost.
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
