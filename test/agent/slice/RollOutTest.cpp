#include "agent/slice/RollOut.h"

#include <gtest/gtest.h>

#include <sstream>

#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class RollOutTest : public testing::Test {
 protected:
  void start(std::string const& text) {
    rollOut.start(
        parseSlice("slice", text).config, [this](Changes const&) { return mayApply; },
        [this](std::size_t announced, std::size_t unchanged) {
          done += std::to_string(announced) + "/" + std::to_string(unchanged) + " ";
        });
  }

  std::ostringstream out;
  Console console{out, false, false};
  ActivityLoop loop{nullptr};
  Mox::Ptr<Config> config{new Config("config")};
  RollOut rollOut{loop, console, config, true};
  bool mayApply = true;
  std::string done;  // changes that were announced / entries that were alike
};

TEST_F(RollOutTest, AppliesOneChangeARound) {
  start("nativeVlan 'et1' 1\nnativeVlan 'et2' 2");
  EXPECT_EQ(out.str(), "") << "whoever starts it may still be at work";
  loop.runOnce(0);
  EXPECT_EQ(out.str(), "config  + nativeVlan et1 1\n");
  EXPECT_EQ(entriesOf(*config), (Entries{"nativeVlan 'et1' 1"}));
  loop.runOnce(0);
  EXPECT_EQ(entriesOf(*config), (Entries{"nativeVlan 'et1' 1", "nativeVlan 'et2' 2"}));
  EXPECT_TRUE(rollOut.isRunning());
  EXPECT_EQ(done, "");
  loop.runOnce(0);
  EXPECT_FALSE(rollOut.isRunning());
  EXPECT_EQ(done, "2/0 ");
  loop.runOnce(0);
  EXPECT_EQ(done, "2/0 ");
}

TEST_F(RollOutTest, IsDoneWhenNothingDiffers) {
  start("");
  loop.runOnce(0);
  EXPECT_FALSE(rollOut.isRunning());
  EXPECT_EQ(done, "0/0 ");
}

TEST_F(RollOutTest, ComparesInPiecesBetweenWhichOthersGetTheirTurn) {
  constexpr int ports = 10000;
  std::string text;
  for (int port = 0; port < ports; ++port) {
    config->nativeVlanIs(Mox::format("et%d", port), 1);
    text += "nativeVlan 'et" + std::to_string(port) + "' 1\n";
  }
  start(text);
  int rounds = 0;
  for (; rollOut.isRunning(); ++rounds) loop.runOnce(0);
  EXPECT_GT(rounds, 50);
  EXPECT_LT(rounds, ports / 10);
  EXPECT_EQ(done, "0/10000 ");
}

TEST_F(RollOutTest, AppliesNothingThatIsRefused) {
  mayApply = false;
  start("nativeVlan 'et1' 1");
  loop.runOnce(0);
  EXPECT_EQ(entriesOf(*config), Entries());
  EXPECT_FALSE(rollOut.isRunning());
  EXPECT_EQ(done, "");
}

TEST_F(RollOutTest, MayStartAgainFromItsEnd) {
  auto const anything = [](Changes const&) { return true; };
  rollOut.start(parseSlice("slice", "").config, anything,
                [&, last = std::string("nativeVlan 'et1' 1")](std::size_t, std::size_t) {
                  start("nativeVlan 'et1' 1");
                  loop.runOnce(0);
                  EXPECT_EQ(entriesOf(*config), (Entries{last}))
                      << "the work that runs was destroyed";
                });
  loop.runOnce(0);
  EXPECT_EQ(done, "");
  loop.runOnce(0);
  EXPECT_EQ(done, "1/0 ");
}

TEST_F(RollOutTest, AppliesNothingMoreOnceAbandoned) {
  start("nativeVlan 'et1' 1\nnativeVlan 'et2' 2");
  loop.runOnce(0);
  rollOut.abandon();
  loop.runOnce(0);
  EXPECT_EQ(entriesOf(*config), (Entries{"nativeVlan 'et1' 1"}));
  EXPECT_FALSE(rollOut.isRunning());
  EXPECT_EQ(done, "");
}

}  // namespace
}  // namespace Kest::Agent
