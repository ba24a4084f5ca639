#include <gtest/gtest.h>

#include <vector>

#include "platform/mox/RangeException.h"
#include "platform/mox/TypeNode.h"
#include "registry/RecordTypes.h"
#include "test/model/RecordSamples.h"
#include "test/registry/Access.h"
#include "test/support/Refusal.h"

/// Generic access to the four records and to the device state.
namespace Hardware::Kest::Slice {
namespace {

using Mox::genericOf;
using Mox::wholeAttributeId;
using Test::badIndex;
using Test::constInstance;
using Test::genericRefusal;
using Test::noSuchAttribute;
using Test::opNotSupported;
using Test::refusal;
using Test::unknownArg;
using Test::wrongType;

std::vector<Mox::Attribute> const& fieldsOf(Mox::GenericIf const& record) {
  return record.type()->typeNode()->attributes();
}

Generic field(Mox::GenericIf& record, Mox::Attribute const& attribute) {
  return operate(record, {attribute.id, Code::read});
}

/// The first `count` fields, in order.
List partsOf(Mox::GenericIf& record, std::size_t count) {
  List parts;
  for (std::size_t i = 0; i < count; ++i) parts.add(field(record, fieldsOf(record)[i]));
  return parts;
}

std::string name(Mox::String8 const& string) {
  return std::string(string.view());
}

template <class Record>
class RecordAccessTest : public testing::Test {
 protected:
  Random random{20240201};
  Record const sample = randomRecord<Record>(random);
  Generic const generic = genericOf(sample, false);
  Generic const constant = genericOf(sample, true);
  std::string const typeName = Record::typeName;
};

TYPED_TEST_SUITE(RecordAccessTest, AllRecords);

TYPED_TEST(RecordAccessTest, ReadsEveryFieldAsTheTextFormPrintsIt) {
  for (int i = 0; i < 200; ++i) {
    auto const value = randomRecord<TypeParam>(this->random);
    Generic const record = genericOf(value);
    std::string fields;
    for (Mox::Attribute const& attribute : fieldsOf(*record)) {
      Generic const read = field(*record, attribute);
      EXPECT_EQ(read->type(), attribute.type);
      fields += (fields.empty() ? "'" : ", '") + name(attribute.name) + "': ";
      fields += name(read->strRep());
    }
    ASSERT_EQ(around<TypeParam>(fields), valueToStrep(value));
    ASSERT_EQ(record->strRep(), valueToStrep(value));
  }
}

TYPED_TEST(RecordAccessTest, IsMadeOfItsFieldsInOrder) {
  for (int i = 0; i < 200; ++i) {
    auto const value = randomRecord<TypeParam>(this->random);
    Generic const record = genericOf(value);
    List const parts = partsOf(*record, fieldsOf(*record).size());
    Generic const made = this->constant->genericIfListConstructor(parts);
    ASSERT_EQ(valueOf<TypeParam>(made), value);
    ASSERT_FALSE(made->isConst());
    ASSERT_EQ(valueOf<TypeParam>(record->type()->genericIfNew(parts)), value);
  }
}

TYPED_TEST(RecordAccessTest, MadeOfFewerFieldsKeepsTheDefaultsOfTheRest) {
  auto const& fields = fieldsOf(*this->generic);
  Generic const defaults = genericOf(TypeParam());
  for (std::size_t count = 0; count <= fields.size(); ++count) {
    Generic const made = this->generic->genericIfListConstructor(partsOf(*this->generic, count));
    for (std::size_t i = 0; i < fields.size(); ++i) {
      Mox::GenericIf& expected = i < count ? *this->generic : *defaults;
      EXPECT_TRUE(equal(*field(*made, fields[i]), field(expected, fields[i]).get()))
          << count << " given, " << fields[i].name;
    }
  }
}

TYPED_TEST(RecordAccessTest, IsNotMadeOfAPartOfTheWrongType) {
  auto const& fields = fieldsOf(*this->generic);
  for (std::size_t at = 0; at < fields.size(); ++at) {
    List parts = partsOf(*this->generic, at);
    parts.add(genericOf(Mox::Name("no field has this type")));
    EXPECT_EQ(genericRefusal([&] { this->generic->genericIfListConstructor(parts); }),
              wrongType(name(fields[at].name)));
  }
}

TYPED_TEST(RecordAccessTest, IsReplacedAsAWholeUnlessConst) {
  using Adapter = typename TypeParam::GenericIf_;
  auto const other = randomRecord<TypeParam>(this->random);
  Generic const copy = this->generic->clone();
  EXPECT_FALSE(copy->isConst());
  dynamic_cast<Adapter&>(*copy).valIs(other);
  EXPECT_EQ(valueOf<TypeParam>(copy), other);
  EXPECT_EQ(valueOf<TypeParam>(this->generic), this->sample) << "a copy of its own";

  Generic const fixed = this->constant->clone();
  EXPECT_EQ(genericRefusal([&] { dynamic_cast<Adapter&>(*fixed).valIs(other); }), constInstance());
  EXPECT_EQ(valueOf<TypeParam>(fixed), this->sample);
}

TYPED_TEST(RecordAccessTest, IsNotMadeOfTooManyPartsOrOfNoList) {
  List parts = partsOf(*this->generic, fieldsOf(*this->generic).size());
  parts.add(genericOf(true));
  std::string const shortName = this->typeName.substr(this->typeName.rfind(':') + 1);
  EXPECT_EQ(genericRefusal([&] { this->generic->genericIfListConstructor(parts); }),
            unknownArg(shortName));
  EXPECT_EQ(genericRefusal([&] { this->generic->genericIfListConstructor(*this->generic); }),
            wrongType("List"));
}

TYPED_TEST(RecordAccessTest, FieldsAreReadOnlyAndTakeNoIndex) {
  for (Mox::Attribute const& attribute : fieldsOf(*this->generic)) {
    EXPECT_EQ(refused(*this->generic, {attribute.id, Code::read, this->generic.get()}),
              badIndex(name(attribute.name)));
    Generic const value = field(*this->generic, attribute);
    for (unsigned const code : {1U, 99U, 100U, 127U, 128U, 129U, 130U, 131U, 4096U}) {
      EXPECT_EQ(refused(*this->generic, {attribute.id, Code(code)}, value.get()),
                opNotSupported(name(attribute.name), code));
    }
  }
  EXPECT_EQ(valueOf<TypeParam>(this->generic), this->sample);
}

TYPED_TEST(RecordAccessTest, AConstAdapterRefusesBeforeTheAttributeIsLookedAt) {
  for (Mox::AttributeId const id : {0U, 1U, 2U, 3U, 99U, 99999U}) {
    for (unsigned const code : {128U, 129U, 131U, 4096U}) {
      EXPECT_EQ(refused(*this->constant, {id, Code(code), this->generic.get()}), constInstance());
    }
  }
}

TYPED_TEST(RecordAccessTest, IsEqualAsTheRecordsAre) {
  EXPECT_TRUE(equal(*this->generic, this->constant.get()));
  for (int i = 0; i < 100; ++i) {
    auto const other = randomRecord<TypeParam>(this->random);
    EXPECT_EQ(equal(*this->generic, genericOf(other).get()), this->sample == other);
  }
  EXPECT_EQ(genericRefusal([&] { equal(*this->generic, nullptr); }), wrongType("moxOpArg"));
  EXPECT_EQ(genericRefusal([&] { equal(*this->generic, string("et1").get()); }),
            wrongType("moxOpArg"));
}

TYPED_TEST(RecordAccessTest, EverythingElseIsLeftToTheFramework) {
  EXPECT_EQ(valueOf<TypeParam>(operate(*this->generic, {wholeAttributeId, Code::read})),
            this->sample);
  for (unsigned const code : {1U, 99U, 101U, 128U, 129U, 130U, 131U}) {
    EXPECT_EQ(refused(*this->generic, {wholeAttributeId, Code(code)}, this->constant.get()),
              opNotSupported(this->typeName, code));
  }
  auto const after = static_cast<Mox::AttributeId>(2 + fieldsOf(*this->generic).size());
  for (Mox::AttributeId const id : {Mox::AttributeId{1}, after, Mox::AttributeId{258}}) {
    EXPECT_EQ(refused(*this->generic, {id, Code::read}),
              noSuchAttribute(this->typeName, std::to_string(id)));
    EXPECT_EQ(refused(*this->generic, {id, Code::store}),
              noSuchAttribute(this->typeName, std::to_string(id)));
  }
}

TYPED_TEST(RecordAccessTest, KnowsItsFieldsByName) {
  for (Mox::Attribute const& attribute : fieldsOf(*this->generic)) {
    EXPECT_EQ(this->generic->attributeId(attribute.name), attribute.id);
  }
  for (char const* unknown : {"", "value", "DevName", "switchPort"}) {
    EXPECT_EQ(genericRefusal([&] { this->generic->attributeId(unknown); }),
              noSuchAttribute(this->typeName, unknown));
  }
}

TYPED_TEST(RecordAccessTest, IsReadFromItsText) {
  Mox::MoxType const& type = *TypeParam::_fwkType();
  Generic const read = type.genericIf(valueToStrep(this->sample), false);
  EXPECT_EQ(valueOf<TypeParam>(read), this->sample);
  EXPECT_FALSE(read->isConst());
  std::string const text = name(valueToStrep(this->sample)) + "x";
  EXPECT_EQ(refusal([&] { type.genericIf(Mox::String8(text), true); }),
            "junk at column " + std::to_string(text.size() - 1) + " deserializing " + text);
  EXPECT_EQ(refusal([&] { type.genericIf(Mox::String8("None"), true); }),
            "expected Value, found 'N'");
}

TYPED_TEST(RecordAccessTest, IsCopiedOutOfAnotherAdapterOfItsType) {
  Mox::MoxType const& type = *TypeParam::_fwkType();
  EXPECT_EQ(valueOf<TypeParam>(type.genericIf(this->constant.get(), false)), this->sample);
  EXPECT_EQ(valueOf<TypeParam>(type.genericIf(&this->sample, false)), this->sample);
  EXPECT_EQ(genericRefusal([&] { type.genericIf(string("et1").get(), false); }),
            wrongType(this->typeName));
}

TEST(ConfigDeviceAccess, RefusesAListOfTwelve) {
  Generic const device = genericOf(ConfigDevice());
  List parts = partsOf(*device, 3);
  for (int more = 0; more < 9; ++more) parts.add(number(0));  // of them no FAPs, which comes later
  EXPECT_EQ(genericRefusal([&] { device->genericIfListConstructor(parts); }), unknownArg("Device"));
}

TEST(ConfigDeviceAccess, RefusesANumberOfFapsOutsideOneToThree) {
  Generic const device = genericOf(ConfigDevice());
  auto const made = [&](std::uint32_t numFaps) {
    List parts = partsOf(*device, 3);
    parts.add(number(numFaps));
    return refusal([&] { device->genericIfListConstructor(parts); });
  };
  EXPECT_EQ(made(0), "Device::numFaps < 1 or > 3 not allowed");
  EXPECT_EQ(made(4), "Device::numFaps < 1 or > 3 not allowed");
  EXPECT_EQ(made(0xffffffff), "Device::numFaps < 1 or > 3 not allowed");
  EXPECT_EQ(made(1), "");
  EXPECT_EQ(made(3), "");
}

TEST(ConfigDeviceAccess, TakesItsHandleByReference) {
  Handle const handle(new Fru::PciHam("0000:05:00.0"));
  Generic const device = genericOf(ConfigDevice());
  Generic const made = device->genericIfListConstructor(listOf(string("fap0"), genericOf(handle)));
  EXPECT_EQ(valueOf<ConfigDevice>(made).pciHam(), handle);
  EXPECT_TRUE(read(*made, "pciHam")->isConst());
  EXPECT_TRUE(equal(*read(*made, "pciHam"), genericOf(handle).get()));
  EXPECT_EQ(read(*device, "pciHam")->strRep(), "None");
}

TEST(DeviceStateAccess, HasItsEnumeratorsByNameAndNumber) {
  Generic const state = genericOf(DeviceState::deviceStateDown_, false);
  EXPECT_EQ(state->attributeId("deviceStateUnknown"), 0U);
  EXPECT_EQ(state->attributeId("deviceStateUp"), 1U);
  EXPECT_EQ(state->attributeId("deviceStateDown"), 2U);
  for (Mox::AttributeId const id : {0U, 1U, 2U}) {
    EXPECT_EQ(valueOf<DeviceState>(operate(*state, {id, Code::read})), DeviceState(id));
  }
  EXPECT_EQ(valueOf<std::uint32_t>(read(*state, "value")), 2U);
  EXPECT_EQ(state->strRep(), "'deviceStateDown'");
  EXPECT_EQ(genericRefusal([&] { state->attributeId("deviceStateUp_"); }),
            noSuchAttribute("Hardware::Kest::Slice::DeviceState", "deviceStateUp_"));
}

TEST(DeviceStateAccess, IsThatOfEveryValueType) {
  Mox::MoxType const* const type = DeviceState_fwkType();
  EXPECT_EQ(type, Mox::TypeOf<DeviceState>::type());
  DeviceStateGenericIf_ up(DeviceState::deviceStateUp_, false);
  Generic const copy = type->genericIf(&up, true);
  up.valIs(DeviceState::deviceStateDown_);
  EXPECT_EQ(up.val(), DeviceState::deviceStateDown_);
  EXPECT_EQ(up.type(), type);
  EXPECT_EQ(valueOf<DeviceState>(up.clone()), DeviceState::deviceStateDown_);
  EXPECT_EQ(*static_cast<DeviceState*>(up.voidPtrIs(type)), DeviceState::deviceStateDown_);
  EXPECT_EQ(valueOf<DeviceState>(copy), DeviceState::deviceStateUp_);
  EXPECT_EQ(genericRefusal([&] { dynamic_cast<DeviceStateGenericIf_&>(*copy).valIs(up.val()); }),
            constInstance());
}

TEST(DeviceStateAccess, IsMadeOfAListOfItsNumber) {
  Generic const up = genericOf(DeviceState::deviceStateUp_);
  for (std::uint32_t const state : {0U, 1U, 2U}) {
    Generic const made = up->genericIfListConstructor(listOf(number(state)));
    EXPECT_EQ(valueOf<DeviceState>(made), DeviceState(state));
    EXPECT_FALSE(made->isConst());
  }
  EXPECT_EQ(valueOf<DeviceState>(DeviceState_fwkType()->genericIfNew(List())), DeviceState());
  EXPECT_EQ(refusal([&] { up->genericIfListConstructor(listOf(number(3))); }), "DeviceState");
  EXPECT_EQ(genericRefusal([&] { up->genericIfListConstructor(listOf(string("up"))); }),
            wrongType("value"));
  EXPECT_EQ(genericRefusal([&] { up->genericIfListConstructor(listOf(number(3), number(1))); }),
            unknownArg("DeviceState"));
  EXPECT_EQ(genericRefusal([&] { up->genericIfListConstructor(*up); }), wrongType("List"));
}

TEST(DeviceStateAccess, IsReadFromItsText) {
  Mox::MoxType const& type = *Mox::TypeOf<DeviceState>::type();
  EXPECT_EQ(valueOf<DeviceState>(type.genericIf(Mox::String8("'deviceStateUp'"), true)),
            DeviceState::deviceStateUp_);
  EXPECT_EQ(refusal([&] { type.genericIf(Mox::String8("'deviceStateup'"), true); }), "DeviceState");
}

}  // namespace
}  // namespace Hardware::Kest::Slice
