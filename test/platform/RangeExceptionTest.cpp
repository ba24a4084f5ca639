#include "platform/mox/RangeException.h"

#include <gtest/gtest.h>

#include <string>

namespace Mox {
namespace {

TEST(RangeExceptionTest, CarriesItsTextAsAStandardException) {
  try {
    throwRangeException("out of range");
  } catch (std::exception const& caught) {
    EXPECT_STREQ(caught.what(), "out of range");
  }
  RangeException const exception("text");
  RangeException const copy = exception;
  EXPECT_EQ(copy.text(), "text");
  EXPECT_EQ(copy.what(), exception.text().charPtr());
}

TEST(FormatTest, PrintsAsPrintfDoes) {
  EXPECT_EQ(format("%s: %d of %02x%%", "et3", -5, 10U), "et3: -5 of 0a%");
  EXPECT_EQ(format("junk at column %lld", 5000000000LL), "junk at column 5000000000");
  EXPECT_EQ(format("%s", ""), "");
}

TEST(FormatTest, PrintsTextsOfAnyLength) {
  for (std::size_t length : {1U, 15U, 16U, 255U, 256U, 100000U}) {
    std::string const text(length, 'x');
    EXPECT_EQ(format("<%s>", text.c_str()), std::string_view("<" + text + ">"));
  }
}

}  // namespace
}  // namespace Mox
