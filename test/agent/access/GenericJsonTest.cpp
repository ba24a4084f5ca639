#include "agent/access/GenericJson.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <random>

#include "agent/access/JsonText.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Dir.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/IntrospectionReactor.h"
#include "registry/RecordTypes.h"
#include "registry/SmType.h"
#include "test/model/RecordSamples.h"
#include "test/support/Refusal.h"

namespace Kest::Agent {
namespace {

using Hardware::Kest::Slice::KestSliceDmaConfig;
using Hardware::Kest::Slice::KestSliceDmaStatus;

/// As text, which is the same whether the JSON is made first or not.
std::string jsonOf(Mox::GenericIf const& value) {
  std::string text;
  appendJson(text, value);
  EXPECT_EQ(text, jsonText(toJson(value)));
  return text;
}

template <class T>
std::string json(T const& value) {
  return jsonOf(*Mox::genericOf(value));
}

template <class T>
Mox::MoxType const& typeOf() {
  return *Mox::TypeOf<T>::type();
}

/// The text form of what `text`, JSON, stands for; or the refusal.
template <class T>
std::string read(std::string const& text) {
  std::string form;
  std::string const refused =
      Test::refusal([&] { form = fromJson(typeOf<T>(), Json::parse(text))->strRep().view(); });
  return refused.empty() ? form : "refused: " + refused;
}

template <class T>
std::string typed(std::string const& text) {
  std::string form;
  std::string const refused =
      Test::refusal([&] { form = fromTyped(typeOf<T>(), text)->strRep().view(); });
  return refused.empty() ? form : "refused: " + refused;
}

TEST(GenericJson, HasAFormForEveryKindOfValue) {
  EXPECT_EQ(json(Mox::String8("a'b\n")), R"("a'b\n")");
  EXPECT_EQ(json(Mox::String8("\"\xff")), "\"\\\"\xef\xbf\xbd\"");
  EXPECT_EQ(json(Mox::String8("\\\x7f")), "\"\\\\\x7f\"");
  EXPECT_EQ(json(Mox::String8("\x7f")), "\"\x7f\"");
  EXPECT_EQ(json(Mox::Name("fap0")), R"("fap0")");
  EXPECT_EQ(json(std::uint16_t{4095}), "4095");
  EXPECT_EQ(json(std::uint32_t{4294967295}), "4294967295");
  EXPECT_EQ(json(18446744073709551615ULL), "18446744073709551615");
  EXPECT_EQ(json(2.0), "2.0");
  EXPECT_EQ(json(true), "true");
  EXPECT_EQ(json(Pelk::EthAddr("00:1c:73:0a:0b:0c")), R"("00:1c:73:0a:0b:0c")");
  EXPECT_EQ(json(Hardware::Kest::SmMode::smModePolling_), R"("smModePolling")");
  EXPECT_EQ(json(static_cast<Hardware::Kest::SmMode>(7)), "\"SmMode(7)\"");
  EXPECT_EQ(json(Mox::Ptr<Fru::PciHam const>()), "null");
  Mox::GenericIf::List_ list;
  list.add(Mox::genericOf(std::uint16_t{1}));
  list.add(Mox::genericOf(Mox::String8("x")));
  EXPECT_EQ(jsonOf(list), R"([1,"x"])");
}

TEST(GenericJson, ARecordIsAnObjectOfItsFieldsInOrder) {
  KestSliceDmaConfig::SwitchPort port;
  port.ifNameIs("et3/1");
  port.destIdIs(7);
  port.hwLagIs(true);
  EXPECT_EQ(json(port),
            R"({"ifName":"et3/1","destId":7,"shadowIntfId":0,"trafficClass":0,"devName":"",)"
            R"("fapNum":0,"ctrl":false,"hwLag":true,"macAddr":"00:00:00:00:00:00"})");
}

TEST(GenericJson, AReferenceIsThePathOfItsEntity) {
  Mox::Ptr<Fru::PciHam> const handle(new Fru::PciHam("0000:05:00.0"));
  Mox::dirAt("/generic")->entityIs(handle);
  KestSliceDmaConfig::Device device;
  device.pciHamIs(handle);
  Json const form = toJson(*Mox::genericOf(device));
  EXPECT_EQ(form.at("pciHam"), "/generic/0000:05:00.0");
  auto const back = fromJson(typeOf<KestSliceDmaConfig::Device>(), form);
  EXPECT_EQ(*Mox::genericVal<KestSliceDmaConfig::Device>(back.get()), device);
  EXPECT_EQ(read<Fru::PciHam>("\"/generic/0000:05:00.0\""),
            "EntityPtr('/generic/0000:05:00.0', 'Fru::PciHam')");
  EXPECT_EQ(typed<Fru::PciHam>("/generic/0000:05:00.0"),
            "EntityPtr('/generic/0000:05:00.0', 'Fru::PciHam')");
  EXPECT_EQ(read<Fru::PciHam>("null"), "None");
  EXPECT_EQ(read<Fru::PciHam>("\"/nowhere\""), "refused: there is no entity at '/nowhere'");
  Mox::root()->entityDel(Mox::Name("generic"));
}

TEST(GenericJson, FieldsThatAreNotNamedKeepTheRecordsDefaults) {
  EXPECT_EQ(read<KestSliceDmaStatus::Device>(R"({"registered": true})"),
            "Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device', ** {'devName': '', "
            "'registered': True})");
  auto const device = fromJson(typeOf<KestSliceDmaConfig::Device>(), Json::object());
  EXPECT_EQ(*Mox::genericVal<KestSliceDmaConfig::Device>(device.get()),
            KestSliceDmaConfig::Device());
}

TEST(GenericJson, RefusesWhatIsNoValueOfTheType) {
  EXPECT_EQ(read<bool>("1"), "refused: expected true or false, found 1");
  EXPECT_EQ(read<std::uint16_t>("65536"),
            "refused: expected a number from 0 to 65535, found a larger one");
  EXPECT_EQ(read<std::uint16_t>("-1"), "refused: expected a whole number from 0, found -1");
  EXPECT_EQ(read<std::uint16_t>("1.5"), "refused: expected a whole number from 0, found 1.5");
  EXPECT_EQ(read<std::uint16_t>("\"1\""), "refused: expected a whole number from 0, found \"1\"");
  EXPECT_EQ(read<double>("[]"), "refused: expected a number, found []");
  EXPECT_EQ(read<Mox::String8>("7"), "refused: expected a string, found 7");
  EXPECT_EQ(read<Fru::PciHam>("7"), "refused: expected a path or null, found 7");
  EXPECT_EQ(read<KestSliceDmaStatus::Device>("[1]"),
            "refused: expected an object of the fields, found [1]");
  EXPECT_EQ(read<KestSliceDmaStatus::Device>(R"({"name": 1})"),
            "refused: Device has no such attribute: name");
  EXPECT_EQ(read<KestSliceDmaStatus::Device>(R"({"registered": "yes"})"),
            "refused: registered: expected true or false, found \"yes\"");
  EXPECT_EQ(read<KestSliceDmaConfig::Device>(R"({"numFaps": 4})"),
            "refused: Device::numFaps < 1 or > 3 not allowed");
  EXPECT_EQ(read<KestSliceDmaConfig::SwitchPort>(R"({"macAddr": "00:1c"})"),
            "refused: macAddr: expected a MAC address such as '00:1c:73:0a:0b:0c', found '00:1c'");
  EXPECT_EQ(read<std::uint16_t>("\"" + std::string(100, 'x') + "\""),
            "refused: expected a whole number from 0, found \"" + std::string(59, 'x') + "...");
}

TEST(GenericJson, WhatAPersonTypesMayDoWithoutApostrophes) {
  EXPECT_EQ(typed<Mox::String8>("Linecard 4"), "'Linecard 4'");
  EXPECT_EQ(typed<Mox::String8>("'Linecard\\n4'"), "'Linecard\\n4'");
  EXPECT_EQ(typed<Mox::String8>(""), "''");
  EXPECT_EQ(typed<Pelk::EthAddr>("00:1c:73:0a:0b:0c"), "'00:1c:73:0a:0b:0c'");
  EXPECT_EQ(typed<std::uint16_t>("10"), "10");
  for (char const* flag : {"True", "true"}) EXPECT_EQ(typed<bool>(flag), "True");
  for (char const* flag : {"False", "false"}) EXPECT_EQ(typed<bool>(flag), "False");
  EXPECT_EQ(typed<double>("2.5"), "2.5");
  EXPECT_EQ(typed<Fru::PciHam>("None"), "None");
  for (char const* mode : {"smModePolling", "'smModePolling'", "polling", "2"}) {
    EXPECT_EQ(typed<Hardware::Kest::SmMode>(mode), "'smModePolling'") << mode;
  }
  EXPECT_EQ(typed<KestSliceDmaStatus::Device>(R"({"devName": "fap0"})"),
            "Value('Hardware::Kest::Slice::KestSliceDmaStatus::Device', ** {'devName': 'fap0', "
            "'registered': False})");
}

TEST(GenericJson, WhatAPersonMistypesIsRefused) {
  EXPECT_EQ(typed<Mox::String8>("'open"),
            "refused: expected the string's closing apostrophe, found the end of the text");
  EXPECT_EQ(typed<Mox::String8>("'a' b"), "refused: junk at column 3 deserializing 'a' b");
  EXPECT_EQ(typed<std::uint16_t>("ten"), "refused: expected a decimal number, found 't'");
  EXPECT_EQ(typed<std::uint16_t>("10 "), "refused: junk at column 2 deserializing 10 ");
  EXPECT_EQ(typed<bool>("TRUE"), "refused: expected True or False, found 'T'");
  EXPECT_EQ(typed<Hardware::Kest::SmMode>("3"),
            "refused: expected 'smModeInitial', 'smModeStandby' or 'smModePolling', found '3'");
  EXPECT_EQ(typed<KestSliceDmaStatus::Device>("{"),
            "refused: expected a JSON object; at byte 2: syntax error while parsing object key - "
            "unexpected end of input; expected string literal");
}

template <class Record>
class RecordJson : public testing::Test {};
using Records = testing::Types<KestSliceDmaConfig::SwitchPort, KestSliceDmaConfig::Device,
                               KestSliceDmaStatus::SwitchPort, KestSliceDmaStatus::Device>;
TYPED_TEST_SUITE(RecordJson, Records);

TYPED_TEST(RecordJson, ReadsBackToAnEqualRecord) {
  std::mt19937_64 random(20261121);
  for (int run = 0; run < 1000; ++run) {
    auto const record = Hardware::Kest::Slice::randomRecord<TypeParam>(random);
    Json const form = toJson(*Mox::genericOf(record));
    auto const back = fromJson(typeOf<TypeParam>(), form);
    ASSERT_EQ(*Mox::genericVal<TypeParam>(back.get()), record) << form;
  }
}

}  // namespace
}  // namespace Kest::Agent
