#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

/// JSON texts read into values that know where they are in the text.
namespace Hardware::Kest::Sim {

/// The text of a file. Both arguments must outlive it.
class SourceText {
 public:
  SourceText(std::string_view text, std::string const& name) : text_(text), name_(name) {}

  std::string_view text() const { return text_; }

  /// @param pointer shown in front of the message, unless it leads to the whole document
  /// @throw Mox::RangeException "NAME:LINE:COLUMN: POINTER: MESSAGE", of the byte at that offset
  [[noreturn]] void refuse(std::size_t at, nlohmann::json::json_pointer const& pointer,
                           std::string const& message) const;

 private:
  std::string_view text_;
  std::string const& name_;
};

struct JsonNode {
  explicit JsonNode(std::size_t offset) : at(offset) {}

  std::size_t at;                           ///< offset of the member's name, or of the document
  nlohmann::json value;                     ///< of an object: one without members
  std::map<std::string, JsonNode> members;  ///< of an object
};

/// The one value of the text from `begin` to `end`. Takes time in proportion to its length (but for
/// the look-up of names). Refuses what is no JSON, arrays, members that are given twice, and
/// objects nested more than 16 deep.
JsonNode readJson(SourceText const& source, std::size_t begin, std::size_t end);

}  // namespace Hardware::Kest::Sim
