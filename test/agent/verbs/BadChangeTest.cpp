#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

using BadChange = RefusedRequests;

TEST_F(BadChange, IsNotPossibleThere) {
  auto const request = [](std::string const& verb, std::string const& path,
                          char const* value = "0") {
    std::string const member = verb == "set" ? std::string(R"(,"value":)") + value : "";
    return R"({"verb":")" + verb + R"(","path":")" + path + "\"" + member + "}";
  };
  std::vector<Refusal> all;
  auto const expect = [&](std::string const& verb, std::initializer_list<char const*> paths,
                          std::string const& why, char const* value = "0") {
    for (std::string const path : paths) {
      all.push_back({request(verb, path, value), "refused: " + path + why});
    }
  };
  for (std::string const verb : {"set", "del", "notify"}) {
    expect(verb, {"config", "status", "sm"},
           " is not changed as a whole: name one of its attributes");
    expect(verb, {"config/nativeVlan", "status/switchPort"},
           " is not changed as a whole: name one of its entries");
    expect(verb, {"sm/doVerify"}, " is a handler: call it");
    for (char const* path :
         {"status/nativeVlan/et3/1", "sm/status/deviceState/fap0", "sm/config/nativeVlan/et3/1"}) {
      all.push_back({request(verb, path), "refused: attempting to modify a const instance"});
    }
  }
  expect("get", {"sm/doVerify"}, " is a handler: call it");
  expect("set", {"config/changeCount", "config/lookupCount", "sm/pollPeriod"}, " cannot be set");
  expect("set", {"config/name", "config/fullName"}, " cannot be set", "\"x\"");
  expect("set", {"config/parent", "sm/config", "sm/status", "sm/moxFwkActivity"}, " cannot be set",
         "null");
  expect("del", {"config/sliceId", "config/name", "sm/status", "sm/mode"}, " cannot be removed");
  expect("notify", {"config/sliceId", "sm/mode"}, " cannot be announced");
  for (char const* verb : {"del", "notify"}) {
    expect(verb, {"config/switchPort/et3/1:destId"}, " is a field: name its record");
  }
  expectRefused(all);
  std::string const constant = "refused: attempting to modify a const instance";
  expectRefused({
      {R"({"verb":"set","path":"status/name","value":"x"})", constant},
      {R"({"verb":"set","path":"status/switchPort/et3/1:created","value":false})", constant},
      {R"({"verb":"set","path":"sm/stateTimer/name","value":"x"})", constant},
      {R"({"verb":"del","path":"status/deviceState/fap9"})", constant},
      {R"({"verb":"set","path":"config/switchPort/et3/1","value":{"ifName":"et3/2"}})",
       "refused: 'switchPort' does not take that index"},
      {R"({"verb":"set","path":"config/device/fap0:devName","value":"fap1"})",
       "refused: 'device' does not take that index"},
      {R"({"verb":"call","handler":"mode"})", "refused: sm/mode is no handler"},
      {R"({"verb":"call","handler":"sm"})", "path: sm has no attribute 'sm'"},
      {R"({"verb":"call","handler":"config/nativeVlan/et3/1"})",
       "refused: config/nativeVlan/et3/1 is no handler"},
  });
}

TEST_F(BadChange, WouldEndTheProcess) {
  expectRefused({
      {R"({"verb":"del","path":"config/deviceState/fap0"})",
       "value: device 'fap0' is registered: remove it before its state goes"},
      {R"({"verb":"notify","path":"config/nativeVlan/x3/1"})",
       "value: expected an interface name with 'et' in it, found 'x3/1'"},
      {R"({"verb":"notify","path":"config/switchPort/x"})",
       "value: expected an interface name with 'et' in it, found 'x'"},
      {R"({"verb":"notify","path":"config/switchPort/"})",
       "value: expected an interface name with 'et' in it, found ''"},
      {R"({"verb":"notify","path":"config/switchportMode/x"})",
       "value: expected an interface name with 'et' in it, found 'x'"},
      {R"({"verb":"notify","path":"config/switchPort/et3/1\u0000"})",
       R"(value: expected an interface name without NUL, found 'et3/1\x00')"},
      {R"({"verb":"notify","path":"config/device/"})",
       "value: expected a device name, found an empty one"},
      {R"({"verb":"notify","path":"config/deviceState/"})",
       "value: expected a device name, found an empty one"},
  });
}

TEST_F(BadChange, HasArgumentsThatItsHandlerDoesNotTake) {
  auto const call = [](std::string const& handler, std::string const& args,
                       std::string const& why) -> Refusal {
    return {R"({"verb":"call","handler":")" + handler + R"(","args":)" + args + "}",
            "value: " + why};
  };
  std::string const port = "expected an interface name with 'et' in it, found ";
  std::string const noNul = "expected an interface name without NUL, found ";
  expectRefused({
      call("doVerify", "[1]", "'doVerify' does not take so many arguments"),
      call("handleMode", "[null]", "'handleMode' does not take so many arguments"),
      {R"({"verb":"call","handler":"handleSwitchPort"})",
       "value: 'ifName' is missing or of the wrong type"},
      call("handleSwitchPort", "[]", "'ifName' is missing or of the wrong type"),
      call("handleSwitchPort", "[null]", "expected a string, found null"),
      call("handleSwitchPort", R"(["et3/1","et3/2"])",
           "'handleSwitchPort' does not take so many arguments"),
      call("handleSwitchPort", R"(["'et3/1"])",
           "expected the string's closing apostrophe, found the end of the text"),
      call("handleSwitchPort", R"([""])", port + "''"),
      call("handleSwitchPort", R"(["et3/1\u0000"])", noNul + R"('et3/1\x00')"),
      call("handleSwitchPort", R"(["'et3/1\\x00'"])", noNul + R"('et3/1\x00')"),
      call("sm/handleNativeVlan", R"(["port 1"])", port + "'port 1'"),
      call("handleDevice", R"([{"devName":"fap0"}])",
           R"(expected a string, found {"devName":"fap0"})"),
      call("handleDeviceState", "[]", "'devName' is missing or of the wrong type"),
      call("hasNotificationActiveIs", "[0]", "expected true or false, found 0"),
      call("moxDoZombieReactors", R"(["on"])", "expected True or False, found 'o'"),
  });
}

TEST_F(BadChange, NeedsTheConfigurationThatTheMachineObserves) {
  std::string const removal = R"({"verb":"del","path":"sm/config"})";
  std::string const header =
      R"({"path":"sm/config","type":"Hardware::Kest::Slice::KestSliceDmaConfig",)";
  EXPECT_EQ(ask(removal), header + R"("removed":true,"value":"config"})");
  EXPECT_EQ(ask(removal), header + R"("removed":false,"value":null})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"sm/config"})"), header + R"("value":null})");
  std::string const unbound = "refused: no 'config' is bound";
  expectRefused({
      {R"({"verb":"call","handler":"handleSwitchPort","args":["et3/1"]})", unbound},
      {R"({"verb":"call","handler":"handleNativeVlan","args":["et3/1"]})", unbound},
      {R"({"verb":"call","handler":"handleDevice","args":["fap0"]})", unbound},
      {R"({"verb":"call","handler":"handleDeviceState","args":["fap0"]})", unbound},
      {R"({"verb":"call","handler":"doVerify"})", unbound},
      {R"({"verb":"get","path":"sm/config/sliceId"})",
       "path: sm/config leads no further: it refers to nothing"},
      {R"({"verb":"set","path":"sm/config/sliceId","value":"x"})",
       "path: sm/config leads no further: it refers to nothing"},
      {R"({"verb":"set","path":"sm/config","value":"config"})",
       "value: there is no entity at 'config'"},
  });
  // The agent lives on; nobody acts on what is configured.
  ask(R"({"verb":"set","path":"config/nativeVlan/et3/1","value":20})");
  EXPECT_EQ(status->nativeVlan("et3/1"), 10);
  Json const report = Json::parse(ask(R"({"verb":"verify"})"));
  EXPECT_EQ(report.at("differences").at(0).at("message"),
            "port et3/1 nativeVlan: configuration 20, status 10, driver 10");
}

TEST_F(BadChange, NeedsTheTimer) {
  std::string const unbound = "refused: no 'stateTimer' is bound";
  for (char const* removal : {R"({"verb":"del","path":"sm/stateTimer"})",
                              R"({"verb":"set","path":"sm/stateTimer","value":null})",
                              R"({"verb":"set","path":"sm/stateTimer","text":"None"})"}) {
    ask(removal);
    EXPECT_FALSE(sm->stateTimer()) << removal;
    expectRefused({
        {R"({"verb":"mode","mode":"polling"})", unbound},
        {R"({"verb":"set","path":"sm/mode","value":"smModePolling"})", unbound},
        {R"({"verb":"call","handler":"handleTimerExpired"})", unbound},
        {R"({"verb":"get","path":"sm/stateTimer/name"})",
         "path: sm/stateTimer leads no further: it refers to nothing"},
    });
    EXPECT_EQ(ask(R"({"verb":"call","handler":"handleInitialized"})"),
              R"({"handler":"sm/handleInitialized"})");
    EXPECT_TRUE(sm->stateTimer()) << removal;
  }
  EXPECT_EQ(ask(R"({"verb":"mode","mode":"polling"})"), R"({"mode":"smModePolling","number":2})");
}

TEST_F(BadChange, AnnouncesTheStateOfARegisteredDeviceThatHasNone) {
  ask(R"({"verb":"del","path":"config/device/fap0"})");
  ask(R"({"verb":"del","path":"config/deviceState/fap0"})");
  ask(R"({"verb":"set","path":"config/device/fap0","value":{"pciHam":"/pci/0000:05:00.0"}})");
  ASSERT_TRUE(status->device("fap0").registered());
  std::string const none = "value: expected a configured state of the registered device 'fap0'";
  expectRefused({
      {R"({"verb":"notify","path":"config/deviceState/fap0"})", none},
      {R"({"verb":"call","handler":"handleDeviceState","args":["fap0"]})", none},
      {R"({"verb":"call","handler":"sm/handleDeviceState","args":["'fap0'"]})", none},
      {R"({"verb":"del","path":"config/deviceState/fap0"})",
       "value: device 'fap0' is registered: remove it before its state goes"},
      {R"({"verb":"set","path":"config/deviceState/fap0","value":"deviceStateUnknown"})",
       "value: expected 'deviceStateUp' or 'deviceStateDown', found 'deviceStateUnknown'"},
  });
  ask(R"({"verb":"set","path":"config/deviceState/fap0","value":"deviceStateUp"})");
  EXPECT_EQ(ask(R"({"verb":"verify"})"), R"({"differences":[],"clean":true})");
}

/// What the machine does not see while it looks away it must be told before the rest goes.
TEST_F(BadChange, TakesTheStateFromADeviceThatTheMachineStillHasRegistered) {
  ask(R"({"verb":"call","handler":"hasNotificationActiveIs","args":[false]})");
  ask(R"({"verb":"del","path":"config/device/fap0"})");
  ask(R"({"verb":"call","handler":"hasNotificationActiveIs","args":[true]})");
  std::string const registered =
      "value: device 'fap0' is registered: call handleDevice before its state goes";
  expectRefused({
      {R"({"verb":"del","path":"config/deviceState/fap0"})", registered},
      {R"({"verb":"apply","file":"x.slice","content":""})", registered},
      {R"({"verb":"apply","file":"x.json","content":"{}"})", registered},
  });
  EXPECT_EQ(ask(R"({"verb":"call","handler":"handleDevice","args":["fap0"]})"),
            R"({"handler":"sm/handleDevice"})");
  EXPECT_EQ(ask(R"({"verb":"apply","file":"x.slice","content":""})"),
            R"({"announced":6,"unchanged":0,"notUp":[]})");
}

}  // namespace
}  // namespace Kest::Agent
