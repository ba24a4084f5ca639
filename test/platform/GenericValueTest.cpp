#include "platform/mox/GenericValue.h"

#include <gtest/gtest.h>

#include "platform/mox/GenericEnum.h"
#include "platform/mox/IntrospectionReactor.h"
#include "platform/mox/Name.h"
#include "platform/mox/RangeException.h"
#include "platform/pelk/EthAddr.h"
#include "test/platform/ToyTypes.h"
#include "test/support/GenericRefusal.h"
#include "test/support/Refusal.h"

namespace Toy {
namespace {

using Mox::AttributeOp;
using Mox::GenericIf;
using Mox::genericOf;
using Mox::genericVal;
using Mox::GenericValue;
using Mox::TypeOf;
using Mox::wholeAttributeId;
using Test::badIndex;
using Test::GenericRefusal;
using Test::genericRefusal;
using Test::noSuchAttribute;
using Test::operate;
using Test::opNotSupported;
using Test::refusal;
using Test::refused;
using Test::wrongType;
using Code = Mox::AttributeOpCode;
using List = GenericIf::List_;

Spot spot(char const* name, std::uint32_t size) {
  Spot value;
  value.name = name;
  value.size = size;
  return value;
}

bool equal(GenericIf& a, GenericIf const& b) {
  return *genericVal<bool>(operate(a, {wholeAttributeId, Code::equality}, &b).get());
}

TEST(GenericValue, HoldsACopyOfTheValue) {
  Spot value = spot("a", 1);
  auto const generic = genericOf(value);
  value.size = 2;
  EXPECT_EQ(*genericVal<Spot>(generic.get()), spot("a", 1));
  EXPECT_EQ(generic->type(), Spot::_fwkType());
  EXPECT_EQ(generic->strRep(), "'a' of 1");
  EXPECT_TRUE(generic->isConst());
  EXPECT_EQ(generic->voidPtr(), genericVal<Spot>(generic.get()));
}

TEST(GenericValue, IsReadAsNothingButItsType) {
  auto const generic = genericOf(std::uint32_t{1});
  EXPECT_EQ(genericVal<std::uint16_t>(generic.get()), nullptr);
  EXPECT_EQ(genericVal<bool>(generic.get()), nullptr);
  EXPECT_EQ(genericVal<bool>(nullptr), nullptr);
  EXPECT_EQ(*genericVal<std::uint32_t>(generic.get()), 1U);
}

TEST(GenericValue, CopiesApartWithTheConstFlag) {
  GenericValue<Spot> original(spot("a", 1), false);
  auto const copy = original.clone();
  auto const whole = operate(original, {wholeAttributeId, Code::read});
  for (auto const* one : {copy.get(), whole.get()}) {
    EXPECT_EQ(*genericVal<Spot>(one), spot("a", 1));
    EXPECT_FALSE(one->isConst());
  }
  EXPECT_TRUE(genericOf(spot("a", 1))->clone()->isConst());
}

TEST(GenericValue, IsEqualByContent) {
  auto const generic = genericOf(spot("a", 1));
  EXPECT_TRUE(equal(*generic, *genericOf(spot("a", 1), false)));
  EXPECT_FALSE(equal(*generic, *genericOf(spot("a", 2))));
  EXPECT_EQ(refused(*generic, {wholeAttributeId, Code::equality}), wrongType("Toy::Box::Spot"));
  EXPECT_EQ(genericRefusal([&] { equal(*generic, *genericOf(Mox::String8("a"))); }),
            wrongType("Toy::Box::Spot"));
}

TEST(GenericValue, RefusesEveryOtherOperation) {
  auto const generic = genericOf(spot("a", 1), false);
  for (Code const code : {Code::store, Code::remove, Code::notify, Code::invoke, Code::construct}) {
    auto const number = static_cast<unsigned>(code);
    EXPECT_EQ(refused(*generic, {wholeAttributeId, code}),
              opNotSupported("Toy::Box::Spot", number));
    EXPECT_EQ(refused(*generic, {2, code}), noSuchAttribute("Toy::Box::Spot", "2"));
  }
  EXPECT_EQ(genericRefusal([&] { generic->attributeId("name"); }),
            noSuchAttribute("Toy::Box::Spot", "name"));
  EXPECT_EQ(genericRefusal([&] { generic->attributeIteratorConst(2); }),
            noSuchAttribute("Toy::Box::Spot", "2"));
  EXPECT_EQ(genericRefusal([&] { generic->attributeIteratorKeyConst(0, generic.get()); }),
            opNotSupported("Toy::Box::Spot", 0));
}

TEST(GenericValue, RefusesARegisteredAttributeByItsName) {
  Mox::IntrospectionReactor reactor;
  reactor.onNamespace("Toy");
  reactor.onNamespace("Toy::Box");
  reactor.onType(*Spot::_fwkType());
  reactor.onAttribute(*Spot::_fwkType(), {"size", 3, TypeOf<std::uint32_t>::type()});
  auto const generic = genericOf(spot("a", 1));
  EXPECT_EQ(generic->attributeId("size"), 3U);
  EXPECT_EQ(refused(*generic, {3, Code::read}), opNotSupported("size", 0));
}

TEST(ValueType, MakesAdaptersOfTextsAndOfOtherAdapters) {
  Mox::MoxType const& type = *Spot::_fwkType();
  auto const read = type.genericIf(Mox::String8("'a\\'' of 12"), false);
  EXPECT_EQ(*genericVal<Spot>(read.get()), spot("a'", 12));
  EXPECT_FALSE(read->isConst());
  auto const copy = type.genericIf(read.get(), true);
  EXPECT_EQ(*genericVal<Spot>(copy.get()), spot("a'", 12));
  EXPECT_TRUE(copy->isConst());
  auto const other = genericOf(true);
  EXPECT_EQ(genericRefusal([&] { type.genericIf(other.get(), true); }),
            wrongType("Toy::Box::Spot"));
  EXPECT_EQ(genericRefusal([&] { type.genericIf(static_cast<GenericIf*>(nullptr), true); }),
            wrongType("Toy::Box::Spot"));
}

TEST(ValueType, RefusesTextsThatAreNoValueAndNothingElse) {
  Mox::MoxType const& type = *Spot::_fwkType();
  auto const read = [&](char const* text) {
    return refusal([&] { type.genericIf(Mox::String8(text), true); });
  };
  EXPECT_EQ(read("'a' of 12 "), "junk at column 9 deserializing 'a' of 12 ");
  EXPECT_EQ(read("'a' of -1"), "expected a decimal number, found '-'");
  EXPECT_EQ(read(""), "expected a string in apostrophes, found the end of the text");
}

TEST(ValueType, RefusesWhatItCannotMake) {
  Mox::MoxType const& type = *Spot::_fwkType();
  EXPECT_EQ(genericRefusal([&] { type.genericIf_(nullptr, false); }),
            opNotSupported("Toy::Box::Spot", 0));
  EXPECT_EQ(genericRefusal([&] { type.genericIfNew(List()); }),
            opNotSupported("Toy::Box::Spot", 1));
}

TEST(BasicTypes, ArePrintedAndRead) {
  struct {
    Mox::MoxType const* type;
    char const* text;
  } const all[] = {
      {TypeOf<bool>::type(), "True"},
      {TypeOf<std::uint16_t>::type(), "65535"},
      {TypeOf<std::uint32_t>::type(), "4294967295"},
      {TypeOf<unsigned long long>::type(), "18446744073709551615"},
      {TypeOf<double>::type(), "2.0"},
      {TypeOf<Mox::String8>::type(), "'a\\'b'"},
      {TypeOf<Mox::Name>::type(), "'config'"},
      {TypeOf<Pelk::EthAddr>::type(), "'00:1c:73:0a:0b:0c'"},
  };
  for (auto const& [type, text] : all) {
    EXPECT_EQ(type->genericIf(Mox::String8(text), true)->strRep(), text);
    EXPECT_EQ(type->kind(), Mox::MoxType::Kind::value) << text;
  }
}

TEST(BasicTypes, UntypedPointersHaveNoValues) {
  EXPECT_EQ(genericRefusal([] { Mox::untypedPointer()->genericIf(Mox::String8("1"), true); }),
            opNotSupported("Mox::VoidPtr", 0));
  bool const value = true;
  EXPECT_EQ(genericRefusal(
                [&] { Mox::untypedPointer()->genericIf(static_cast<void const*>(&value), true); }),
            opNotSupported("Mox::VoidPtr", 0));
  EXPECT_EQ(genericRefusal([] {
              Mox::untypedPointer()->genericIf(static_cast<GenericIf const*>(nullptr), true);
            }),
            opNotSupported("Mox::VoidPtr", 0));
}

/// The toy enumeration, registered.
class GenericEnumTest : public testing::Test {
 protected:
  GenericEnumTest() {
    reactor.onNamespace("Toy");
    reactor.onType(*colourType());
    reactor.onEnumerators(*colourType());
  }
  static Colour colour(std::unique_ptr<GenericIf> const& generic) {
    return *genericVal<Colour>(generic.get());
  }

  Mox::IntrospectionReactor reactor;
  std::unique_ptr<GenericIf> green = genericOf(Colour::green, false);
};

TEST_F(GenericEnumTest, YieldsEveryEnumeratorAndItsOwnNumber) {
  EXPECT_EQ(colour(operate(*green, {green->attributeId("red"), Code::read})), Colour::red);
  EXPECT_EQ(colour(operate(*green, {green->attributeId("green"), Code::read})), Colour::green);
  auto const value = operate(*green, {green->attributeId("value"), Code::read});
  EXPECT_EQ(*genericVal<std::uint32_t>(value.get()), 1U);
  EXPECT_EQ(green->strRep(), "'green'");
}

TEST_F(GenericEnumTest, IsAValueLikeOthers) {
  EXPECT_TRUE(equal(*green, *genericOf(Colour::green)));
  EXPECT_FALSE(equal(*green, *genericOf(Colour::red)));
  EXPECT_EQ(colour(colourType()->genericIf(Mox::String8("'red'"), true)), Colour::red);
  EXPECT_EQ(colour(green->clone()), Colour::green);
}

TEST_F(GenericEnumTest, RefusesAnythingElse) {
  EXPECT_EQ(refused(*green, {1, Code::read, green.get()}), badIndex("green"));
  EXPECT_EQ(refused(*green, {256, Code::read, green.get()}), badIndex("value"));
  EXPECT_EQ(refused(*green, {256, Code::store}), opNotSupported("value", 128));
  EXPECT_EQ(refused(*green, {2, Code::read}), noSuchAttribute("Toy::Colour", "2"));
}

TEST(GenericEnum, UnregisteredIsStillAValue) {
  auto const red = genericOf(Colour::red);
  EXPECT_EQ(*genericVal<Colour>(operate(*red, {wholeAttributeId, Code::read}).get()), Colour::red);
  EXPECT_EQ(refused(*red, {1, Code::read}), noSuchAttribute("Toy::Colour", "1"));
}

List listOfTwo() {
  List list;
  list.add(genericOf(Mox::String8("it's")));
  list.add(genericOf(true));
  return list;
}

TEST(GenericList, PrintsItsItems) {
  EXPECT_EQ(List().strRep(), "[]");
  EXPECT_EQ(listOfTwo().strRep(), "['it\\'s', True]");
  EXPECT_EQ(listOfTwo().type()->fullName(), "List");
}

TEST(GenericList, CopiesItsItems) {
  List list = listOfTwo();
  auto const copy = list.clone();
  auto const inner = list.items()[0].get();
  list.add(genericOf(false));
  EXPECT_EQ(copy->strRep(), "['it\\'s', True]");
  EXPECT_NE(static_cast<List const&>(*copy).items()[0].get(), inner);
  list.add(copy->clone());
  EXPECT_EQ(list.strRep(), "['it\\'s', True, False, ['it\\'s', True]]");
}

TEST(GenericList, TakesNoItemThatIsMissing) {
  List list = listOfTwo();
  EXPECT_EQ(genericRefusal([&] { list.add(nullptr); }), wrongType("item"));
  EXPECT_EQ(list.clone()->strRep(), "['it\\'s', True]");
}

}  // namespace
}  // namespace Toy
