#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "platform/mox/Strep.h"
#include "test/support/Refusal.h"

namespace Mox {
namespace {

using U64 = unsigned long long;
using Test::refusal;
using Double = std::numeric_limits<double>;

template <class T>
T read(std::string const& text) {
  return strepToValue<T>(String8(text));
}

template <class T>
std::string refused(std::string const& text) {
  return refusal([&] { read<T>(text); });
}

TEST(StrepDouble, IsTheShortestFormThatIsAFraction) {
  EXPECT_EQ(valueToStrep(2.0), "2.0");
  EXPECT_EQ(valueToStrep(0.0), "0.0");
  EXPECT_EQ(valueToStrep(-0.0), "-0.0");
  EXPECT_EQ(valueToStrep(-17.0), "-17.0");
  EXPECT_EQ(valueToStrep(0.1), "0.1");
  EXPECT_EQ(valueToStrep(1e300), "1e+300");
  EXPECT_EQ(valueToStrep(1e-7), "1e-07");
  EXPECT_EQ(valueToStrep(Double::max()), "1.7976931348623157e+308");
  EXPECT_EQ(valueToStrep(Double::min()), "2.2250738585072014e-308");
  EXPECT_EQ(valueToStrep(Double::denorm_min()), "5e-324");
  EXPECT_EQ(valueToStrep(Double::infinity()), "inf");
  EXPECT_EQ(valueToStrep(-Double::infinity()), "-inf");
  EXPECT_EQ(valueToStrep(Double::quiet_NaN()), "nan");
}

TEST(StrepDouble, ReadsBackToTheSameNumber) {
  std::mt19937_64 random(20240117);
  for (int i = 0; i < 20000; ++i) {
    auto const bits = random();
    auto const value = std::bit_cast<double>(bits);
    auto const back = strepToValue<double>(valueToStrep(value));
    if (std::isnan(value)) {
      ASSERT_TRUE(std::isnan(back)) << std::hex << bits;
    } else {
      ASSERT_EQ(std::bit_cast<std::uint64_t>(back), bits) << valueToStrep(value);
    }
  }
  for (double const value : {0.0, -0.0, Double::max(), Double::lowest(), Double::denorm_min(),
                             Double::infinity(), -Double::infinity()}) {
    auto const back = strepToValue<double>(valueToStrep(value));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(value));
  }
}

TEST(StrepDouble, ReadsOtherFormsOfANumber) {
  EXPECT_EQ(read<double>("\t\r\n 2"), 2.0);
  EXPECT_EQ(read<double>("2."), 2.0);
  EXPECT_EQ(read<double>(".5"), 0.5);
  EXPECT_EQ(read<double>("2E3"), 2000.0);
  EXPECT_EQ(read<double>("-2e-1"), -0.2);
}

TEST(StrepDouble, LeavesTheIteratorAfterTheNumber) {
  String8 const text("1.5e2e3");
  String8::IteratorConst it = text.begin();
  EXPECT_EQ(sequenceToValue(it, text.end(), static_cast<double*>(nullptr)), 150.0);
  EXPECT_EQ(it.pos(), 5U);
}

TEST(StrepDouble, RefusesWhatIsNoNumber) {
  EXPECT_EQ(refused<double>(""), "expected a decimal number, found the end of the text");
  EXPECT_EQ(refused<double>(" x"), "expected a decimal number, found 'x'");
  EXPECT_EQ(refused<double>("-"), "expected a decimal number, found '-'");
  EXPECT_EQ(refused<double>("+1"), "expected a decimal number, found '+'");
  EXPECT_EQ(refused<double>("'2.0'"), "expected a decimal number, found '''");
  EXPECT_EQ(refused<double>("0x10"), "junk at column 1 deserializing 0x10");
  EXPECT_EQ(refused<double>("2.0 "), "junk at column 3 deserializing 2.0 ");
  EXPECT_EQ(refused<double>("1,5"), "junk at column 1 deserializing 1,5");
  EXPECT_EQ(refused<double>("nan(1)"), "junk at column 3 deserializing nan(1)");
}

TEST(StrepDouble, RefusesANumberThatADoubleCannotHold) {
  std::string const beyond = "expected a number that a double can hold, found another";
  EXPECT_EQ(refused<double>("1e309"), beyond);
  EXPECT_EQ(refused<double>("-1e309"), beyond);
  EXPECT_EQ(refused<double>("1e-400"), beyond);
  String8 const text(" 1e309");
  String8::IteratorConst it = text.begin();
  EXPECT_EQ(refusal([&] { sequenceToValue(it, text.end(), static_cast<double*>(nullptr)); }),
            beyond);
  EXPECT_EQ(it.pos(), 1U) << "where the number was refused";
}

TEST(StrepU64, ReadsBackToTheSameNumber) {
  std::mt19937_64 random(20240118);
  for (int i = 0; i < 20000; ++i) {
    U64 const value = random() >> (random() % 64);
    ASSERT_EQ(strepToValue<U64>(valueToStrep(value)), value);
  }
  EXPECT_EQ(read<U64>("0"), 0U);
  EXPECT_EQ(read<U64>("18446744073709551615"), std::numeric_limits<U64>::max());
  EXPECT_EQ(read<U64>(" 00018446744073709551615"), std::numeric_limits<U64>::max());
}

TEST(StrepU64, RefusesWhatIsNoSuchNumber) {
  std::string const larger = "expected a number from 0 to 18446744073709551615, found a larger one";
  EXPECT_EQ(refused<U64>("18446744073709551616"), larger);
  EXPECT_EQ(refused<U64>("18446744073709551620"), larger);
  EXPECT_EQ(refused<U64>("36893488147419103232"), larger);
  EXPECT_EQ(refused<U64>("99999999999999999999999999"), larger);
  EXPECT_EQ(refused<U64>("-1"), "expected a decimal number, found '-'");
  EXPECT_EQ(refused<U64>("+1"), "expected a decimal number, found '+'");
  EXPECT_EQ(refused<U64>(""), "expected a decimal number, found the end of the text");
  EXPECT_EQ(refused<U64>("1.0"), "junk at column 1 deserializing 1.0");
  String8 const text(" 18446744073709551616");
  String8::IteratorConst it = text.begin();
  EXPECT_EQ(refusal([&] { sequenceToValue(it, text.end(), static_cast<U64*>(nullptr)); }), larger);
  EXPECT_EQ(it.pos(), 1U);
}

}  // namespace
}  // namespace Mox
