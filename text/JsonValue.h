#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "text/JsonDocument.h"

/// Reads values of JSON documents into what they mean. A null pointer stands for a value that a
/// document does not have.
namespace Text {

/// A value that is not what it should be.
struct JsonMisfit {
  JsonPointer pointer;  ///< to the value, from where this is caught
  std::string message;
};

[[noreturn]] void refuseJson(std::string message);
/// "expected EXPECTED, found VALUE"
[[noreturn]] void refuseJson(Json const* value, std::string const& expected);

/// What `work` refuses is the member of that name, or in it.
template <class Work>
void inMember(std::string const& name, Work const& work) {
  try {
    work();
  } catch (JsonMisfit const& misfit) {
    throw JsonMisfit{JsonPointer() / name / misfit.pointer, misfit.message};
  }
}

void needObject(Json const* value);

void readJson(Json const* value, bool& flag);

template <std::integral Number>
void readJson(Json const* value, Number& number) {
  using Limits = std::numeric_limits<Number>;
  bool const fits =
      value != nullptr && value->is_number_integer() &&
      (value->is_number_unsigned() ? std::in_range<Number>(value->get<std::uint64_t>())
                                   : std::in_range<Number>(value->get<std::int64_t>()));
  if (!fits) {
    refuseJson(value, "an integer from " + std::to_string(Limits::min()) + " to " +
                          std::to_string(Limits::max()));
  }
  number = value->get<Number>();
}

}  // namespace Text
