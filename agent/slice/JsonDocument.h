#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "agent/access/GenericJson.h"
#include "agent/slice/FileError.h"

namespace Kest::Agent {

using JsonPointer = Json::json_pointer;

/// A JSON text of a file, which knows where in the text its values are.
class JsonDocument {
 public:
  /// `FileError` when it is no JSON, gives a member of an object twice, or nests too deep. Both
  /// arguments must outlive the document.
  JsonDocument(std::string_view file, std::string_view text);

  Json const& value() const noexcept { return value_; }

  /// A refusal of the value that `pointer` leads to, where its member begins.
  FileError refusal(JsonPointer const& pointer, std::string_view message) const;

 private:
  std::string_view file_;
  std::string_view text_;
  Json value_;
};

}  // namespace Kest::Agent
