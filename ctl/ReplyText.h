#pragma once

#include <stdexcept>
#include <string_view>

#include "ctl/Json.h"

namespace Kest::Ctl {

/// What is wrong with a reply's text.
class BadReplyText : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The JSON of a reply, however long, in time that grows with its length alone. If a name comes
/// twice in an object, the first one counts.
/// @throw BadReplyText it is no JSON, or nests too deep to be walked
Json jsonFromReply(std::string_view text);

}  // namespace Kest::Ctl
