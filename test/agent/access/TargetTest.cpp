#include "agent/access/Target.h"

#include "platform/mox/GenericValue.h"
#include "test/agent/support/ServedAgent.h"

namespace Kest::Agent {
namespace {

using Strings = std::vector<std::string>;

class PathTo : public ServedAgent {
 protected:
  PathTo() {
    config->nativeVlanIs("et3/1:type", 1);
    config->nativeVlanIs("etherscan", 2);
    config->nativeVlanIs("et::", 3);
    config->nativeVlanIs("et3/", 4);
    for (char const* name : {"fap0:up", "fap0:devName", "fap0/"}) {
      config->deviceIs(deviceNamed(name));
    }
  }

  static Config::Device deviceNamed(char const* name) {
    Config::Device device;
    device.devNameIs(name);
    device.numFapsIs(2);
    return device;
  }

  /// Where a path leads, as "attribute[key]:field = text form"; or the refusal.
  std::string at(std::string const& path) {
    try {
      Target const target = targetAt(served.roots(), path);
      EXPECT_EQ(target.path, path);
      std::string text;
      if (target.attribute != nullptr) text += target.attribute->name.view();
      if (target.key) text += "[" + std::string(target.key->view()) + "]";
      if (target.field != nullptr) text += ":" + std::string(target.field->name.view());
      if (target.isWholeCollection()) return text + " of " + target.object->strRep().charPtr();
      auto const value = target.read();
      return text + " = " + (value ? value->strRep().charPtr() : "nothing");
    } catch (ControlError const& refused) {
      EXPECT_EQ(refused.kind(), Wire::ErrorKind::path);
      std::string const text = std::string("refused: ") + refused.what();
      return refused.suggestion().empty() ? text : text + " [" + refused.suggestion() + "]";
    }
  }

  Strings onFrom(std::string const& path) {
    return Json::parse(ask(Json{{"verb", "complete"}, {"path", path}}.dump())).get<Strings>();
  }
};

TEST_F(PathTo, ARootIsTheObjectItself) {
  EXPECT_EQ(at("config"), " = EntityPtr('config', 'Hardware::Kest::Slice::KestSliceDmaConfig')");
  EXPECT_EQ(at("status"), " = EntityPtr('status', 'Hardware::Kest::Slice::KestSliceDmaStatus')");
  EXPECT_EQ(at("sm"), " = ObjectPtr('Hardware::Kest::Slice::KestSliceDmaSm')");
}

TEST_F(PathTo, AnAttributeIsItsValueAndACollectionHasEntries) {
  EXPECT_EQ(at("config/sliceId"), "sliceId = 'Linecard1'");
  EXPECT_EQ(at("config/name"), "name = 'config'");
  EXPECT_EQ(at("sm/mode"), "mode = 'smModeInitial'");
  EXPECT_EQ(at("status/switchPort"),
            "switchPort of EntityPtr('status', 'Hardware::Kest::Slice::KestSliceDmaStatus')");
  EXPECT_EQ(at("status/deviceState/fap0"), "deviceState[fap0] = 'deviceStateUp'");
}

TEST_F(PathTo, AKeyIsAllTheRestWithSlashesAndColons) {
  EXPECT_EQ(at("config/nativeVlan/et3/1"), "nativeVlan[et3/1] = 10");
  EXPECT_EQ(at("config/nativeVlan/et3/1:type"), "nativeVlan[et3/1:type] = 1");
  EXPECT_EQ(at("config/nativeVlan/etherscan"), "nativeVlan[etherscan] = 2");
  EXPECT_EQ(at("config/nativeVlan/et::"), "nativeVlan[et::] = 3");
  EXPECT_EQ(at("config/nativeVlan/et3/"), "nativeVlan[et3/] = 4");
  EXPECT_EQ(at("config/nativeVlan//et"), "nativeVlan[/et] = nothing");
}

TEST_F(PathTo, TheEmptyKeyIsAKeyToo) {
  EXPECT_EQ(at("config/nativeVlan/"), "nativeVlan[] = nothing");
  served.config = new Config("config");  // which no state machine observes
  served.config->nativeVlanIs("", 7);
  EXPECT_EQ(at("config/nativeVlan/"), "nativeVlan[] = 7");
}

TEST_F(PathTo, AFieldFollowsAfterAColonUnlessAKeyEndsAlike) {
  EXPECT_EQ(at("config/switchPort/et3/2:destId"), "switchPort[et3/2]:destId = 2");
  EXPECT_EQ(at("status/device/fap0:registered"), "device[fap0]:registered = True");
  EXPECT_EQ(at("config/device/fap0:numFaps"), "device[fap0]:numFaps = 1");
  EXPECT_EQ(at("config/device/fap0/:numFaps"), "device[fap0/]:numFaps = 2");
  EXPECT_EQ(at("config/device/fap0:devName:numFaps"), "device[fap0:devName]:numFaps = 2");
  std::string const whole = at("config/device/fap0:devName");
  EXPECT_EQ(whole.substr(0, 24), "device[fap0:devName] = V");
  EXPECT_EQ(at("config/device/fap0:up:devName"), "device[fap0:up]:devName = 'fap0:up'");
  // Neither an entry nor a field of one: the key as it stands.
  EXPECT_EQ(at("config/device/fap0:colour"), "device[fap0:colour] = nothing");
  EXPECT_EQ(at("config/device/fap9:numFaps"), "device[fap9:numFaps] = nothing");
  EXPECT_EQ(at("config/device/fap0:"), "device[fap0:] = nothing");
  EXPECT_EQ(at("config/nativeVlan/et3/1:vlan"), "nativeVlan[et3/1:vlan] = nothing");
}

TEST_F(PathTo, ReferencesLeadOn) {
  EXPECT_EQ(at("sm/config/sliceId"), "sliceId = 'Linecard1'");
  EXPECT_EQ(at("sm/config/nativeVlan/et3/1"), "nativeVlan[et3/1] = 10");
  EXPECT_EQ(at("sm/status/device/fap0:registered"), "device[fap0]:registered = True");
  EXPECT_EQ(at("sm/stateTimer/name"), "name = 'clock'");
  EXPECT_EQ(at("sm/moxFwkActivity"), "moxFwkActivity = None");
  EXPECT_EQ(at("sm/moxFwkActivity/name"),
            "refused: sm/moxFwkActivity leads no further: it refers to nothing");
  EXPECT_EQ(at("config/parent/name"),
            "refused: config/parent leads no further: it refers to nothing");
  EXPECT_EQ(at("config/sliceId/name"),
            "refused: config/sliceId leads no further: it refers to nothing");
  EXPECT_EQ(at("sm/doVerify/name"), "refused: sm/doVerify leads no further: it refers to nothing");
}

TEST_F(PathTo, NowhereIsRefusedWithTheNameThatWasProbablyMeant) {
  EXPECT_EQ(at(""), "refused: a path begins with one of config, status, sm, not with ''");
  EXPECT_EQ(at("/config"), "refused: a path begins with one of config, status, sm, not with ''");
  EXPECT_EQ(at("confg/sliceId"),
            "refused: a path begins with one of config, status, sm, not with 'confg' [config]");
  EXPECT_EQ(at("STATUS"),
            "refused: a path begins with one of config, status, sm, not with 'STATUS' [status]");
  EXPECT_EQ(at("config/natveVlan/et1"),
            "refused: config has no attribute 'natveVlan' [nativeVlan]");
  EXPECT_EQ(at("config/"), "refused: config has no attribute ''");
  EXPECT_EQ(at("config/switchport"), "refused: config has no attribute 'switchport' [switchPort]");
  EXPECT_EQ(at("config/zzz"), "refused: config has no attribute 'zzz'");
  EXPECT_EQ(at("status/sliceId"), "refused: status has no attribute 'sliceId'");
  EXPECT_EQ(at("sm/config/devic"), "refused: sm/config has no attribute 'devic' [device]");
  EXPECT_EQ(at("sm/config/"), "refused: sm/config has no attribute ''");
  EXPECT_EQ(at("sm//mode"), "refused: sm has no attribute ''");
  EXPECT_EQ(at(std::string("sm/a\0\n", 6)), "refused: sm has no attribute 'a\\x00\\n'");
}

TEST_F(PathTo, EachBeginningGoesOnToWhatIsThere) {
  EXPECT_EQ(onFrom(""), (Strings{"config/", "sm/", "status/"}));
  EXPECT_EQ(onFrom("s"), (Strings{"sm/", "status/"}));
  EXPECT_EQ(
      onFrom("config/"),
      (Strings{"config/changeCount", "config/device/", "config/deviceState/", "config/fullName",
               "config/lookupCount", "config/name", "config/nativeVlan/", "config/parent",
               "config/sliceId", "config/switchPort/", "config/switchportMode/"}));
  EXPECT_EQ(onFrom("status/n"), (Strings{"status/name", "status/nativeVlan/"}));
  EXPECT_EQ(onFrom("sm/config/switchport"), (Strings{"sm/config/switchportMode/"}));
  EXPECT_EQ(onFrom("sm/s"), (Strings{"sm/stateTimer", "sm/status"}));
  EXPECT_EQ(
      onFrom("config/nativeVlan/"),
      (Strings{"config/nativeVlan/et3/", "config/nativeVlan/et3/1", "config/nativeVlan/et3/1:type",
               "config/nativeVlan/et::", "config/nativeVlan/etherscan"}));
  EXPECT_EQ(onFrom("config/nativeVlan/et3/1"),
            (Strings{"config/nativeVlan/et3/1", "config/nativeVlan/et3/1:type"}));
  for (char const* nowhere :
       {"x", "config/x", "nowhere/", "config/sliceId/", "sm/mode/", "sm/doVerify/",
        "sm/moxFwkActivity/", "config/parent/name", "/", "config//"}) {
    EXPECT_EQ(onFrom(nowhere), Strings{}) << nowhere;
  }
}

TEST_F(PathTo, ALongPathIsNotWalkedMoreThanOnce) {
  std::string const slashes(std::size_t{1} << 18, '/');
  EXPECT_EQ(onFrom(slashes), Strings{});
  EXPECT_EQ(onFrom("config" + slashes), Strings{});
  EXPECT_EQ(onFrom("config/nativeVlan/" + slashes), Strings{});
  EXPECT_EQ(at("config/nativeVlan/" + slashes), "nativeVlan[" + slashes + "] = nothing");
}

}  // namespace
}  // namespace Kest::Agent
