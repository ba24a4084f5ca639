#include "platform/mox/Strep.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <string_view>

#include "test/support/Refusal.h"

namespace Mox {
namespace {

using namespace std::string_view_literals;
using Test::refusal;

/// What a reader made of a text: the value, where it stopped, and its refusal if it refused.
template <class T>
struct Reading {
  T value{};
  std::string refused;
  std::size_t pos = 0;
};

template <class T>
Reading<T> read(std::string_view chars) {
  String8 const text(chars);
  String8::IteratorConst it = text.begin();
  Reading<T> reading;
  reading.refused =
      refusal([&] { reading.value = sequenceToValue(it, text.end(), static_cast<T*>(nullptr)); });
  reading.pos = it.pos();
  return reading;
}

template <class T>
struct Good {
  std::string_view text;
  T value;
  std::size_t pos;
};

struct Bad {
  std::string_view text;
  char const* error;
  std::size_t pos;
};

template <class T, std::size_t n>
void expectRead(Good<T> const (&table)[n]) {
  for (Good<T> const& row : table) {
    Reading<T> const reading = read<T>(row.text);
    EXPECT_EQ(reading.refused, "") << row.text;
    EXPECT_EQ(reading.value, row.value) << row.text;
    EXPECT_EQ(reading.pos, row.pos) << row.text;
  }
}

template <class T, std::size_t n>
void expectRefused(Bad const (&table)[n]) {
  for (Bad const& row : table) {
    Reading<T> const reading = read<T>(row.text);
    EXPECT_EQ(reading.refused, row.error) << row.text;
    EXPECT_EQ(reading.pos, row.pos) << row.text;
  }
}

TEST(StrepTest, WritesStringsWithWhatIsNotPlainEscaped) {
  struct {
    std::string_view value;
    char const* text;
  } const table[] = {
      {"", "''"},
      {"et3/1", "'et3/1'"},
      {"it's", R"('it\'s')"},
      {R"(a\b)", R"('a\\b')"},
      {"\n\t\r", R"('\n\t\r')"},
      {"\0\x01\x1f\x7f"sv, R"('\x00\x01\x1f\x7f')"},
      {"\xc3\xa4\xff", "'\xc3\xa4\xff'"},
      {"\"%s\"", "'\"%s\"'"},
  };
  for (auto const& row : table) EXPECT_EQ(valueToStrep(String8(row.value)), row.text);
}

TEST(StrepTest, WritesStringsOfAnyLength) {
  std::string value;
  std::string text;
  for (std::size_t length = 0; length < 1200; ++length) {
    ASSERT_EQ(valueToStrep(String8(value)), "'" + text + "'") << length;
    bool const special = length % 97 == 0;
    value += special ? '\x01' : 'a';
    text += special ? "\\x01" : "a";
  }
}

TEST(StrepTest, ReadsStrings) {
  Good<String8> const table[] = {
      {"''", "", 2},
      {"'et3'", "et3", 5},
      {" \t\r\n'et3'  ", "et3", 9},
      {"'a b'c", "a b", 5},
      {R"('\\\'\n\t\r')", "\\'\n\t\r", 12},
      {R"('a\'bc\\d'e)", "a'bc\\d", 10},
      {R"('\x41\x7f\xFf')", "A\x7f\xff", 14},
      {R"('\x00')", String8("\0"sv), 6},
      {"'line\nbreak\0'"sv, String8("line\nbreak\0"sv), 13},
  };
  expectRead(table);
}

TEST(StrepTest, RefusesWhatIsNoString) {
  Bad const table[] = {
      {"", "expected a string in apostrophes, found the end of the text", 0},
      {"  ", "expected a string in apostrophes, found the end of the text", 2},
      {"  et3", "expected a string in apostrophes, found 'e'", 2},
      {"\"et3\"", "expected a string in apostrophes, found '\"'", 0},
      {"\x01", "expected a string in apostrophes, found character 0x01", 0},
      {"'et3", "expected the string's closing apostrophe, found the end of the text", 4},
      {R"('a\q')", R"(expected one of \ ' n t r x after a backslash, found 'q')", 3},
      {R"('a\)", R"(expected one of \ ' n t r x after a backslash, found the end of the text)", 3},
      {R"('\x4')", R"(expected two hexadecimal digits after \x, found ''')", 4},
      {R"('\xg1')", R"(expected two hexadecimal digits after \x, found 'g')", 3},
      {R"('\x4)", R"(expected two hexadecimal digits after \x, found the end of the text)", 4},
  };
  expectRefused<String8>(table);
}

TEST(StrepTest, StringsOfAnyBytesReadBack) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes(static_cast<std::size_t>(random() % 20), '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    String8 const value(bytes);
    ASSERT_EQ(strepToValue<String8>(valueToStrep(value)), value) << valueToStrep(value);
  }
}

TEST(StrepTest, WritesNumbersInDecimal) {
  EXPECT_EQ(valueToStrep(0ULL), "0");
  EXPECT_EQ(valueToStrep(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
}

TEST(StrepTest, ReadsNumbersUpToTheLargest) {
  Good<unsigned int> const table[] = {
      {"0", 0, 1},        {"4096", 4096, 4},
      {" \t\r\n7", 7, 5}, {"007", 7, 3},
      {"12a", 12, 2},     {"4294967295", 4294967295U, 10},
      {"1 2", 1, 1},      {"00000000000000000001", 1, 20},
  };
  expectRead(table);
  Good<unsigned short> const small[] = {{"65535", 65535, 5}, {" 1", 1, 2}};
  expectRead(small);
}

TEST(StrepTest, RefusesWhatIsNoNumberInRange) {
  Bad const table[] = {
      {"", "expected a decimal number, found the end of the text", 0},
      {" x1", "expected a decimal number, found 'x'", 1},
      {"-1", "expected a decimal number, found '-'", 0},
      {"+1", "expected a decimal number, found '+'", 0},
      {"'1'", "expected a decimal number, found '''", 0},
      {"\x7f", "expected a decimal number, found character 0x7f", 0},
      {" 4294967296", "expected a number from 0 to 4294967295, found a larger one", 1},
      {"99999999999999999999999999", "expected a number from 0 to 4294967295, found a larger one",
       0},
  };
  expectRefused<unsigned int>(table);
  Bad const small[] = {{" 65536", "expected a number from 0 to 65535, found a larger one", 1}};
  expectRefused<unsigned short>(small);
}

TEST(StrepTest, WritesAndReadsFlags) {
  EXPECT_EQ(valueToStrep(true), "True");
  EXPECT_EQ(valueToStrep(false), "False");
  Good<bool> const table[] = {{"True", true, 4}, {" \nFalse", false, 7}, {"Truer", true, 4}};
  expectRead(table);
  Bad const bad[] = {
      {"", "expected True or False, found the end of the text", 0},
      {" true", "expected True or False, found 't'", 1},
      {"Tru", "expected True or False, found 'T'", 0},
      {"1", "expected True or False, found '1'", 0},
  };
  expectRefused<bool>(bad);
}

TEST(StrepTest, MatchesTokensWithAnyBlanksWhereTheyHaveOne) {
  struct {
    char const* token;
    std::string_view text;
    char const* error;
    std::size_t pos;
  } const table[] = {
      {" Value", "Value", "", 5},
      {" Value", " \t\r\nValue", "", 9},
      {"Value", " Value", "expected Value, found ' '", 0},
      {" ( ", "(", "", 1},
      {" ( ", "  (  'x'", "", 5},
      {", ", ",x", "", 1},
      {"a b", "ab", "", 2},
      {"a b", "a \n b", "", 5},
      {" 'Dma'", " 'Dna'", "expected 'Dma', found 'n'", 3},
      {" Value", "  Val", "expected Value, found the end of the text", 5},
      {" } ", "\x02", "expected }, found character 0x02", 0},
      {"", "x", "", 0},
      {"\n", "x", "expected , found 'x'", 0},
  };
  for (auto const& row : table) {
    String8 const text(row.text);
    String8::IteratorConst it = text.begin();
    EXPECT_EQ(refusal([&] { needString(it, text.end(), row.token); }), row.error) << row.text;
    EXPECT_EQ(it.pos(), row.pos) << row.text;
  }
}

TEST(StrepTest, ErrorsOfAnAttributeNameIt) {
  String8 const text("7x");
  String8::IteratorConst it = text.begin();
  unsigned int vlanId = 0;
  deserializeAttr(it, text.end(), &vlanId, "vlanId");
  EXPECT_EQ(vlanId, 7U);
  EXPECT_EQ(it.pos(), 1U);
  EXPECT_EQ(refusal([&] { deserializeAttr(it, text.end(), &vlanId, "vlanId"); }),
            "vlanId: expected a decimal number, found 'x'");
  EXPECT_EQ(vlanId, 7U);
  EXPECT_EQ(it.pos(), 1U);
}

/// Reads itself, as records do.
struct NumberPair {
  NumberPair(String8::IteratorConst& it, String8::IteratorConst const& end) {
    deserializeAttr(it, end, &first, "first");
    needString(it, end, " ,");
    deserializeAttr(it, end, &second, "second");
  }
  unsigned int first = 0;
  unsigned int second = 0;
};

TEST(StrepTest, ReadsAWholeText) {
  EXPECT_EQ(strepToValue<unsigned int>("12"), 12U);
  EXPECT_EQ(strepToValue("True", static_cast<bool const*>(nullptr)), true);
  NumberPair const pair = strepToValue<NumberPair>("1 , 2");
  EXPECT_EQ(pair.first, 1U);
  EXPECT_EQ(pair.second, 2U);
}

TEST(StrepTest, RefusesWhatIsLeftOfATextWithItsColumn) {
  EXPECT_EQ(refusal([] { strepToValue<unsigned int>("12x"); }),
            "junk at column 2 deserializing 12x");
  EXPECT_EQ(refusal([] { strepToValue<String8>("'a' "); }), "junk at column 3 deserializing 'a' ");
  EXPECT_EQ(refusal([] { strepToValue<bool>(String8("True\0more\0"sv)); }),
            "junk at column 4 deserializing True\0more\0"sv);
  EXPECT_EQ(refusal([] { strepToValue<NumberPair>("1,2,3"); }),
            "junk at column 3 deserializing 1,2,3");
  EXPECT_EQ(refusal([] { strepToValue<NumberPair>("1,x"); }),
            "second: expected a decimal number, found 'x'");
}

}  // namespace
}  // namespace Mox
