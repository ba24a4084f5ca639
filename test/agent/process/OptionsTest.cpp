#include "agent/process/Options.h"

#include <gtest/gtest.h>

#include "agent/process/Version.h"

namespace Kest::Agent {
namespace {

/// What came of a command line, and what was shown.
struct Outcome {
  std::variant<Options, Exit> result;
  std::string out;
  std::string err;
};

Outcome parse(std::vector<char const*> arguments) {
  arguments.insert(arguments.begin(), "kest-slice-agent");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  std::variant<Options, Exit> result =
      parseOptions(static_cast<int>(arguments.size()), arguments.data());
  return {std::move(result), testing::internal::GetCapturedStdout(),
          testing::internal::GetCapturedStderr()};
}

TEST(Options, HaveDefaults) {
  Options const options = std::get<Options>(parse({"a.slice"}).result);
  EXPECT_EQ(options.sliceFile, "a.slice");
  EXPECT_EQ(options.driver, "sim");
  EXPECT_EQ(options.faultFile, "");
  EXPECT_EQ(options.controlMode, 0660U);
  EXPECT_EQ(options.controlGroup, "");
  EXPECT_EQ(options.trace, "");
  EXPECT_FALSE(options.once);
  EXPECT_FALSE(options.verbose);
  EXPECT_FALSE(options.supervise);
}

TEST(Options, AreTakenInAnyOrderAndForm) {
  Options const options =
      std::get<Options>(parse({"-v", "--driver=/lib/tap.so", "--once", "--supervise", "a.slice",
                               "--driver-faults", "b.faults", "--trace", "KestSliceDma/0-2",
                               "--control-mode", "0666", "--control-group", "netadmin"})
                            .result);
  EXPECT_EQ(options.sliceFile, "a.slice");
  EXPECT_EQ(options.driver, "/lib/tap.so");
  EXPECT_EQ(options.faultFile, "b.faults");
  EXPECT_EQ(options.controlMode, 0666U);
  EXPECT_EQ(options.controlGroup, "netadmin");
  EXPECT_EQ(options.trace, "KestSliceDma/0-2");
  EXPECT_TRUE(options.once);
  EXPECT_TRUE(options.verbose);
  EXPECT_TRUE(options.supervise);
}

TEST(Options, SayTheVersionAndEnd) {
  Outcome const outcome = parse({"--version"});
  EXPECT_EQ(std::get<Exit>(outcome.result), Exit::done);
  EXPECT_EQ(outcome.out, std::string("kest-slice-agent ") + version + "\n");
  EXPECT_EQ(outcome.err, "");
}

TEST(Options, HelpNamesEveryOptionAndExitCodeAndEnds) {
  for (char const* option : {"-h", "--help"}) {
    Outcome const outcome = parse({option});
    EXPECT_EQ(std::get<Exit>(outcome.result), Exit::done);
    EXPECT_EQ(outcome.err, "");
    for (char const* part :
         {"SLICEFILE", "--driver ", "--driver-faults", "--once", "--verbose", "--trace",
          "--supervise", "--version", "SIGHUP", "--control ", "--control-mode", "--control-group",
          "Exit codes: 0 done, 1 ", "NO_COLOR", "KEST_LAST_END"}) {
      EXPECT_NE(outcome.out.find(part), std::string::npos) << part;
    }
  }
}

TEST(Options, AreRefusedWithAMessage) {
  struct Row {
    std::vector<char const*> arguments;
    char const* message;
  };
  for (Row const& row : std::vector<Row>{
           {{}, "SLICEFILE is required\n"},
           {{"a", "b"}, "The following argument was not expected: b\n"},
           {{"a", "--twice"}, "The following argument was not expected: --twice\n"},
           {{"a", "--driver"}, "--driver: 1 required DRIVER missing\n"},
           {{"a", "--control-mode", "0888"},
            "--control-mode: expected octal digits up to 777, found '0888'\n"},
           {{"a", "--control-mode", "1000"},
            "--control-mode: expected octal digits up to 777, found '1000'\n"},
       }) {
    Outcome const outcome = parse(row.arguments);
    EXPECT_EQ(std::get<Exit>(outcome.result), Exit::usage);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, row.message + std::string("Run with --help for more information.\n"));
  }
}

}  // namespace
}  // namespace Kest::Agent
