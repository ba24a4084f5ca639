#pragma once

#include <string>
#include <string_view>

/// Bytes of any origin, made fit to be shown or to be stored.
namespace Text {

bool isUtf8(std::string_view bytes);

/// Control characters as `\xHH`, so that a terminal shows what is there and does nothing else.
std::string visible(std::string_view text);
/// The same, but newlines stay.
std::string visibleLines(std::string_view text);

/// A long text without its middle, for a message.
std::string shortened(std::string_view text);

/// Any bytes as the UTF-8 that a JSON string must be: `%` becomes `%25`, and if the bytes as a
/// whole are not UTF-8, each from 0x80 becomes `%XX`, with capitals. So all bytes have exactly one
/// form.
std::string percentEncoded(std::string_view bytes);
/// Never fails: `text` is the form of some bytes exactly if it is the form of the result.
std::string percentDecoded(std::string_view text);

}  // namespace Text
