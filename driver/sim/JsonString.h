#pragma once

#include <string>
#include <string_view>

/// Any bytes as the UTF-8 that a JSON string must be: `%` is written as `%25`, and where the bytes
/// are not UTF-8 as a whole, each from 0x80 as `%XX`, with capitals. So all bytes have one form.
namespace Hardware::Kest::Sim {

std::string escaped(std::string_view bytes);
/// Never fails: `text` is the form of some bytes exactly if it is the form of the result.
std::string unescaped(std::string_view text);

}  // namespace Hardware::Kest::Sim
