#include "ctl/ReplyText.h"

#include <cstddef>

#include "text/JsonDocument.h"

namespace Kest::Ctl {

Json jsonFromReply(std::string_view text) {
  constexpr std::size_t deepest = 100;  // it is walked recursively
  try {
    return Text::JsonDocument(text, {deepest, true}).take();
  } catch (Text::JsonTooDeep const&) {
    throw BadReplyText("it is nested too deep");
  } catch (Text::JsonError const&) {
    throw BadReplyText("it is no JSON");
  }
}

}  // namespace Kest::Ctl
