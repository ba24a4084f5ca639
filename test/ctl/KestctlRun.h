#pragma once

#include <map>
#include <string>
#include <vector>

#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Ctl {

/// What came of one run of kestctl.
struct Outcome {
  int exit = -1;  ///< its exit code, or minus the signal that ended it
  std::string out;
  std::string errors;
  /// What the agent was asked, line by line, each with the bytes that follow it.
  std::vector<std::string> requests;
};

class ScriptedAgent;

/// Runs the real kestctl against an agent that answers as it is told, in a directory of its own.
class KestctlRun : public Agent::ScratchDirectory {
 protected:
  /// What an agent sends for one request: whole lines, or anything else. It ends the connection
  /// after the last reply that it has.
  using Replies = std::vector<std::string>;

  /// kestctl with these arguments.
  /// @param replies none: there is an agent, but it never answers
  Outcome run(std::vector<std::string> const& arguments, Replies const& replies,
              std::string const& input = "");
  /// Any command, in the directory.
  Outcome runServed(std::vector<std::string> const& command, Replies const& replies,
                    std::string const& input = "");
  /// The same without any agent.
  Outcome runAlone(std::vector<std::string> const& command);

  /// A reply with that result.
  static std::string ok(std::string const& result) {
    return R"({"ok":true,"result":)" + result + "}\n";
  }

  std::string socket() const { return directory + "/agent.sock"; }

  /// Beside the control socket.
  std::map<std::string, std::string> environment;
  /// Whether standard output is a terminal.
  bool isOnTerminal = false;
  /// Whether the agent has no room for another client until kestctl waits for some.
  bool isBusy = false;

 private:
  Outcome serve(std::vector<std::string> const& command, std::string const& input,
                ScriptedAgent* agent);
};

}  // namespace Kest::Ctl
