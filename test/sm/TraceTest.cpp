#include <sstream>
#include <string>
#include <vector>

#include "platform/mox/Trace.h"
#include "test/sm/SmFixture.h"

namespace Hardware::Kest::Slice {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class TraceTest : public SmTest {
 public:
  /// A trace point, and what leads to it: its line is the journal's at index `at`.
  struct Point {
    char level;
    std::size_t at;
    std::string text;
    void (*reach)(TraceTest& test);
  };
  static std::vector<Point> const points;

 protected:
  ~TraceTest() override { Mox::traceCoverageStreamIs(nullptr); }

  static std::string lineOf(Point const& point) {
    return std::string("trace KestSliceDma ") + point.level + " KestSliceDmaSm:" + point.text;
  }
};

std::string const handler = "void Hardware::Kest::Slice::KestSliceDmaSm::";

std::vector<TraceTest::Point> const TraceTest::points = {
    {'0', 0, "34 doVerify " + handler + "doVerify()", [](auto& t) { t.sm->doVerify(); }},
    {'0', 1,
     "48 doVerify doVerify device: 'fap0' registered 1 confState: 'deviceStateUp' "
     "statState: 'deviceStateUp'",
     [](auto& t) { t.sm->doVerify(); }},
    {'1', 0,
     "236 handleDeviceState " + handler +
         "handleDeviceState(Mox::String) device: 'fap9' state: deviceStateDown/deviceStateUnknown",
     [](auto& t) { t.config->deviceStateNotify("fap9"); }},
    {'1', 0, "204 handleDevice " + handler + "handleDevice(Mox::String) device: 'fap0'",
     [](auto& t) { t.config->deviceNotify("fap0"); }},
    {'1', 1, "211 handleDevice " + handler + "handleDevice(Mox::String) device: 'fap0'",
     [](auto& t) { t.config->deviceNotify("fap0"); }},
    {'2', 0, "57 handleMode " + handler + "handleMode()", [](auto& t) { t.sm->handleMode(); }},
    {'2', 0, "71 handleInitialized " + handler + "handleInitialized()",
     [](auto& t) { t.sm->handleInitialized(); }},
    {'8', 0, "84 handleTimerExpired " + handler + "handleTimerExpired()",
     [](auto& t) { t.sm->handleTimerExpired(); }},
    {'8', 0, "126 handleSwitchPort KestSliceDmaSm::handleSwitchPort ifName=et1",
     [](auto& t) { t.config->switchPortNotify("et1"); }},
    {'8', 0, "170 handleNativeVlan KestSliceDmaSm::handleNativeVlan ifName=et1",
     [](auto& t) { t.config->nativeVlanNotify("et1"); }},
};

TEST_F(TraceTest, EachPointHasItsLevelItsTextAndItsPlaceBeforeWhatItTellsOf) {
  createPort("et1");
  registerDevice("fap0", up);
  config->deviceStateIs("fap9", down);
  for (Point const& point : points) {
    std::string others = "0123456789";
    others.erase(others.find(point.level), 1);
    traceOn(others);
    point.reach(*this);
    EXPECT_THAT(journal.taken(), Not(Contains(lineOf(point))));
    traceOn({point.level});
    point.reach(*this);
    EXPECT_EQ(journal.taken().at(point.at), lineOf(point));
  }
}

TEST_F(TraceTest, ADeviceThatIsForgottenIsTracedOnce) {
  traceOn("*");
  config->deviceNotify("fap0");
  EXPECT_THAT(journal.taken(), ElementsAre("trace KestSliceDma 1 KestSliceDmaSm:204 handleDevice " +
                                           handler + "handleDevice(Mox::String) device: 'fap0'"));
}

// The message looks the wanted state up; for a device that is not registered nothing else does.
TEST_F(TraceTest, MessageIsBuiltOnlyWhenSomebodyWantsIt) {
  auto const lookups = [&] {
    auto const before = config->lookupCount();
    config->deviceStateNotify("fap9");
    return config->lookupCount() - before;
  };
  EXPECT_EQ(lookups(), 0U);
  traceOn("1");
  EXPECT_EQ(lookups(), 1U);
  traceOn("");
  EXPECT_EQ(lookups(), 0U);
  std::ostringstream coverage;
  Mox::traceCoverageStreamIs(&coverage);
  EXPECT_EQ(lookups(), 1U);
  EXPECT_EQ(coverage.str(),
            "KestSliceDma 1 KestSliceDmaSm:236 handleDeviceState void "
            "Hardware::Kest::Slice::KestSliceDmaSm::handleDeviceState(Mox::String) "
            "device: 'fap9' state: deviceStateUnknown/deviceStateUnknown\n");
}

}  // namespace
}  // namespace Hardware::Kest::Slice
