#include <nlohmann/json.hpp>

#include "ctl/Present.h"
#include "ctl/Verbs.h"
#include "test/fuzz/Fuzz.h"
#include "text/Escapes.h"

/// Replies that the client shows: an agent of another version may send anything. A reply is shown,
/// or is of the wrong form (a JSON exception, which the client reports). Apart from dumps, nothing
/// but printable UTF-8 reaches a terminal.
namespace {

using namespace Kest::Ctl;

/// In UTF-8, U+0080 to U+009F are 0xC2 and one byte.
bool hasControls(std::string const& text) {
  unsigned before = 0;
  for (char const c : text) {
    auto const byte = static_cast<unsigned char>(c);
    bool const isLow = (byte < 0x20 && byte != '\n') || byte == 0x7F;
    if (isLow || (before == 0xC2 && byte < 0xA0)) return true;
    before = byte;
  }
  return false;
}

void requireHarmless(std::string const& text) {
  Fuzz::require(Text::isUtf8(text), "what is shown is UTF-8", text);
  Fuzz::require(!hasControls(text), "what is shown has no control characters", text);
}

void present(Verb const& verb, Json const& result, Options const& options) {
  try {
    std::string const text = verb.present(result, options, false).text;
    if (!verb.isDump) requireHarmless(text);
  } catch (Json::exception const&) {
  }
}

}  // namespace

/// The first byte chooses the verb, the second the driver's action.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  static char const* const actions[] = {"log", "dump", "state", "flip", "fault"};
  Fuzz::Input input(bytes, size);
  Verb const& verb = verbs()[input.byte() % verbs().size()];
  Options options;
  options.arguments = {actions[input.below(std::size(actions))], "fap0"};
  Json const result = Json::parse(input.rest(), nullptr, false);
  if (result.is_discarded()) return 0;
  present(verb, result, options);
  try {
    requireHarmless(eventLine(result));
  } catch (Json::exception const&) {
  }
  return 0;
}
