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

/// The command, or the text that `--help` or `--version` asked for. `Failure` of kind `usage`.
std::variant<Command, std::string> readCommandLine(std::vector<std::string> const& words);

/// The options that a verb takes, as they are typed.
std::vector<std::string> optionNames(Verb const& verb);

}  // namespace Kest::Ctl
