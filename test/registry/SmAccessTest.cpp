#include <cmath>
#include <vector>

#include "registry/EntityTypes.h"
#include "registry/SmType.h"
#include "test/registry/Access.h"
#include "test/sm/SmFixture.h"

/// Generic access to the state machine.
namespace Hardware::Kest::Slice {
namespace {

using Mox::AttributeId;
using Mox::genericOf;
using Mox::Ptr;
using Test::badIndex;
using Test::constInstance;
using Test::genericRefusal;
using Test::noSuchAttribute;
using Test::notBound;
using Test::opNotSupported;
using Test::unknownArg;
using Test::wrongType;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

char const* const typeName = "Hardware::Kest::Slice::KestSliceDmaSm";

/// Handlers by what they take.
struct TakesOne {
  char const* name;
  char const* argument;
};
constexpr TakesOne withKey[] = {{"handleSwitchPort", "ifName"},
                                {"handleNativeVlan", "ifname"},
                                {"handleDevice", "devName"},
                                {"handleDeviceState", "devName"}};
constexpr TakesOne withFlag[] = {{"hasNotificationActiveIs", "hasNotificationActiveIs"},
                                 {"moxDoZombieReactors", "on"}};
constexpr char const* withNothing[] = {"handleTimerExpired", "handleMode", "doVerify",
                                       "handleInitialized"};

class SmAccessTest : public SmTest {
 protected:
  static std::vector<Mox::Attribute> const& attributes() {
    return KestSliceDmaSm::_fwkType()->typeNode()->attributes();
  }

  Generic const machine = genericOf(sm);
  Generic const constant = genericOf(Ptr<KestSliceDmaSm const>(sm));
};

/// A slice of its own beside the fixture's. It holds a port and a device that its machine has not
/// been told of.
struct QuietSlice {
  explicit QuietSlice(Support::Journal& journal)
      : statusJournal(new StatusJournal(status, journal)) {
    sm->hasNotificationActiveIs(false);
    config->deviceIs(device("fap0"));
    config->deviceStateIs("fap0", up);
    config->switchPortIs(port("et1"));
    config->nativeVlanIs("et1", 10);
    config->switchportModeIs("et1", tunnel);
    sm->hasNotificationActiveIs(true);
    journal.taken();
  }

  /// The wake-up that the timer waits for, from now, in microseconds.
  std::string wakeUp() const {
    double const left = sm->stateTimerReactor()->timeMin() - Mox::now();
    return "wake-up " + (std::isinf(left) ? "never" : std::to_string(std::lround(left * 1e6)));
  }

  Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("config")};
  Ptr<KestSliceDmaStatus> status{new KestSliceDmaStatus("status")};
  Ptr<StatusJournal> statusJournal;
  Ptr<KestSliceDmaSm> sm = kestSliceDmaSmFactory(config, status);
};

struct Step {
  char const* name;
  void (*direct)(KestSliceDmaSm& sm);
  void (*byName)(Mox::GenericIf& sm, char const* name);
};

void invokePlain(Mox::GenericIf& sm, char const* name) {
  invoke(sm, name);
}

template <char const* const& key>
void invokeWith(Mox::GenericIf& sm, char const* name) {
  invoke(sm, name, string(key));
}

char const* const et1 = "et1";
char const* const fap0 = "fap0";

constexpr Step steps[] = {
    {"handleDevice", [](auto& sm) { sm.handleDevice("fap0"); }, invokeWith<fap0>},
    {"handleDeviceState", [](auto& sm) { sm.handleDeviceState("fap0"); }, invokeWith<fap0>},
    {"handleSwitchPort", [](auto& sm) { sm.handleSwitchPort("et1"); }, invokeWith<et1>},
    {"handleNativeVlan", [](auto& sm) { sm.handleNativeVlan("et1"); }, invokeWith<et1>},
    {"mode", [](auto& sm) { sm.modeIs(SmMode::smModePolling_); },
     [](auto& sm, auto* name) { store(sm, name, genericOf(SmMode::smModePolling_)); }},
    {"handleInitialized", [](auto& sm) { sm.handleInitialized(); }, invokePlain},
    {"handleMode", [](auto& sm) { sm.handleMode(); }, invokePlain},
    {"handleTimerExpired", [](auto& sm) { sm.handleTimerExpired(); }, invokePlain},
    {"doVerify", [](auto& sm) { sm.doVerify(); }, invokePlain},
};

TEST_F(SmAccessTest, EveryHandlerByNameDoesWhatTheDirectCallDoes) {
  driver.upIs("fap0", true);
  QuietSlice const direct(journal);
  QuietSlice const byName(journal);
  Generic const other = genericOf(byName.sm);
  traceOn("0-9");
  for (Step const& step : steps) {
    step.direct(*direct.sm);
    Support::Lines lines = journal.taken();
    lines.push_back(direct.wakeUp());
    step.byName(*other, step.name);
    Support::Lines linesByName = journal.taken();
    linesByName.push_back(byName.wakeUp());
    EXPECT_EQ(linesByName, lines) << step.name;
    EXPECT_GT(lines.size(), 1U) << step.name << " left nothing";
    EXPECT_EQ(content(*byName.status), content(*direct.status)) << step.name;
  }
}

TEST_F(SmAccessTest, HandlersRefuseArgumentsThatTheyDoNotDeclare) {
  traceOn("0-9");
  for (auto const& [handler, argument] : withKey) {
    char const* const name = handler;
    EXPECT_EQ(refused(*machine, name, Code::invoke), wrongType(argument));
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, name); }), wrongType(argument));
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, name, number(1)); }), wrongType(argument));
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, name, string("et1"), string("et2")); }),
              unknownArg(name));
  }
  for (auto const& [handler, argument] : withFlag) {
    char const* const name = handler;
    EXPECT_EQ(refused(*machine, name, Code::invoke), wrongType(argument));
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, name, string("True")); }), wrongType(argument));
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, name, genericOf(true), genericOf(true)); }),
              unknownArg(name));
  }
  for (char const* name : withNothing) {
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, name, string("et1")); }), unknownArg(name));
    Generic const noList = string("et1");
    EXPECT_EQ(refused(*machine, name, Code::invoke, nullptr, noList.get()), wrongType("List"));
  }
  EXPECT_THAT(journal.taken(), IsEmpty());
}

TEST_F(SmAccessTest, HandlersWithoutArgumentsNeedNoList) {
  traceOn("0-9");
  operate(*machine, "doVerify", Code::invoke);
  EXPECT_THAT(journal.taken(), Not(IsEmpty()));
}

TEST_F(SmAccessTest, NoAttributeTakesAnIndex) {
  for (Mox::Attribute const& attribute : attributes()) {
    for (Code const code : {Code::read, Code::store, Code::invoke}) {
      EXPECT_EQ(refused(*machine, attribute.name.charPtr(), code, string("et1")),
                badIndex(attribute.name.charPtr()));
    }
  }
}

TEST_F(SmAccessTest, AttributesRefuseEveryCodeThatTheyDoNotSupport) {
  for (Mox::Attribute const& attribute : attributes()) {
    std::string const name(attribute.name.view());
    bool const isHandler = attribute.introspectionClass == Mox::IntrospectionClass::handler;
    bool const isWritable = name == "mode" || name == "stateTimer";
    bool const isRemovable = name == "config" || name == "stateTimer";
    std::vector<unsigned> codes{1, 99, 127, 130, 132, 4096};
    codes.push_back(isHandler ? 0 : 131);
    if (attribute.id != Mox::wholeAttributeId) codes.push_back(100);
    if (!isWritable) codes.push_back(128);
    if (!isRemovable) codes.push_back(129);
    for (unsigned const code : codes) {
      EXPECT_EQ(refused(*machine, name.c_str(), Code(code)), opNotSupported(name, code));
    }
  }
}

TEST_F(SmAccessTest, AConstAdapterRefusesBeforeTheAttributeIsLookedAt) {
  for (AttributeId const id :
       {0U, 1U, 127U, 128U, 129U, 130U, 132U, 133U, 141U, 145U, 147U, 148U, 99999U}) {
    for (unsigned const code : {128U, 129U, 130U, 131U, 4096U}) {
      EXPECT_EQ(refused(*constant, {id, Code(code)}), constInstance());
    }
  }
  EXPECT_EQ(valueOf<double>(read(*constant, "pollPeriod")), 2.0);
}

TEST_F(SmAccessTest, KnowsItsAttributesByName) {
  for (Mox::Attribute const& attribute : attributes()) {
    EXPECT_EQ(machine->attributeId(attribute.name), attribute.id);
  }
  for (char const* unknown : {"", "handleSwitchportMode", "moxDoZombieReactorsIs"}) {
    EXPECT_EQ(genericRefusal([&] { machine->attributeId(unknown); }),
              noSuchAttribute(typeName, unknown));
  }
  for (AttributeId const id : {1U, 127U, 133U, 135U, 136U, 138U, 140U, 148U, 258U}) {
    EXPECT_EQ(refused(*machine, {id, Code::read}), noSuchAttribute(typeName, std::to_string(id)));
  }
  EXPECT_EQ(genericRefusal([&] { machine->attributeIteratorConst(130); }),
            opNotSupported("config", 0));
}

TEST_F(SmAccessTest, GivesWhatItIsBoundTo) {
  EXPECT_TRUE(equal(*read(*machine, "config"), genericOf(config).get()));
  EXPECT_TRUE(equal(*read(*machine, "status"), genericOf(status).get()));
  EXPECT_TRUE(equal(*read(*machine, "stateTimer"), genericOf(clock).get()));
  EXPECT_EQ(read(*machine, "moxFwkActivity")->strRep(), "None");
  EXPECT_EQ(read(*machine, "moxFwkActivity")->type()->fullName(), "Mox::ActivityConfig");
  for (char const* name : {"config", "status", "stateTimer"}) {
    EXPECT_TRUE(read(*machine, name)->isConst()) << name;
  }
}

TEST_F(SmAccessTest, ThePollPeriodIsTwoSecondsAndReadOnly) {
  EXPECT_EQ(valueOf<double>(read(*machine, "pollPeriod")), 2.0);
  EXPECT_EQ(read(*machine, "pollPeriod")->strRep(), "2.0");
  EXPECT_EQ(genericRefusal([&] { store(*machine, "pollPeriod", genericOf(1.0)); }),
            opNotSupported("pollPeriod", 128));
}

TEST_F(SmAccessTest, StoringTheModeArmsThePoll) {
  time.advance(5000000);
  store(*machine, "mode", genericOf(SmMode::smModePolling_));
  EXPECT_EQ(sm->mode(), SmMode::smModePolling_);
  EXPECT_EQ(valueOf<SmMode>(read(*machine, "mode")), SmMode::smModePolling_);
  EXPECT_EQ(timeMin(), 7.0);
  EXPECT_EQ(genericRefusal([&] { store(*machine, "mode", number(2)); }), wrongType("mode"));
  EXPECT_EQ(genericRefusal([&] { store(*machine, "mode", nullptr); }), wrongType("mode"));
}

TEST_F(SmAccessTest, StoringAnotherClockMovesTheTimerAndPollsAtOnce) {
  Ptr<Mox::Clock> const other(new Mox::Clock("other"));
  traceOn("8");
  store(*machine, "stateTimer", genericOf(clock));
  EXPECT_THAT(journal.taken(), IsEmpty());
  store(*machine, "stateTimer", genericOf(Ptr<Mox::Clock const>(other)));
  EXPECT_EQ(sm->stateTimer(), other);
  EXPECT_THAT(journal.taken(), Not(IsEmpty()));
}

TEST_F(SmAccessTest, StoringNoClockDropsTheTimer) {
  store(*machine, "stateTimer", genericOf(Ptr<Mox::Clock>()));
  EXPECT_EQ(sm->stateTimerReactor(), nullptr);
  EXPECT_EQ(read(*machine, "stateTimer")->strRep(), "None");
  EXPECT_EQ(genericRefusal([&] { store(*machine, "stateTimer", nullptr); }),
            wrongType("stateTimer"));
  EXPECT_EQ(genericRefusal([&] { store(*machine, "stateTimer", genericOf(config)); }),
            wrongType("stateTimer"));
  EXPECT_EQ(remove(*machine, "stateTimer")->strRep(), "None");
}

TEST_F(SmAccessTest, WithoutATimerNothingPolls) {
  EXPECT_TRUE(equal(*remove(*machine, "stateTimer"), genericOf(clock).get()));
  EXPECT_EQ(sm->stateTimer(), nullptr);
  traceOn("0-9");
  EXPECT_EQ(genericRefusal([&] { invoke(*machine, "handleTimerExpired"); }),
            notBound("stateTimer"));
  EXPECT_THAT(journal.taken(), IsEmpty());
  invoke(*machine, "handleInitialized");
  EXPECT_EQ(sm->stateTimer(), clock);
  invoke(*machine, "handleTimerExpired");
}

TEST_F(SmAccessTest, WithoutATimerOnlyAModeThatPollsIsRefused) {
  remove(*machine, "stateTimer");
  for (SmMode const mode :
       {SmMode::smModeInitial_, SmMode::smModeStandby_, SmMode::smModeStandby_}) {
    store(*machine, "mode", genericOf(mode));
    EXPECT_EQ(sm->mode(), mode);
    invoke(*machine, "handleMode");
  }
  Generic const polling = genericOf(SmMode::smModePolling_);
  EXPECT_EQ(genericRefusal([&] { store(*machine, "mode", polling); }), notBound("stateTimer"));
  EXPECT_EQ(sm->mode(), SmMode::smModeStandby_);

  setenv("SIMULATION_VMID", "", 1);
  store(*machine, "mode", polling);
  EXPECT_EQ(sm->mode(), SmMode::smModePolling_);
  invoke(*machine, "handleMode");
  unsetenv("SIMULATION_VMID");
  store(*machine, "mode", polling);  // the present value
  EXPECT_EQ(genericRefusal([&] { invoke(*machine, "handleMode"); }), notBound("stateTimer"));
}

TEST_F(SmAccessTest, WithoutAConfigurationNothingIsHandled) {
  EXPECT_TRUE(equal(*remove(*machine, "config"), genericOf(config).get()));
  EXPECT_EQ(sm->config(), nullptr);
  EXPECT_EQ(remove(*machine, "config")->strRep(), "None");
  traceOn("0-9");
  for (TakesOne const& one : withKey) {
    EXPECT_EQ(genericRefusal([&] { invoke(*machine, one.name, string("et1")); }),
              notBound("config"));
  }
  EXPECT_EQ(genericRefusal([&] { invoke(*machine, "doVerify"); }), notBound("config"));
  config->switchPortIs(port("et1"));
  EXPECT_THAT(journal.taken(), IsEmpty());
  Generic const none = read(*machine, "config");
  EXPECT_EQ(none->strRep(), "None");
  EXPECT_TRUE(equal(*none, read(*machine, "config").get()));
}

TEST_F(SmAccessTest, NotificationsAreTurnedOffAndOnByName) {
  invoke(*machine, "hasNotificationActiveIs", genericOf(false));
  EXPECT_FALSE(sm->hasNotificationActive());
  config->nativeVlanIs("et1", 10);
  config->deviceIs(device("fap0"));
  EXPECT_THAT(journal.taken(), IsEmpty());
  invoke(*machine, "hasNotificationActiveIs", genericOf(true));
  config->deviceNotify("fap0");
  EXPECT_THAT(journal.taken(), Not(IsEmpty()));
}

TEST_F(SmAccessTest, ReactorsAreSilencedAndBroughtBackByName) {
  invoke(*machine, "moxDoZombieReactors", genericOf(true));
  EXPECT_TRUE(sm->moxMarkedForDeletion());
  EXPECT_TRUE(sm->configReactor()->moxMarkedForDeletion());
  EXPECT_TRUE(sm->stateTimerReactor()->moxMarkedForDeletion());
  config->deviceIs(device("fap0"));
  EXPECT_THAT(journal.taken(), IsEmpty());
  invoke(*machine, "moxDoZombieReactors", genericOf(false));
  EXPECT_FALSE(sm->stateTimerReactor()->moxMarkedForDeletion());
  config->deviceNotify("fap0");
  EXPECT_THAT(journal.taken(), Not(IsEmpty()));
}

TEST_F(SmAccessTest, IsMadeOfAConfigurationAndAStatus) {
  Mox::MoxType const& type = *KestSliceDmaSm::_fwkType();
  for (bool const isConst : {false, true}) {
    Generic const other = type.genericIfNew(
        listOf(isConst ? genericOf(Ptr<KestSliceDmaConfig const>(config)) : genericOf(config),
               genericOf(status)));
    EXPECT_FALSE(other->isConst());
    EXPECT_TRUE(equal(*read(*other, "config"), genericOf(config).get()));
    EXPECT_TRUE(equal(*read(*other, "status"), genericOf(status).get()));
    EXPECT_FALSE(equal(*other, machine.get()));
  }
  Generic const unbound =
      type.genericIfNew(listOf(genericOf(Ptr<KestSliceDmaConfig>()), genericOf(status)));
  EXPECT_EQ(read(*unbound, "config")->strRep(), "None");
}

TEST_F(SmAccessTest, IsNotMadeOfAnythingElse) {
  Mox::MoxType const& type = *KestSliceDmaSm::_fwkType();
  auto const made = [&](List const& arguments) {
    return genericRefusal([&] { type.genericIfNew(arguments); });
  };
  EXPECT_EQ(made(List()), wrongType("config"));
  EXPECT_EQ(made(listOf(genericOf(status), genericOf(config))), wrongType("config"));
  EXPECT_EQ(made(listOf(genericOf(config))), wrongType("status"));
  EXPECT_EQ(made(listOf(genericOf(config), genericOf(Ptr<KestSliceDmaStatus>()))),
            wrongType("status"));
  EXPECT_EQ(made(listOf(genericOf(config), genericOf(Ptr<KestSliceDmaStatus const>(status)))),
            wrongType("status"));
  EXPECT_EQ(made(listOf(genericOf(config), genericOf(status), genericOf(clock))),
            unknownArg(typeName));
  EXPECT_EQ(genericRefusal([&] { type.genericIfNew(*genericOf(config)); }), wrongType("List"));
}

TEST_F(SmAccessTest, IsAReferenceToTheMachine) {
  EXPECT_EQ(machine->type(), sm->fwkType());
  EXPECT_EQ(machine->strRep(), "ObjectPtr('Hardware::Kest::Slice::KestSliceDmaSm')");
  EXPECT_TRUE(equal(*machine, constant.get()));
  EXPECT_EQ(genericRefusal([&] { equal(*machine, genericOf(config).get()); }),
            wrongType("moxOpArg"));
  Generic const null = genericOf(Ptr<KestSliceDmaSm>());
  EXPECT_FALSE(equal(*machine, null.get()));
  EXPECT_EQ(genericRefusal([&] { read(*null, "mode"); }), notBound(typeName));
}

}  // namespace
}  // namespace Hardware::Kest::Slice
