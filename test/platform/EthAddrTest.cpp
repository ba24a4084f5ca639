#include "platform/pelk/EthAddr.h"

#include <gtest/gtest.h>

#include "platform/mox/Strep.h"
#include "test/support/Refusal.h"

namespace Pelk {
namespace {

using Mox::String8;
using Test::refusal;

constexpr EthAddr sample(EthAddr::Octets{0x00, 0x1c, 0x73, 0x0a, 0x0b, 0xfc});

TEST(EthAddrTest, IsZeroByDefault) {
  EXPECT_EQ(EthAddr().stringValue(), "00:00:00:00:00:00");
  EXPECT_EQ(EthAddr(), EthAddr("00:00:00:00:00:00"));
}

TEST(EthAddrTest, ReadsDigitsOfEitherCaseAndPrintsThemInLowerCase) {
  EXPECT_EQ(EthAddr("00:1c:73:0a:0b:fc"), sample);
  EXPECT_EQ(EthAddr("00:1C:73:0A:0b:Fc"), sample);
  EXPECT_EQ(sample.stringValue(), "00:1c:73:0a:0b:fc");
  EXPECT_EQ(::testing::PrintToString(sample), "00:1c:73:0a:0b:fc");
}

TEST(EthAddrTest, DiffersInAnyOctet) {
  for (std::size_t i = 0; i < 6; ++i) {
    EthAddr::Octets octets = sample.octets();
    ++octets[i];
    EXPECT_FALSE(EthAddr(octets) == sample) << i;
  }
}

TEST(EthAddrTest, RefusesAnyOtherText) {
  for (char const* text :
       {"", "00:1c:73:0a:0b", "00:1c:73:0a:0b:fc:", "00:1c:73:0a:0b:fc:01", "001c730a0bfc",
        "00-1c-73-0a-0b-fc", "00:1c:73:0a:0b:fg", "00:1c:73:0a:0b: c", "00:1c:73:0a:0b:+c",
        "00:1c:73:0a:0b:-1", "0:01c:73:0a:0b:fc", " 00:1c:73:0a:0b:f", "00:1c:73:0a:0b:0x"}) {
    EXPECT_EQ(
        refusal([&] { EthAddr{String8(text)}; }),
        std::string("expected a MAC address such as '00:1c:73:0a:0b:0c', found '") + text + "'");
  }
}

TEST(EthAddrTest, TextFormIsInApostrophesAndReadsBack) {
  EXPECT_EQ(valueToStrep(sample), "'00:1c:73:0a:0b:fc'");
  EXPECT_EQ(Mox::strepToValue<EthAddr>("  '00:1c:73:0a:0b:fc'"), sample);
}

TEST(EthAddrTest, IsReadFromAStringHoweverThatIsWritten) {
  String8 const printed("'00:1c:73:0a:0b:fc'...");
  String8::IteratorConst it = printed.begin();
  EXPECT_EQ(sequenceToValue(it, printed.end(), static_cast<EthAddr*>(nullptr)), sample);
  EXPECT_EQ(it.pos(), 19U);
  EXPECT_EQ(Mox::strepToValue<EthAddr>(R"('00:1c:73:0a:0b:f\x63')"), sample);
  EXPECT_EQ(Mox::strepToValue<EthAddr>(R"('\x300:1c:73:0a:0b:fc')"), sample);
}

TEST(EthAddrTest, ARefusedTextIsLeftAtItsStartAfterBlanks) {
  String8 const text("x \t'00:1c'");
  String8::IteratorConst it = text.begin();
  ++it;
  EXPECT_EQ(refusal([&] { sequenceToValue(it, text.end(), static_cast<EthAddr*>(nullptr)); }),
            "expected a MAC address such as '00:1c:73:0a:0b:0c', found '00:1c'");
  EXPECT_EQ(it.pos(), 3U);
}

}  // namespace
}  // namespace Pelk
