#pragma once

#include <array>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "platform/detail/ReadConverted.h"
#include "platform/mox/Strep.h"

/// Text form and reader shared by the platform's enumerations. An enumeration gives its names, in
/// order of value from 0, in one table; everything else is derived from it.
namespace Mox::detail {

template <class Enum, std::size_t count>
struct EnumText {
  char const* typeName;
  std::array<char const*, count> names;

  String8 stringValue(Enum value) const {
    auto const number = static_cast<std::size_t>(value);
    if (number < count) return names[number];
    return format("%s(%d)", typeName, static_cast<int>(value));
  }

  Enum read(String8::IteratorConst& it, String8::IteratorConst const& end) const {
    return readConverted(it, end, [this](String8 const& name) {
      for (std::size_t number = 0; number < count; ++number) {
        if (name == names[number]) return static_cast<Enum>(number);
      }
      throwRangeException(
          String8("expected " + choices() + ", found " + valueToStrep(name).charPtr()));
    });
  }

  std::vector<String8> enumerators() const { return {names.begin(), names.end()}; }

  /// The names, as in "'a', 'b' or 'c'".
  std::string choices() const {
    std::string all;
    for (std::size_t number = 0; number < count; ++number) {
      if (number > 0) all += number + 1 < count ? ", " : " or ";
      all.append("'").append(names[number]).append("'");
    }
    return all;
  }
};

}  // namespace Mox::detail
