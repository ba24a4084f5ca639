#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

using BadChange = RefusedRequests;

TEST_F(BadChange, IsNotPossibleThere) {
  expectRefused({
      {R"({"verb":"get","path":"sm/doVerify"})", "refused: sm/doVerify is a handler: call it"},
      {R"({"verb":"set","path":"config","value":{}})",
       "refused: config is not changed as a whole: name one of its attributes"},
      {R"({"verb":"set","path":"status","value":{}})",
       "refused: status is not changed as a whole: name one of its attributes"},
      {R"({"verb":"set","path":"sm","value":null})",
       "refused: sm is not changed as a whole: name one of its attributes"},
      {R"({"verb":"set","path":"config/nativeVlan","value":{"et3/1":20}})",
       "refused: config/nativeVlan is not changed as a whole: name one of its entries"},
      {R"({"verb":"set","path":"status/nativeVlan","value":{}})",
       "refused: status/nativeVlan is not changed as a whole: name one of its entries"},
      {R"({"verb":"set","path":"config/name","value":"x"})", "refused: config/name cannot be set"},
      {R"({"verb":"set","path":"config/fullName","value":"x"})",
       "refused: config/fullName cannot be set"},
      {R"({"verb":"set","path":"config/parent","value":null})",
       "refused: config/parent cannot be set"},
      {R"({"verb":"set","path":"config/changeCount","value":0})",
       "refused: config/changeCount cannot be set"},
      {R"({"verb":"set","path":"config/lookupCount","value":0})",
       "refused: config/lookupCount cannot be set"},
      {R"({"verb":"set","path":"sm/config","value":null})", "refused: sm/config cannot be set"},
      {R"({"verb":"set","path":"sm/status","value":null})", "refused: sm/status cannot be set"},
      {R"({"verb":"set","path":"sm/moxFwkActivity","value":null})",
       "refused: sm/moxFwkActivity cannot be set"},
      {R"({"verb":"set","path":"sm/pollPeriod","value":1.0})",
       "refused: sm/pollPeriod cannot be set"},
      {R"({"verb":"set","path":"sm/doVerify","value":1})",
       "refused: sm/doVerify is a handler: call it"},
      {R"({"verb":"set","path":"status/name","value":"x"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"status/nativeVlan/et3/1","value":20})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"status/switchPort/et3/1","value":{"created":false}})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"status/switchPort/et3/1:created","value":false})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"status/device/fap0:registered","text":"False"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"status/deviceState/fap0","value":"deviceStateDown"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"sm/status/deviceState/fap0","value":"deviceStateDown"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"sm/config/sliceId","value":"x"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"sm/config/nativeVlan/et3/1","value":20})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"sm/stateTimer/name","value":"x"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"set","path":"config/switchPort/et3/1","value":{"ifName":"et3/2"}})",
       "refused: 'switchPort' does not take that index"},
      {R"({"verb":"set","path":"config/switchPort/et3/1:ifName","value":"et3/2"})",
       "refused: 'switchPort' does not take that index"},
      {R"({"verb":"set","path":"config/device/fap0:devName","value":"fap1"})",
       "refused: 'device' does not take that index"},
      {R"({"verb":"del","path":"config"})",
       "refused: config is not changed as a whole: name one of its attributes"},
      {R"({"verb":"del","path":"config/switchPort"})",
       "refused: config/switchPort is not changed as a whole: name one of its entries"},
      {R"({"verb":"del","path":"config/sliceId"})", "refused: config/sliceId cannot be removed"},
      {R"({"verb":"del","path":"config/name"})", "refused: config/name cannot be removed"},
      {R"({"verb":"del","path":"config/switchPort/et3/1:destId"})",
       "refused: config/switchPort/et3/1:destId is a field: name its record"},
      {R"({"verb":"del","path":"status/switchPort/et3/1"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"del","path":"status/deviceState/fap9"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"del","path":"sm/config/nativeVlan/et3/1"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"del","path":"sm/status"})", "refused: sm/status cannot be removed"},
      {R"({"verb":"del","path":"sm/mode"})", "refused: sm/mode cannot be removed"},
      {R"({"verb":"del","path":"sm/pollPeriod"})", "refused: sm/pollPeriod cannot be removed"},
      {R"({"verb":"del","path":"sm/handleMode"})", "refused: sm/handleMode is a handler: call it"},
      {R"({"verb":"notify","path":"config"})",
       "refused: config is not changed as a whole: name one of its attributes"},
      {R"({"verb":"notify","path":"config/nativeVlan"})",
       "refused: config/nativeVlan is not changed as a whole: name one of its entries"},
      {R"({"verb":"notify","path":"config/sliceId"})",
       "refused: config/sliceId cannot be announced"},
      {R"({"verb":"notify","path":"config/switchPort/et3/1:destId"})",
       "refused: config/switchPort/et3/1:destId is a field: name its record"},
      {R"({"verb":"notify","path":"status/nativeVlan/et3/1"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"notify","path":"sm/config/nativeVlan/et3/1"})",
       "refused: attempting to modify a const instance"},
      {R"({"verb":"notify","path":"sm/mode"})", "refused: sm/mode cannot be announced"},
      {R"({"verb":"notify","path":"sm/doVerify"})", "refused: sm/doVerify is a handler: call it"},
      {R"({"verb":"call","handler":"mode"})", "refused: sm/mode is no handler"},
      {R"({"verb":"call","handler":"sm"})", "path: sm has no attribute 'sm'"},
      {R"({"verb":"call","handler":"sm/config"})", "refused: sm/config is no handler"},
      {R"({"verb":"call","handler":"config/nativeVlan"})",
       "refused: config/nativeVlan is no handler"},
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
  expectRefused({
      {R"({"verb":"call","handler":"doVerify","args":[1]})",
       "value: 'doVerify' does not take so many arguments"},
      {R"({"verb":"call","handler":"doVerify","args":["x"]})",
       "value: 'doVerify' does not take so many arguments"},
      {R"({"verb":"call","handler":"handleMode","args":[null]})",
       "value: 'handleMode' does not take so many arguments"},
      {R"({"verb":"call","handler":"handleTimerExpired","args":[[]]})",
       "value: 'handleTimerExpired' does not take so many arguments"},
      {R"({"verb":"call","handler":"handleInitialized","args":[1]})",
       "value: 'handleInitialized' does not take so many arguments"},
      {R"({"verb":"call","handler":"handleSwitchPort"})",
       "value: 'ifName' is missing or of the wrong type"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":[]})",
       "value: 'ifName' is missing or of the wrong type"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":[7]})",
       "value: expected a string, found 7"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":[null]})",
       "value: expected a string, found null"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":[["et3/1"]]})",
       R"(value: expected a string, found ["et3/1"])"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":["et3/1","et3/2"]})",
       "value: 'handleSwitchPort' does not take so many arguments"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":["'et3/1"]})",
       "value: expected the string's closing apostrophe, found the end of the text"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":["x"]})",
       "value: expected an interface name with 'et' in it, found 'x'"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":[""]})",
       "value: expected an interface name with 'et' in it, found ''"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":["et3/1\u0000"]})",
       R"(value: expected an interface name without NUL, found 'et3/1\x00')"},
      {R"({"verb":"call","handler":"handleSwitchPort","args":["'et3/1\\x00'"]})",
       R"(value: expected an interface name without NUL, found 'et3/1\x00')"},
      {R"({"verb":"call","handler":"handleNativeVlan"})",
       "value: 'ifname' is missing or of the wrong type"},
      {R"({"verb":"call","handler":"handleNativeVlan","args":["eth".]})",
       R"(request: expected a JSON object; at byte 58: syntax error while parsing array - invalid literal; last read: '"eth".'; expected ']')"},
      {R"({"verb":"call","handler":"handleNativeVlan","args":["port 1"]})",
       "value: expected an interface name with 'et' in it, found 'port 1'"},
      {R"({"verb":"call","handler":"sm/handleNativeVlan","args":["\u0000et"]})",
       R"(value: expected an interface name without NUL, found '\x00et')"},
      {R"({"verb":"call","handler":"handleDevice"})",
       "value: 'devName' is missing or of the wrong type"},
      {R"({"verb":"call","handler":"handleDevice","args":[{"devName":"fap0"}]})",
       R"(value: expected a string, found {"devName":"fap0"})"},
      {R"({"verb":"call","handler":"handleDeviceState"})",
       "value: 'devName' is missing or of the wrong type"},
      {R"({"verb":"call","handler":"handleDeviceState","args":[true]})",
       "value: expected a string, found true"},
      {R"({"verb":"call","handler":"hasNotificationActiveIs"})",
       "value: 'hasNotificationActiveIs' is missing or of the wrong type"},
      {R"({"verb":"call","handler":"hasNotificationActiveIs","args":["yes"]})",
       "value: expected True or False, found 'y'"},
      {R"({"verb":"call","handler":"hasNotificationActiveIs","args":[0]})",
       "value: expected true or false, found 0"},
      {R"({"verb":"call","handler":"moxDoZombieReactors","args":["on"]})",
       "value: expected True or False, found 'o'"},
      {R"({"verb":"call","handler":"moxDoZombieReactors","args":[true,true]})",
       "value: 'moxDoZombieReactors' does not take so many arguments"},
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
