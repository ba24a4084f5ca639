#include "platform/mox/String8.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/mox/Name.h"

namespace Mox {
namespace {

using namespace std::string_view_literals;

TEST(String8Test, CopiesShareTheCharacters) {
  String8 original("Ethernet3/1");
  String8 const copy = original;
  EXPECT_EQ(copy.charPtr(), original.charPtr());
  original = String8("other");
  EXPECT_EQ(copy, "Ethernet3/1");
  EXPECT_EQ(original, "other");
}

TEST(String8Test, KeepsItsOwnCharacters) {
  std::string source = "before";
  String8 const text(source);
  source = "after";
  EXPECT_EQ(text, "before");
}

TEST(String8Test, MovedFromIsEmpty) {
  String8 from("text");
  String8 const to = std::move(from);
  EXPECT_TRUE(from.empty());
  EXPECT_EQ(to, "text");
}

TEST(String8Test, AssigningItselfChangesNothing) {
  String8 text("text");
  String8 const& same = text;
  text = same;
  EXPECT_EQ(text, "text");
}

TEST(String8Test, EmptyIsOneStringHoweverMade) {
  String8 const fromChars("");
  EXPECT_TRUE(fromChars.empty());
  EXPECT_EQ(fromChars.bytes(), 0U);
  EXPECT_EQ(fromChars.hash(), String8().hash());
  EXPECT_EQ(fromChars, String8());
  EXPECT_EQ(fromChars.charPtr(), String8().charPtr());
  EXPECT_STREQ(fromChars.charPtr(), "");
  EXPECT_TRUE(fromChars.begin() == String8().end());
}

TEST(String8Test, HoldsAnyBytesAndEndsThemWithNul) {
  String8 const text("a\0b\xff"sv);
  EXPECT_EQ(text.bytes(), 4U);
  EXPECT_EQ(text.view(), "a\0b\xff"sv);
  EXPECT_EQ(text.charPtr()[4], '\0');
  EXPECT_FALSE(text == "a");
  EXPECT_FALSE(text == String8("a\0c\xff"sv));
}

TEST(String8Test, HashIsOfTheBytesAloneAndTheSameOnEveryMachine) {
  struct Case {
    char const* text;
    std::uint32_t hash;
  };
  Case const cases[] = {
      {"", 1},
      {"E", 0x68bd6502U},
      {"Et", 0x5d0ccd53U},
      {"Eth", 0xd2fec3b9U},
      {"Ethe", 0xed62adbfU},
      {"Ether", 0x1b0c47f4U},
      {"Ethern", 0x668392c4U},
      {"Etherne", 0x8083135dU},
      {"Ethernet", 0xebfac51dU},
      {"Ethernet3", 0x5fd4b48dU},
      {"\xe9t1", 0x68f7e03bU},
      {"Ethernet3/1/1", 0x28212356U},
  };
  for (Case const& one : cases) EXPECT_EQ(String8(one.text).hash(), one.hash) << one.text;
}

TEST(String8Test, HashesThatSayThatThereIsNoneGiveWay) {
  // Their hashes come to 0, "not hashed", and to 2^32 - 1, "empty" in a table: see KeysOfHash.
  EXPECT_EQ(String8("etet-keyX`NJAdlf").hash(), 1U);
  EXPECT_EQ(String8("etet-key;/#p_)!(").hash(), 0xFFFFFFFEU);
}

TEST(String8Test, EqualHashesDoNotMakeEqualStrings) {
  ASSERT_EQ(String8("bunaba").hash(), String8("lesuso").hash());
  EXPECT_FALSE(String8("bunaba") == String8("lesuso"));
}

TEST(String8Test, RefusesMoreBytesThanItCanCount) {
  std::string_view const tooMany("", 0xFFFFFFFFU);  // refused before any is read
  EXPECT_THROW(String8{tooMany}, std::length_error);
}

TEST(String8Test, EqualityLooksAtEveryByte) {
  for (std::size_t bytes = 1; bytes < 40; ++bytes) {
    std::string const chars(bytes, 'a');
    EXPECT_TRUE(String8(chars) == String8(chars));
    for (std::size_t at = 0; at < bytes; ++at) {
      std::string other = chars;
      other[at] = 'b';
      EXPECT_FALSE(String8(chars) == String8(other)) << bytes << " bytes, at " << at;
    }
  }
}

TEST(String8Test, IsOrderedByUnsignedBytes) {
  EXPECT_LT(String8("a"), String8("b"));
  EXPECT_LT(String8("a"), String8("aa"));
  EXPECT_LT(String8(), String8("\0"sv));
  EXPECT_LT(String8("z"), String8("\x80"));
  EXPECT_TRUE((String8("a") <=> String8("a")) == 0);
}

TEST(String8Test, FindsAPart) {
  String8 const text("et3/et4");
  EXPECT_EQ(text.pos("et"), 0U);
  EXPECT_EQ(text.pos("et4"), 4U);
  EXPECT_EQ(text.pos("et5"), String8::npos);
  EXPECT_EQ(text.pos(""), 0U);
}

TEST(String8Test, IteratorWalksTheCharactersAndKnowsItsOffset) {
  String8 const text("ab\0d"sv);
  std::string walked;
  for (String8::IteratorConst it = text.begin(); !(it == text.end()); ++it) {
    EXPECT_EQ(it.pos(), walked.size());
    walked += *it;
  }
  EXPECT_EQ(walked, "ab\0d"sv);
}

TEST(String8Test, StreamsItsBytes) {
  std::ostringstream out;
  out << String8("a\0b"sv) << String8();
  EXPECT_EQ(out.str(), "a\0b"sv);
}

TEST(NameTest, IsItsString) {
  EXPECT_EQ(Name("config"), Name(String8("config")));
  EXPECT_FALSE(Name("config") == Name("status"));
  EXPECT_EQ(Name("config").string(), "config");
  EXPECT_TRUE(Name().string().empty());
}

}  // namespace
}  // namespace Mox
