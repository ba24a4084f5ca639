#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "test/ctl/KestctlRun.h"
#include "test/support/UnixSocket.h"

namespace Kest::Ctl {
namespace {

class KestctlFailure : public KestctlRun {
 protected:
  static std::string document(std::string const& kind, std::string const& message) {
    return R"({"error":{"kind":")" + kind + R"(","message":")" + message + "\"}}\n";
  }
};

TEST_F(KestctlFailure, WhatTheAgentRefusesIsSaidWithWhatWasMeant) {
  std::string const refusal =
      R"({"ok":false,"error":{"kind":"path","message":"no 'x'\n  here","suggestion":"y"}})"
      "\n";
  Outcome const people = run({"get", "x"}, {refusal});
  EXPECT_EQ(people.errors, "kestctl: no 'x'\n  here\ndid you mean 'y'?\n");
  EXPECT_EQ(people.out, "");
  EXPECT_EQ(people.exit, 1);
  Outcome const programs = run({"get", "x", "--json"}, {refusal});
  EXPECT_EQ(programs.out, R"({"error":{"kind":"path","message":"no 'x'\n  here","suggestion":"y"}})"
                          "\n");
  EXPECT_EQ(programs.errors, "");
  EXPECT_EQ(programs.exit, 1);
}

TEST_F(KestctlFailure, WithoutAnAgentItSaysWhere) {
  std::string const message =
      "no agent at " + socket() + ": No such file or directory (--socket names another socket)";
  Outcome const people = runAlone({KEST_CTL, "types"});
  EXPECT_EQ(people.errors, "kestctl: " + message + "\n");
  EXPECT_EQ(people.exit, 3);
  Outcome const programs = runAlone({KEST_CTL, "types", "--json"});
  EXPECT_EQ(programs.out, document("no-agent", message));
  EXPECT_EQ(programs.exit, 3);
  Outcome const longPath = runAlone({KEST_CTL, "types", "--socket", std::string(200, 'x')});
  EXPECT_EQ(longPath.errors, "kestctl: no agent at " + std::string(200, 'x') +
                                 ": that is no path of a socket (--socket names another socket)\n");
  Outcome const folder = runAlone({KEST_CTL, "types", "--socket", "/"});
  EXPECT_EQ(folder.errors,
            "kestctl: no agent at /: Connection refused (--socket names another socket)\n");
  EXPECT_EQ(folder.exit, 3);
}

TEST_F(KestctlFailure, AnAgentThatDoesNotAnswerInTimeIsNotWaitedFor) {
  Outcome const people = run({"types", "--timeout", "0.1"}, {});
  EXPECT_EQ(people.errors, "kestctl: the agent did not answer in time\n");
  EXPECT_EQ(people.exit, 4);
  Outcome const programs = run({"watch", "--timeout", "0.1", "--json"}, {});
  EXPECT_EQ(programs.out, document("timeout", "the agent did not answer in time"));
  EXPECT_EQ(programs.exit, 4);
}

/// The only client of an agent that takes none.
class FullBacklog {
 public:
  explicit FullBacklog(std::string const& path) {
    EXPECT_EQ(Support::bindTo(listener_, path), 0);
    EXPECT_EQ(listen(listener_, 0), 0);
    EXPECT_EQ(Support::connectTo(first_, path), 0);
  }
  ~FullBacklog() {
    close(first_);
    close(listener_);
  }
  FullBacklog(FullBacklog const&) = delete;
  FullBacklog& operator=(FullBacklog const&) = delete;

 private:
  int listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int first_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

TEST_F(KestctlFailure, ABusySocketIsWaitedForToTheDeadline) {
  std::string const path = directory + "/full.sock";
  FullBacklog const full(path);
  Outcome const outcome = runAlone({KEST_CTL, "types", "--socket", path, "--timeout", "0.1"});
  EXPECT_EQ(outcome.errors, "kestctl: the agent took no connection in time\n");
  EXPECT_EQ(outcome.exit, 4);
}

TEST_F(KestctlFailure, ABusySocketIsWaitedForUntilThereIsRoom) {
  isBusy = true;
  Outcome const outcome =
      run({"mode", "--timeout", "60"}, {ok(R"({"mode":"smModePolling","number":2})")});
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.exit, 0);
  EXPECT_EQ(outcome.requests.size(), 1U);
}

TEST_F(KestctlFailure, TheEndOfTheAgentIsOneLineThatSaysWhereToLook) {
  std::string const message =
      "the agent has ended, or has ended the connection: its log or its standard error says why; "
      "try again when it is running";
  for (char const* reply : {"", "{\"ok\":true"}) {
    Outcome const people = run({"types"}, {reply});
    EXPECT_EQ(people.errors, "kestctl: " + message + "\n");
    EXPECT_EQ(people.exit, 3);
    Outcome const programs = run({"types", "--json"}, {reply});
    EXPECT_EQ(programs.out, document("no-agent", message));
    EXPECT_EQ(programs.exit, 3);
  }
}

TEST_F(KestctlFailure, AReplyThatIsNoneIsNoCrash) {
  struct {
    std::string reply;
    std::string message;
  } const cases[] = {
      {"nonsense\n", "it is no JSON"},
      {"\n", "it is no JSON"},
      {R"({"ok":true,"result":)" + std::string(1000000, '[') + "\n", "it is nested too deep"},
      {std::string(1000000, '{') + "\n", "it is no JSON"},
      {"[]\n", "it is no object"},
      {"7\n", "it is no object"},
      {"{}\n", "it has no 'ok'"},
      {"{\"ok\":true}\n", "it has no 'result'"},
      {"{\"ok\":false}\n", "it has no 'error'"},
      {"{\"ok\":1,\"error\":7}\n", "its error is no object"},
      {"{\"ok\":false,\"error\":{}}\n", "it has no 'kind'"},
      {"{\"ok\":false,\"error\":{\"kind\":7}}\n", "expected a string, found 7"},
      {"{\"ok\":false,\"error\":{\"kind\":\"k\"}}\n", "it has no 'message'"},
      {"{\"ok\":false,\"error\":{\"kind\":\"k\",\"message\":null}}\n",
       "expected a string, found null"},
      {"{\"ok\":false,\"error\":{\"kind\":\"k\",\"message\":\"m\",\"suggestion\":1}}\n",
       "expected a string, found 1"},
  };
  for (auto const& [reply, message] : cases) {
    Outcome const outcome = run({"types"}, {reply});
    EXPECT_EQ(outcome.errors, "kestctl: the agent's reply cannot be used: " + message + "\n")
        << reply;
    EXPECT_EQ(outcome.exit, 1) << reply;
  }
}

/// Whatever verb it is the result of.
TEST_F(KestctlFailure, AResultOfTheWrongShapeIsNoCrash) {
  fileIs("f", "");
  std::vector<std::vector<std::string>> const verbs{
      {"types"},    {"describe", "T"}, {"get", "p"},      {"set", "p", "v"},
      {"del", "p"}, {"notify", "p"},   {"call", "h"},     {"verify"},
      {"show"},     {"apply", "f"},    {"diff", "f"},     {"dump"},
      {"trace"},    {"mode"},          {"driver", "log"}, {"driver", "state"}};
  for (auto const& verb : verbs) {
    for (char const* result : {"7", "null", "\"text\"", "[7]", R"({"devices":7,"ports":[{}]})",
                               R"({"value":1,"path":2,"text":3,"content":4,"steps":5})"}) {
      Outcome const outcome = run(verb, {ok(result)});
      EXPECT_TRUE(outcome.exit == 0 || outcome.exit == 1)
          << testing::PrintToString(verb) << " " << result << ": " << outcome.exit;
      if (outcome.exit == 0) continue;
      EXPECT_TRUE(outcome.errors.starts_with("kestctl: the agent's reply cannot be used: "))
          << testing::PrintToString(verb) << " " << result << ": " << outcome.errors;
    }
  }
}

TEST_F(KestctlFailure, AReplyThatNeverEndsIsGivenUp) {
  Outcome const outcome = run({"types"}, {std::string((std::size_t{256} << 20) + 70000, 'x')});
  EXPECT_EQ(outcome.errors, "kestctl: the agent's reply cannot be used: it is too long\n");
  EXPECT_EQ(outcome.exit, 1);
}

TEST_F(KestctlFailure, AFileThatCannotBeReadIsNamedBeforeAnythingIsAsked) {
  Outcome const missing = run({"apply", "no.slice"}, {});
  EXPECT_EQ(missing.errors, "kestctl: no.slice cannot be read: No such file or directory\n");
  EXPECT_EQ(missing.exit, 2);
  EXPECT_TRUE(missing.requests.empty());
  Outcome const folder = run({"diff", "."}, {});
  EXPECT_EQ(folder.errors, "kestctl: . cannot be read: Is a directory\n");
  EXPECT_EQ(run({"driver", "fault", "/dev/zero"}, {}).errors,
            "kestctl: /dev/zero is too long: more than 1048576 bytes\n");
  fileIs("latin", "# one\n# caf\xe9\n");
  EXPECT_EQ(run({"driver", "fault", "latin"}, {}).errors, "kestctl: latin:2: expected UTF-8\n");
}

TEST_F(KestctlFailure, AnInputThatCannotBeReadReplacesNoFaults) {
  std::string const command = std::string(KEST_CTL) + " driver fault - <&-";
  Outcome const outcome = runServed({"/bin/bash", "-c", command}, {});
  EXPECT_EQ(outcome.errors, "kestctl: standard input cannot be read: Bad file descriptor\n");
  EXPECT_EQ(outcome.exit, 2);
  EXPECT_TRUE(outcome.requests.empty());
}

TEST_F(KestctlFailure, AnAnswerToAnotherQuestionIsNoAnswer) {
  Outcome const outcome = run({"driver", "log"}, {ok("{}")});
  EXPECT_EQ(outcome.errors,
            "kestctl: the agent's reply cannot be used: [json.exception.out_of_range.403] key "
            "'text' not found\n");
  EXPECT_EQ(outcome.exit, 1);
}

TEST_F(KestctlFailure, WhenNobodyReadsItEndsQuietly) {
  std::string const command =
      "exec 3> >(:); wait $!; " + std::string(KEST_CTL) + " types >&3; echo $?";
  Outcome const outcome = runServed({"/bin/bash", "-c", command}, {ok("[]")});
  EXPECT_EQ(outcome.out, "0\n");
  EXPECT_EQ(outcome.errors, "");
}

TEST_F(KestctlFailure, OutputThatIsLostIsSaid) {
  for (std::string const option : {"", " --json"}) {
    std::string const command = std::string(KEST_CTL) + " types" + option + " >/dev/full; echo $?";
    Outcome const outcome = runServed({"/bin/bash", "-c", command}, {ok("[]")});
    EXPECT_EQ(outcome.errors,
              "kestctl: standard output cannot be written: No space left on device\n");
    EXPECT_EQ(outcome.out, "1\n");
  }
}

struct BadCommand {
  std::vector<std::string> arguments;
  std::string message;
};

TEST_F(KestctlFailure, BadCommandLinesAreRefusedWithWhatIsWrong) {
  std::vector<BadCommand> const cases{
      {{}, "expected a verb; kestctl --help lists them"},
      {{""}, "there is no verb ''; kestctl --help lists them"},
      {{"frobnicate"}, "there is no verb 'frobnicate'; kestctl --help lists them"},
      {{"--socket"}, "expected a verb before '--socket'; kestctl --help lists them"},
      {{"vrify"}, "there is no verb 'vrify'; kestctl --help lists them\ndid you mean 'verify'?"},
      {{"Get", "x"}, "there is no verb 'Get'; kestctl --help lists them\ndid you mean 'get'?"},
      {{"types", "x"}, "types: The following argument was not expected: x"},
      {{"describe"}, "describe: TYPE is required"},
      {{"set", "a"}, "set: VALUE is required"},
      {{"set", "a", "b", "c"}, "set: The following argument was not expected: c"},
      {{"apply"}, "apply: FILE is required"},
      {{"mode", "a", "b"}, "mode: The following argument was not expected: b"},
      {{"driver"}, "driver: ACTION is required"},
      {{"driver", "lag"}, "driver has no action 'lag'\ndid you mean 'log'?"},
      {{"driver", "zzzzz"}, "driver has no action 'zzzzz'"},
      {{"driver", "flip"}, "driver flip needs a DEVICE"},
      {{"driver", "fault"}, "driver fault needs a FILE, or -"},
      {{"driver", "log", "x"}, "driver log takes no further argument"},
      {{"get", "\xff"}, "get: expected UTF-8 in argument 1"},
      {{"types", "--timeout", "1", "--timeout", "2"},
       "types: --timeout: At Most 1 required but received 2"},
      {{"types", "--frob"}, "types: The following argument was not expected: --frob"},
      {{"types", "--text"}, "types: The following argument was not expected: --text"},
      {{"get", "a", "--count", "1"}, "get: The following arguments were not expected: 1 --count"},
      {{"types", "--timeout"}, "types: --timeout: 1 required SECONDS missing"},
      {{"types", "--timeout", "nan"}, "types: --timeout: expected a number above 0, found 'nan'"},
      {{"types", "--timeout", "x"}, "types: --timeout: expected a number above 0, found 'x'"},
      {{"types", "--timeout", "0"}, "types: --timeout: expected a number above 0, found '0'"},
      {{"types", "--socket"}, "types: --socket: 1 required PATH missing"},
      {{"watch", "--count", "x"}, "watch: --count: expected a number above 0, found 'x'"},
      {{"watch", "--count", "0"}, "watch: --count: expected a number above 0, found '0'"},
      {{"dump", "--format", "xml"}, "dump: --format: xml not in {slice,json}"},
  };
  for (auto const& [arguments, message] : cases) {
    std::vector<std::string> command{KEST_CTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Outcome const outcome = runAlone(command);
    EXPECT_EQ(outcome.errors, "kestctl: " + message + "\n");
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.exit, 2) << message;
  }
}

TEST_F(KestctlFailure, ABadCommandLineIsADocumentToo) {
  Outcome const outcome = runAlone({KEST_CTL, "get", "--json"});
  EXPECT_EQ(outcome.out, document("usage", "get: PATH is required"));
  EXPECT_EQ(outcome.exit, 2);
}

}  // namespace
}  // namespace Kest::Ctl
