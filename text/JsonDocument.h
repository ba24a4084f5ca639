#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace Text {

/// Members stay in the order of the text.
using Json = nlohmann::ordered_json;
using JsonPointer = Json::json_pointer;

/// What is wrong with a JSON text, as "POINTER: message", or "message" of the text as a whole.
class JsonError : public std::runtime_error {
 public:
  JsonError(std::size_t at, JsonPointer const& pointer, std::string_view message);

  /// Where in the text, in bytes from 0.
  std::size_t at() const noexcept { return at_; }

 private:
  std::size_t at_;
};

/// It nests deeper than it may.
class JsonTooDeep : public JsonError {
 public:
  using JsonError::JsonError;
};

/// What a JSON text may be like.
struct JsonRules {
  std::size_t deepest = 16;  ///< arrays and objects within each other
  bool mayRepeat = false;    ///< whether an object may give a member twice: the first one counts
};

/// A JSON text, which knows where its values are. All takes time in proportion to the text's
/// length, but for the look-up of names in order to find one that is given twice.
class JsonDocument {
 public:
  /// @param text must outlive the document
  /// @throw JsonError when it is no JSON, or against the rules
  explicit JsonDocument(std::string_view text, JsonRules const& rules = {});

  Json const& value() const noexcept { return value_; }
  /// The value, which the document then no longer has.
  Json take() { return std::move(value_); }

  /// Whether the text has a value that `pointer` leads to.
  bool has(JsonPointer const& pointer) const { return value_.contains(pointer); }
  /// A refusal of the value that `pointer` leads to, at the beginning of its member, or of its
  /// parent's if there is no such value.
  JsonError refusal(JsonPointer const& pointer, std::string_view message) const;

 private:
  std::string_view text_;
  JsonRules rules_;
  Json value_;
};

}  // namespace Text
