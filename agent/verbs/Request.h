#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

#include "agent/verbs/Answer.h"

namespace Kest::Agent {

/// The members of a request. What is missing or of the wrong type is refused with a `ControlError`
/// of kind request.
class Request {
 public:
  /// @param json an object, which must outlive this
  /// @param later takes a result that comes after the answer
  explicit Request(Json const& json, Later later = {}) : json_(json), later_(std::move(later)) {}

  Later const& later() const noexcept { return later_; }

  /// Refuses members besides these, `verb` and `id`.
  void checkMembers(std::initializer_list<char const*> known) const;

  /// Null when it is not there.
  Json const* find(char const* member) const;
  std::string string(char const* member) const;
  std::optional<std::string> optionalString(char const* member) const;
  /// One of `words`; the first of them when the member is not there.
  std::string oneOf(char const* member, std::initializer_list<char const*> words) const;

 private:
  Json const& json_;
  Later later_;
};

}  // namespace Kest::Agent
