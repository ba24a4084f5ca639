#include <gtest/gtest.h>

#include "test/agent/support/ServedAgent.h"

namespace Kest::Agent {
namespace {

using Verb = ServedAgent;

TEST_F(Verb, GetReadsWhateverAPathLeadsTo) {
  EXPECT_EQ(ask(R"({"verb":"get","path":"config/sliceId"})"),
            R"({"path":"config/sliceId","type":"Mox::String","value":"Linecard1"})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"config/nativeVlan/et3/1"})"),
            R"({"path":"config/nativeVlan/et3/1","type":"U16","value":10})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"status/nativeVlan"})"),
            R"({"path":"status/nativeVlan","type":"U16","value":{"et3/1":10}})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"config/switchPort/et3/2:destId"})"),
            R"({"path":"config/switchPort/et3/2:destId","type":"U32","value":2})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"sm/mode"})"),
            R"({"path":"sm/mode","type":"Hardware::Kest::SmMode","value":"smModeInitial"})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"sm/config/deviceState/fap0"})"),
            R"({"path":"sm/config/deviceState/fap0",)"
            R"("type":"Hardware::Kest::Slice::DeviceState","value":"deviceStateUp"})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"sm/pollPeriod","form":"text"})"),
            R"({"path":"sm/pollPeriod","type":"double","value":"2.0"})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"sm"})"),
            R"({"path":"sm","type":"Hardware::Kest::Slice::KestSliceDmaSm","value":{)"
            R"("moxFwkActivity":null,"config":"config","status":"status","pollPeriod":2.0,)"
            R"("stateTimer":"clock","mode":"smModeInitial"}})");
}

TEST_F(Verb, SetChangesAndSaysWhetherItDid) {
  std::string const vlan = R"({"verb":"set","path":"config/nativeVlan/et3/1","value":20})";
  EXPECT_EQ(ask(vlan),
            R"({"path":"config/nativeVlan/et3/1","type":"U16","changed":true,"value":20})");
  EXPECT_EQ(status->nativeVlan("et3/1"), 20);
  EXPECT_EQ(ask(vlan),
            R"({"path":"config/nativeVlan/et3/1","type":"U16","changed":false,"value":20})");
  EXPECT_EQ(
      ask(R"({"verb":"set","path":"config/sliceId","text":"Linecard 2"})"),
      R"({"path":"config/sliceId","type":"Mox::String","changed":true,"value":"Linecard 2"})");
  EXPECT_EQ(ask(R"({"verb":"set","path":"config/switchportMode/et3/1","text":"dot1qTunnel",)"
                R"("form":"text"})"),
            R"({"path":"config/switchportMode/et3/1","type":"Bridging::SwitchportMode",)"
            R"("changed":true,"value":"'switchportModeDot1qTunnel'"})");
  EXPECT_TRUE(Hardware::Kest::Sim::simDriver().interface("et3/1")->mode);
}

TEST_F(Verb, SetReplacesARecordWholeOrOneFieldOfIt) {
  ask(R"({"verb":"set","path":"config/switchPort/et3/2:destId","value":5})");
  EXPECT_EQ(config->switchPort("et3/2").destId(), 5U);
  EXPECT_EQ(config->switchPort("et3/2").devName(), "fap0");
  ask(R"({"verb":"set","path":"config/switchPort/et3/9","value":{"destId":9,"devName":"fap0"}})");
  EXPECT_EQ(config->switchPort("et3/9").ifName(), "et3/9");
  EXPECT_TRUE(status->switchPort("et3/9").created());
}

TEST_F(Verb, SetOfARecordChangesTheFieldsThatItNames) {
  auto const port = [&] { return config->switchPort("et3/2"); };
  Config::SwitchPort const before = port();
  ask(R"({"verb":"set","path":"config/switchPort/et3/2","text":"{\"destId\":5}"})");
  EXPECT_EQ(port().destId(), 5U);
  EXPECT_EQ(port().macAddr(), before.macAddr());
  ask(R"({"verb":"set","path":"config/switchPort/et3/2","value":{"destId":6},"replace":false})");
  EXPECT_EQ(port().destId(), 6U);
  EXPECT_EQ(port().devName(), "fap0");
  ask(R"({"verb":"set","path":"config/switchPort/et3/2","value":{"ctrl":true},"replace":true})");
  EXPECT_EQ(ask(R"({"verb":"get","path":"config/switchPort/et3/2"})"),
            R"({"path":"config/switchPort/et3/2",)"
            R"("type":"Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort","value":{)"
            R"("ifName":"et3/2","destId":0,"shadowIntfId":0,"trafficClass":0,"devName":"",)"
            R"("fapNum":0,"ctrl":true,"hwLag":false,"macAddr":"00:00:00:00:00:00"}})");
  ask(R"({"verb":"set","path":"config/switchPort/et3/2","text":)"
      R"("Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** )"
      R"x({'ifName': 'et3/2', 'destId': 7})"})x");
  EXPECT_EQ(port().destId(), 7U);
  EXPECT_FALSE(port().ctrl());
  EXPECT_EQ(ask(R"({"verb":"set","path":"config/sliceId","text":"x","replace":null})"),
            "request: expected true or false as 'replace', found null");
}

TEST_F(Verb, SetTakesFlagsAsTheyAreShownAndAsTextForms) {
  for (char const* flag : {"true", "false", "True", "False"}) {
    ask(R"({"verb":"set","path":"config/switchPort/et3/2:ctrl","text":")" + std::string(flag) +
        "\"}");
    EXPECT_EQ(config->switchPort("et3/2").ctrl(), flag[0] == 't' || flag[0] == 'T') << flag;
    ask(R"({"verb":"call","handler":"hasNotificationActiveIs","args":[")" + std::string(flag) +
        "\"]}");
    EXPECT_EQ(sm->hasNotificationActive(), flag[0] == 't' || flag[0] == 'T') << flag;
    sm->hasNotificationActiveIs(true);
  }
}

/// As when a slice is applied: registering a device leaves it down.
TEST_F(Verb, SetOfADeviceBringsItBackToItsState) {
  auto const isUp = [] { return Hardware::Kest::Sim::simDriver().device("fap0")->up; };
  auto const clean = R"({"differences":[],"clean":true})";
  ask(R"({"verb":"set","path":"config/device/fap0:numFaps","value":2})");
  EXPECT_EQ(Hardware::Kest::Sim::simDriver().device("fap0")->param->numFaps, 2U);
  EXPECT_TRUE(isUp());
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);
  ask(R"({"verb":"set","path":"config/device/fap0","value":{"numFaps":3}})");
  EXPECT_TRUE(isUp());
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);

  std::uint64_t const calls = Hardware::Kest::Sim::simDriver().log().total();
  ask(R"({"verb":"set","path":"config/device/fap0","value":{"numFaps":3}})");
  EXPECT_EQ(Hardware::Kest::Sim::simDriver().log().total(), calls);

  ask(R"({"verb":"del","path":"config/device/fap0"})");
  ask(R"({"verb":"set","path":"config/device/fap0","value":{"pciHam":"/pci/0000:05:00.0"}})");
  EXPECT_TRUE(isUp());
  EXPECT_EQ(ask(R"({"verb":"verify"})"), clean);
}

TEST_F(Verb, DelRemovesAndShowsWhatWasThere) {
  std::string const del = R"({"verb":"del","path":"config/nativeVlan/et3/1"})";
  EXPECT_EQ(ask(del),
            R"({"path":"config/nativeVlan/et3/1","type":"U16","removed":true,"value":10})");
  EXPECT_EQ(status->nativeVlan("et3/1"), 0);
  EXPECT_EQ(ask(del),
            R"({"path":"config/nativeVlan/et3/1","type":"U16","removed":false,"value":null})");
}

TEST_F(Verb, NotifyAnnouncesAKeyAgain) {
  std::uint64_t const before = Hardware::Kest::Sim::simDriver().log().total();
  std::uint64_t const changes = config->changeCount();
  EXPECT_EQ(ask(R"({"verb":"notify","path":"config/switchPort/et3/2"})"),
            R"({"path":"config/switchPort/et3/2"})");
  EXPECT_GT(Hardware::Kest::Sim::simDriver().log().total(), before);
  EXPECT_EQ(config->changeCount(), changes);
}

TEST_F(Verb, CallRunsAHandlerByItsNameOrPath) {
  EXPECT_EQ(ask(R"({"verb":"call","handler":"doVerify"})"), R"({"handler":"sm/doVerify"})");
  std::uint64_t const before = Hardware::Kest::Sim::simDriver().log().total();
  EXPECT_EQ(ask(R"({"verb":"call","handler":"sm/handleNativeVlan","args":["et3/1"]})"),
            R"({"handler":"sm/handleNativeVlan"})");
  EXPECT_EQ(Hardware::Kest::Sim::simDriver().log().total(), before + 1);
  EXPECT_EQ(ask(R"({"verb":"call","handler":"hasNotificationActiveIs","args":[false]})"),
            R"({"handler":"sm/hasNotificationActiveIs"})");
  EXPECT_FALSE(sm->hasNotificationActive());
}

TEST_F(Verb, ModeArmsThePoll) {
  EXPECT_EQ(ask(R"({"verb":"mode"})"), R"({"mode":"smModeInitial","number":0})");
  EXPECT_EQ(ask(R"({"verb":"mode","mode":"polling"})"), R"({"mode":"smModePolling","number":2})");
  EXPECT_EQ(sm->stateTimerReactor()->timeMin(), Mox::now() + 2.0);
  EXPECT_EQ(ask(R"({"verb":"mode","mode":0})"), R"({"mode":"smModeInitial","number":0})");
}

TEST_F(Verb, TypesAndDescribeTellTheRegistry) {
  Json const types = Json::parse(ask(R"({"verb":"types"})"));
  std::vector<std::string> own;
  for (Json const& type : types) {
    std::string const name = type.at("name");
    if (name.starts_with("Hardware::Kest::Slice::")) {
      own.push_back(name.substr(23) + " " + type.at("kind").get<std::string>());
    }
  }
  EXPECT_EQ(own, (std::vector<std::string>{
                     "DeviceState enumeration", "KestSliceDmaConfig entity",
                     "KestSliceDmaConfig::SwitchPort value", "KestSliceDmaConfig::Device value",
                     "KestSliceDmaStatus entity", "KestSliceDmaStatus::SwitchPort value",
                     "KestSliceDmaStatus::Device value", "KestSliceDmaSm object"}));
  EXPECT_EQ(ask(R"({"verb":"describe","type":"KestSliceDmaStatus::Device"})"),
            R"({"name":"Hardware::Kest::Slice::KestSliceDmaStatus::Device","kind":"value",)"
            R"("constructor":[{"name":"devName","type":"Mox::String"},)"
            R"({"name":"registered","type":"bool"}],)"
            R"("attributes":[{"name":"devName","id":2,"type":"Mox::String","class":"scalar",)"
            R"("flags":["visible"]},{"name":"registered","id":3,"type":"bool","class":"scalar",)"
            R"("flags":["visible"]}]})");
  EXPECT_EQ(ask(R"({"verb":"describe","type":"Device"})"),
            "path: 'Device' may be Hardware::Kest::Slice::KestSliceDmaConfig::Device "
            "Hardware::Kest::Slice::KestSliceDmaStatus::Device");
}

TEST_F(Verb, CompleteKnowsPathsTypesAndHandlers) {
  EXPECT_EQ(ask(R"({"verb":"complete","path":"s"})"), R"(["sm/","status/"])");
  EXPECT_EQ(ask(R"({"verb":"complete","path":"config/n"})"),
            R"(["config/name","config/nativeVlan/"])");
  EXPECT_EQ(ask(R"({"verb":"complete","path":"config/switchPort/et3/"})"),
            R"(["config/switchPort/et3/1","config/switchPort/et3/2"])");
  EXPECT_EQ(ask(R"({"verb":"complete","path":"sm/config/native"})"),
            R"(["sm/config/nativeVlan/"])");
  EXPECT_EQ(ask(R"({"verb":"complete","path":"sm/mode/"})"), "[]");
  EXPECT_EQ(ask(R"({"verb":"complete","path":"nowhere/"})"), "[]");
  EXPECT_EQ(ask(R"({"verb":"complete","type":"Hardware::Kest::S"})"),
            R"(["Hardware::Kest::SmMode","Hardware::Kest::Slice::DeviceState",)"
            R"("Hardware::Kest::Slice::KestSliceDmaConfig",)"
            R"("Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort",)"
            R"("Hardware::Kest::Slice::KestSliceDmaConfig::Device",)"
            R"("Hardware::Kest::Slice::KestSliceDmaStatus",)"
            R"("Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort",)"
            R"("Hardware::Kest::Slice::KestSliceDmaStatus::Device",)"
            R"("Hardware::Kest::Slice::KestSliceDmaSm"])");
  EXPECT_EQ(ask(R"({"verb":"complete","handler":"do"})"), R"(["doVerify"])");
}

TEST_F(Verb, ApplyBringsTheConfigurationInLineAndDiffOnlyTells) {
  std::string content = slice;
  content.replace(content.find("'et3/1' 10"), 10, "'et3/1' 30");
  Json request{{"verb", "diff"}, {"file", "new.slice"}, {"content", content}};
  EXPECT_EQ(ask(request.dump()), R"({"steps":["~ nativeVlan et3/1 10 -> 30"],"unchanged":5})");
  EXPECT_EQ(status->nativeVlan("et3/1"), 10);
  request["verb"] = "apply";
  EXPECT_EQ(ask(request.dump()), R"({"announced":1,"unchanged":5,"notUp":[]})");
  EXPECT_EQ(status->nativeVlan("et3/1"), 30);
  EXPECT_EQ(ask(request.dump()), R"({"announced":0,"unchanged":6,"notUp":[]})");
}

TEST_F(Verb, ShowSetsConfigurationStatusAndDriverBesideEachOther) {
  Json const shown = Json::parse(ask(R"({"verb":"show"})"));
  EXPECT_EQ(shown.at("devices").at(0).dump(),
            R"({"name":"fap0","config":{"devName":"fap0","pciHam":"/pci/0000:05:00.0",)"
            R"("fapType":"fapTypeArad","numFaps":1,"cpuTmSysPort":0,"cpuEthSysPort":0,)"
            R"("cpuRawSysPort":0,"sflowPort":0,"cpuAradSysPort":0,"cpuArad":0,"cpuAradBridge":0,)"
            R"("deviceState":"deviceStateUp"},"status":{"devName":"fap0","registered":true,)"
            R"("deviceState":"deviceStateUp"},"driver":{"numFaps":1,"fapType":"fapTypeArad",)"
            R"("cpuTmSysPort":0,"cpuEthSysPort":0,"cpuRawSysPort":0,"sflowPort":0,)"
            R"("cpuAradSysPort":0,"cpuArad":0,"cpuAradBridge":0,"pciHam":"/pci/0000:05:00.0",)"
            R"("registered":true,"up":true}})");
  EXPECT_EQ(shown.at("ports").at(0).dump(),
            R"({"name":"et3/1","config":{"ifName":"et3/1","destId":1,"shadowIntfId":0,)"
            R"("trafficClass":0,"devName":"fap0","fapNum":0,"ctrl":false,"hwLag":false,)"
            R"("macAddr":"00:1c:73:00:00:01","nativeVlan":10,)"
            R"("switchportMode":"switchportModeTrunk"},"status":{"ifName":"et3/1","created":true,)"
            R"("nativeVlan":10,"switchportMode":"switchportModeTrunk"},"driver":{"destId":1,)"
            R"("shadowIntfId":0,"trafficClass":0,"devName":"fap0","fapNum":0,"ctrl":false,)"
            R"("hwLag":false,"macAddr":"00:1c:73:00:00:01","nativeVlan":10,"mode":false}})");
  EXPECT_EQ(shown.at("ports").size(), 2U);
}

TEST_F(Verb, DriverSteersTheSimulatedOne) {
  EXPECT_EQ(ask(R"({"verb":"driver","action":"flip","device":"fap0"})"), "{}");
  EXPECT_FALSE(Hardware::Kest::Sim::simDriver().device("fap0")->up);
  EXPECT_EQ(ask(R"({"verb":"driver","action":"fault","text":"fail kestDmaIfdel * 5 always\n"})"),
            "{}");
  EXPECT_EQ(Hardware::Kest::Sim::simDriver().faultsText(), "fail kestDmaIfdel * 5 always\n");
  Json const log = Json::parse(ask(R"({"verb":"driver","action":"log"})"));
  EXPECT_EQ(log.at("text"), Hardware::Kest::Sim::simDriver().logText());
  Json const dump = Json::parse(ask(R"({"verb":"driver","action":"dump"})"));
  EXPECT_EQ(dump.at("text"), Hardware::Kest::Sim::simDriver().dumpText());
  Json const state = Json::parse(ask(R"({"verb":"driver","action":"state"})"));
  EXPECT_EQ(state.at("state").at("interfaces").size(), 2U);
}

TEST_F(Verb, TraceIsSwitchedAndTold) {
  EXPECT_EQ(ask(R"({"verb":"trace","setting":"VerbsTest/0-28"})"),
            R"({"setting":"VerbsTest/0128"})");
  EXPECT_EQ(ask(R"({"verb":"trace","setting":"VerbsTest*/*"})"),
            R"({"setting":"VerbsTest/0128,VerbsTest*/*"})");
  EXPECT_EQ(ask(R"({"verb":"trace"})"), R"({"setting":"VerbsTest/0128,VerbsTest*/*"})");
}

TEST_F(Verb, WhileASliceIsBeingAppliedNothingElseIsChanged) {
  applying = true;
  for (char const* request : {R"({"verb":"set","path":"config/sliceId","value":"x"})",
                              R"({"verb":"del","path":"config/nativeVlan/et3/1"})",
                              R"({"verb":"notify","path":"config/nativeVlan/et3/1"})",
                              R"({"verb":"call","handler":"doVerify"})",
                              R"({"verb":"apply","file":"x.slice","content":""})"}) {
    EXPECT_EQ(ask(request), "busy: a slice file is being applied: try again when it is done");
  }
  EXPECT_EQ(ask(R"({"verb":"get","path":"config/sliceId"})"),
            R"({"path":"config/sliceId","type":"Mox::String","value":"Linecard1"})");
}

}  // namespace
}  // namespace Kest::Agent
