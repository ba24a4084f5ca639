#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "agent/wire/Protocol.h"

namespace Kest::Agent {

/// Refuses a request; holds what its reply says.
class ControlError : public std::runtime_error {
 public:
  ControlError(Wire::ErrorKind kind, std::string const& message, std::string suggestion = {})
      : std::runtime_error(message), kind_(kind), suggestion_(std::move(suggestion)) {}

  Wire::ErrorKind kind() const noexcept { return kind_; }
  /// The name that was probably meant; empty if there is none.
  std::string const& suggestion() const noexcept { return suggestion_; }

 private:
  Wire::ErrorKind kind_;
  std::string suggestion_;
};

}  // namespace Kest::Agent
