#include "agent/wire/Protocol.h"

#include <gtest/gtest.h>

#include <map>

namespace Kest::Wire {
namespace {

/// The variables that say where the socket is, as they were before again at the end.
class ProtocolTest : public testing::Test {
 protected:
  static constexpr char const* names[] = {"KEST_SLICE_AGENT_SOCKET", "XDG_RUNTIME_DIR"};

  ProtocolTest() {
    for (char const* name : names) {
      if (char const* value = std::getenv(name)) before[name] = value;
      unsetenv(name);
    }
  }
  ~ProtocolTest() override {
    for (char const* name : names) unsetenv(name);
    for (auto const& [name, value] : before) setenv(name.c_str(), value.c_str(), 1);
  }

  std::map<std::string, std::string> before;
};

TEST_F(ProtocolTest, TheSocketIsWhereTheVariableSays) {
  setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
  setenv("KEST_SLICE_AGENT_SOCKET", "/here/s", 1);
  EXPECT_EQ(defaultSocketPath(), "/here/s");
}

TEST_F(ProtocolTest, RootsIsInRun) {
  if (geteuid() != 0) GTEST_SKIP() << "not root";
  setenv("KEST_SLICE_AGENT_SOCKET", "", 1);
  setenv("XDG_RUNTIME_DIR", "/run/user/0", 1);
  EXPECT_EQ(defaultSocketPath(), "/run/kest-slice-agent.sock");
}

TEST_F(ProtocolTest, AUsersIsInTheRuntimeDirectoryOrNowhere) {
  constexpr uid_t nobody = 65534;
  bool const isRoot = geteuid() == 0;
  ASSERT_EQ(isRoot ? seteuid(nobody) : 0, 0);
  EXPECT_EQ(defaultSocketPath(), std::nullopt);
  setenv("XDG_RUNTIME_DIR", "", 1);
  EXPECT_EQ(defaultSocketPath(), std::nullopt);
  setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
  EXPECT_EQ(defaultSocketPath(), "/run/user/7/kest-slice-agent.sock");
  ASSERT_EQ(isRoot ? seteuid(0) : 0, 0);
}

TEST_F(ProtocolTest, EveryKindOfErrorHasItsName) {
  EXPECT_STREQ(name(ErrorKind::request), "request");
  EXPECT_STREQ(name(ErrorKind::path), "path");
  EXPECT_STREQ(name(ErrorKind::value), "value");
  EXPECT_STREQ(name(ErrorKind::refused), "refused");
  EXPECT_STREQ(name(ErrorKind::denied), "denied");
  EXPECT_STREQ(name(ErrorKind::busy), "busy");
  EXPECT_STREQ(name(ErrorKind::file), "file");
  EXPECT_STREQ(name(ErrorKind::internal), "internal");
}

}  // namespace
}  // namespace Kest::Wire
