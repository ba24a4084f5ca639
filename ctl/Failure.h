#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace Kest::Ctl {

/// How the program ends.
enum class Exit : int {
  done = 0,
  failed = 1,   // the agent refused, or `verify` found differences
  usage = 2,    // the command line, or a file that it names
  noAgent = 3,  // nobody answers at the socket
  timedOut = 4,
};

/// Why a command failed: the message for people, and the kind that `--json` shows.
class Failure : public std::runtime_error {
 public:
  Failure(Exit exit, std::string kind, std::string const& message, std::string suggestion = {})
      : std::runtime_error(message),
        exit_(exit),
        kind_(std::move(kind)),
        suggestion_(std::move(suggestion)) {}

  Exit exit() const noexcept { return exit_; }
  std::string const& kind() const noexcept { return kind_; }
  /// The name that was probably meant; empty if there is none.
  std::string const& suggestion() const noexcept { return suggestion_; }

 private:
  Exit exit_;
  std::string kind_;
  std::string suggestion_;
};

inline Failure usageFailure(std::string const& message, std::string suggestion = {}) {
  return {Exit::usage, "usage", message, std::move(suggestion)};
}

}  // namespace Kest::Ctl
