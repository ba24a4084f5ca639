#pragma once

#include <string>

#include "ctl/Json.h"

/// Values for people. Control characters are shown as `\xHH`.
namespace Kest::Ctl {

/// A value on one line; strings without quotation marks.
std::string shown(Json const& value);

/// A value on as many lines as it takes, each ended by a newline: objects with their names in
/// front, those in them indented.
std::string page(Json const& value);

}  // namespace Kest::Ctl
