#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ctl/Failure.h"
#include "ctl/Options.h"
#include "ctl/Verbs.h"

namespace Kest::Ctl {

struct Command {
  Verb const* verb = nullptr;
  Options options;
};

/// The command, or the text that `--help` or `--version` asks for.
/// @throw Failure of kind `usage`
std::variant<Command, std::string> readCommandLine(std::vector<std::string> const& words);

/// What `--format` takes.
std::vector<std::string> formats();
/// The options that a verb takes, as they are typed.
std::vector<std::string> optionNames(Verb const& verb);
/// The kind of value that an option of a verb takes, as in the help: `FILE`, `SECONDS`. Empty for a
/// flag, or when the verb has no such option.
std::string optionValue(Verb const& verb, std::string const& name);

}  // namespace Kest::Ctl
