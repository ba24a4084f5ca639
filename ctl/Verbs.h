#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "ctl/Json.h"
#include "ctl/Options.h"
#include "ctl/Present.h"

namespace Kest::Ctl {

/// What an argument names, and so how it is completed. A `subject` depends on the argument before
/// it: a file for `fault`, a device for `flip`.
enum class Completion { none, path, type, handler, file, word, subject };

/// One positional argument of a verb.
struct Parameter {
  char const* name;
  Completion completion;
  bool isOptional = false;
  bool isRepeated = false;              // takes all that are left
  std::vector<char const*> words = {};  // what `word` completes to
};

/// One verb. Parsing, help, requests, presentation and completion all come from the table.
struct Verb {
  char const* name;
  char const* help;
  std::vector<Parameter> parameters;
  /// The request of the control protocol, without the member `verb`.
  Json (*request)(Options const& options);
  /// The result for people.
  Shown (*present)(Json const& result, Options const& options, bool colour);
  double timeout = 10;  // seconds
  /// Adds to the request what a file that follows it needs, and returns the file. Null: no file.
  std::string (*file)(Options const& options, Json& request) = nullptr;
  bool hasForm = false;  // takes --text
  bool isSet = false;    // takes --replace
  bool isDump = false;   // takes --format and --output
  bool isWatch = false;  // takes --count, and goes on with events
};

/// In the order of the help.
std::span<Verb const> verbs();
/// Null when there is none.
Verb const* verbNamed(std::string const& name);

}  // namespace Kest::Ctl
