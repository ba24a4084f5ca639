#pragma once

#include "platform/mox/Strep.h"

namespace Mox::detail {

/// Reads a string and returns `convert(string)`. A string that `convert` refuses is refused as a
/// whole: `it` then stands in front of it, after the blanks.
template <class Convert>
auto readConverted(String8::IteratorConst& it, String8::IteratorConst const& end,
                   Convert const& convert) {
  needString(it, end, " ");
  String8::IteratorConst const start = it;
  String8 const text = sequenceToValue(it, end, static_cast<String8*>(nullptr));
  try {
    return convert(text);
  } catch (RangeException const&) {
    it = start;
    throw;
  }
}

}  // namespace Mox::detail
