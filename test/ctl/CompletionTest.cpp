#include <gtest/gtest.h>

#include "test/ctl/KestctlRun.h"

namespace Kest::Ctl {
namespace {

class Completion : public KestctlRun {
 protected:
  std::string complete(std::vector<std::string> const& words, Replies const& replies = {}) {
    std::vector<std::string> arguments{"complete", "--"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    Outcome outcome;
    if (replies.empty()) {
      arguments.insert(arguments.begin(), KEST_CTL);
      outcome = runAlone(arguments);
    } else {
      outcome = run(arguments, replies);
      asked = outcome.requests.at(0);
    }
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.exit, 0);
    return outcome.out;
  }

  /// What bash makes of a command line, with the cursor after it.
  std::string bash(std::string const& line, std::string const& result) {
    environment["PATH"] = std::string(KEST_CTL_FOLDER) + ":/usr/bin:/bin";
    std::string const script = std::string("source ") + KEST_CTL_COMPLETION +
                               "; compopt() { echo \"compopt $*\"; }; COMP_LINE=$0; "
                               "COMP_POINT=${#0}; _kestctl; printf '%s\\n' \"${COMPREPLY[@]}\"";
    std::vector<std::string> const command{"/bin/bash", "-c", script, line};
    Outcome const outcome = result.empty() ? runAlone(command) : runServed(command, {ok(result)});
    EXPECT_EQ(outcome.errors, "");
    return outcome.out;
  }

  std::string asked;
};

TEST_F(Completion, KnowsVerbsOptionsAndActions) {
  EXPECT_EQ(complete({"d"}), "describe\ndel\ndiff\ndump\ndriver\n");
  EXPECT_EQ(complete({"driver", ""}), "log\ndump\nstate\nfault\nflip\n");
  EXPECT_EQ(complete({"driver", "f"}), "fault\nflip\n");
  EXPECT_EQ(complete({"mode", "p"}), "polling\n");
  EXPECT_EQ(complete({"dump", "--f"}), "--format\n");
  EXPECT_EQ(complete({"get", "--t"}), "--timeout\n--text\n");
  EXPECT_EQ(complete({"get", "--", "--t"}), "");
  EXPECT_EQ(complete({"driver", "--json", "fl"}), "flip\n");
  EXPECT_EQ(complete({"dump", "-o", ""}), "file:\n");
  EXPECT_EQ(complete({"get", "--socket", "/r"}), "file:\n");
  EXPECT_EQ(complete({"dump", "--format", ""}), "slice\njson\n");
  EXPECT_EQ(complete({"dump", "--timeout", ""}), "");
  EXPECT_EQ(complete({"apply", ""}), "file:\n");
  EXPECT_EQ(complete({"apply", "a", ""}), "");
  EXPECT_EQ(complete({"types", ""}), "");
  EXPECT_EQ(complete({"nonsense", ""}), "");
  EXPECT_EQ(complete({"set", "p", ""}), "");
}

TEST_F(Completion, AsksTheAgentForItsNames) {
  EXPECT_EQ(complete({"get", "config/n"}, {ok(R"(["config/name","config/nativeVlan/"])")}),
            "config/name\nconfig/nativeVlan/\n");
  EXPECT_EQ(asked, R"({"verb":"complete","path":"config/n"})");
  EXPECT_EQ(complete({"describe", "Mox"}, {ok(R"(["Mox::Dir"])")}), "Mox::Dir\n");
  EXPECT_EQ(asked, R"({"verb":"complete","type":"Mox"})");
  EXPECT_EQ(complete({"driver", "flip", "f"}, {ok(R"(["config/device/fap0"])")}), "fap0\n");
  EXPECT_EQ(asked, R"({"verb":"complete","path":"config/device/f"})");
  EXPECT_EQ(complete({"driver", "fault", ""}), "file:\n");
  EXPECT_EQ(complete({"driver", "log", ""}), "");
  EXPECT_EQ(complete({"call", "--timeout", "3", "do"}, {ok(R"(["doVerify"])")}), "doVerify\n");
  EXPECT_EQ(asked, R"({"verb":"complete","handler":"do"})");
}

TEST_F(Completion, IsSilentWithoutAnAgentAndWhateverItAnswers) {
  EXPECT_EQ(complete({"get", "config/"}), "");
  EXPECT_EQ(complete({"get", "config/"}, {"nonsense\n"}), "");
  EXPECT_EQ(complete({"get", "config/"}, {ok("7")}), "");
  EXPECT_EQ(complete({"get", "config/"}, {ok(R"(["config/a\u001b[31m","config/b"])")}),
            "config/b\n");
  Outcome const unanswered = run({"complete", "--", "get", "config/"}, {});
  EXPECT_EQ(unanswered.out + unanswered.errors, "");
  EXPECT_EQ(unanswered.exit, 0);
}

TEST_F(Completion, InBashLeavesOutWhatIsOnTheLineAlready) {
  EXPECT_EQ(bash("kestctl ver", ""), "verify\n");
  EXPECT_EQ(bash("kestctl apply ", ""), "compopt -o default\n\n");
  EXPECT_EQ(bash("kestctl get config/n", R"(["config/nativeVlan/"])"),
            "compopt -o nospace\nconfig/nativeVlan/\n");
  EXPECT_EQ(bash("kestctl describe Mox::D", R"(["Mox::Dir"])"), "Dir\n");
}

}  // namespace
}  // namespace Kest::Ctl
