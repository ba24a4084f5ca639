#include "agent/Application.h"

#include <gtest/gtest.h>

#include <sstream>

#include "test/agent/slice/SliceTexts.h"

namespace Kest::Agent {
namespace {

class ApplicationTest : public testing::Test {
 protected:
  static Changes changes(std::string const& text) {
    Mox::Ptr<Config> const nothing(new Config("nothing"));
    return changesBetween(*nothing, *parseSlice("slice", text).config);
  }

  std::ostringstream out;
  Console console{out, false, false};
  Mox::ActivityLoop loop{nullptr};
  Mox::Ptr<Config> config{new Config("config")};
  Application application{loop, console, config, true};
  int done = 0;
};

TEST_F(ApplicationTest, AppliesOneChangeARound) {
  application.start(changes("nativeVlan 'et1' 1\nnativeVlan 'et2' 2"), [&] { ++done; });
  EXPECT_EQ(out.str(), "config  + nativeVlan et1 1\n");
  EXPECT_EQ(entriesOf(*config), (Entries{"nativeVlan 'et1' 1"}));
  loop.runOnce(0);
  EXPECT_EQ(entriesOf(*config), (Entries{"nativeVlan 'et1' 1", "nativeVlan 'et2' 2"}));
  EXPECT_TRUE(application.isRunning());
  EXPECT_EQ(done, 0);
  loop.runOnce(0);
  EXPECT_FALSE(application.isRunning());
  EXPECT_EQ(done, 1);
  loop.runOnce(0);
  EXPECT_EQ(done, 1);
}

TEST_F(ApplicationTest, IsDoneAtOnceWhenNothingDiffers) {
  application.start({}, [&] { ++done; });
  EXPECT_FALSE(application.isRunning());
  EXPECT_EQ(done, 1);
}

TEST_F(ApplicationTest, MayStartAgainFromItsEnd) {
  application.start({}, [&, last = std::string("nativeVlan 'et1' 1")] {
    application.start(changes("nativeVlan 'et1' 1"), [&] { ++done; });
    EXPECT_EQ(entriesOf(*config), (Entries{last})) << "the work that runs was destroyed";
  });
  EXPECT_EQ(done, 0);
  loop.runOnce(0);
  EXPECT_EQ(done, 1);
}

TEST_F(ApplicationTest, AppliesNothingMoreOnceAbandoned) {
  application.start(changes("nativeVlan 'et1' 1\nnativeVlan 'et2' 2"), [&] { ++done; });
  application.abandon();
  loop.runOnce(0);
  EXPECT_EQ(entriesOf(*config), (Entries{"nativeVlan 'et1' 1"}));
  EXPECT_FALSE(application.isRunning());
  EXPECT_EQ(done, 0);
}

}  // namespace
}  // namespace Kest::Agent
