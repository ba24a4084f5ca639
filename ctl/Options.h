#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kest::Ctl {

/// What the command line asks for, whatever the verb.
struct Options {
  std::optional<std::string> socket;
  std::optional<double> timeout;  // seconds
  bool json = false;
  bool text = false;                   // values as text forms
  bool replace = false;                // of a JSON record: the whole entry
  std::string format = "slice";        // of a dump
  std::string output;                  // file for a dump; empty: standard output
  std::size_t count = 0;               // of events; 0: until interrupted
  std::vector<std::string> arguments;  // positional, in order

  /// A positional argument, or nothing when there are fewer.
  std::optional<std::string> argument(std::size_t index) const {
    if (index >= arguments.size()) return std::nullopt;
    return arguments[index];
  }
};

}  // namespace Kest::Ctl
