#include <gtest/gtest.h>

#include "test/ctl/KestctlRun.h"

namespace Kest::Ctl {
namespace {

using KestctlHelp = KestctlRun;

TEST_F(KestctlHelp, ListsTheVerbsAndWhatIsTheSameForAll) {
  for (char const* option : {"--help", "-h"}) {
    Outcome const help = runAlone({KEST_CTL, option});
    EXPECT_EQ(help.out,
              R"(Talks to a running kest-slice-agent.
Usage: kestctl VERB [ARGUMENTS] [OPTIONS]

Verbs:
  types                    List the types of the registry
  describe TYPE            Describe a type: constructor, attributes, handlers
  get PATH                 Read an object, an attribute, an entry or a field
  set PATH VALUE           Change an attribute, an entry or a field
  del PATH                 Remove an entry
  notify PATH              Announce an entry again
  call HANDLER [ARGS...]   Call a handler of the state machine; doVerify asserts
  verify                   Report where configuration, status and driver differ; fails if they do
  show                     Show devices and ports: configuration / status / driver
  apply FILE               Bring the configuration in line with a slice file
  diff FILE                Show what apply would change; fails if that is anything
  dump                     Write the configuration as a slice file
  watch                    Show changes of configuration and status as they happen
  trace [SETTING]          Show the trace setting, or change it: FACILITY/LEVELS[,...]
  driver ACTION [SUBJECT]  Inspect or steer the simulated driver: log, dump, state, fault FILE, flip DEVICE
  mode [MODE]              Show the state machine's mode, or set it

Options of every verb: --socket PATH, --timeout SECONDS, --json, --help.
The socket is --socket, KEST_SLICE_AGENT_SOCKET, /run/kest-slice-agent.sock for root, or
kest-slice-agent.sock in XDG_RUNTIME_DIR.
Exit codes: 0 done, 1 failed or different, 2 usage, 3 no agent, 4 timed out.
)");
    EXPECT_EQ(help.errors, "");
    EXPECT_EQ(help.exit, 0);
  }
}

TEST_F(KestctlHelp, OfAVerbHasItsArgumentsAndOptions) {
  Outcome const help = runAlone({KEST_CTL, "get", "--help"});
  EXPECT_EQ(help.out,
            R"(Read an object, an attribute, an entry or a field
Usage: kestctl get [OPTIONS] PATH

Positionals:
  PATH TEXT REQUIRED          

Options:
  -h,--help                   Print this help message and exit
  --socket PATH               The agent's control socket
  --timeout SECONDS           How long to wait for the agent, in seconds
  --json                      One JSON document, for errors too
  --text                      Values as text forms

)");
  EXPECT_EQ(help.errors, "");
  EXPECT_EQ(help.exit, 0);
}

TEST_F(KestctlHelp, VersionIsTheProducts) {
  Outcome const version = runAlone({KEST_CTL, "--version"});
  EXPECT_EQ(version.out, "kestctl " KEST_VERSION "\n");
  EXPECT_EQ(version.exit, 0);
}

}  // namespace
}  // namespace Kest::Ctl
