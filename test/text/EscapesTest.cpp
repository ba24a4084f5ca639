#include "text/Escapes.h"

#include <gtest/gtest.h>

#include "text/Words.h"

namespace Text {
namespace {

using namespace std::string_view_literals;

TEST(Escapes, ShowControlCharactersOfAsciiAndBeyond) {
  struct {
    std::string_view text;
    char const* visible;
  } const table[] = {
      {"et3/1 \xc3\xa9'\"\\", "et3/1 \xc3\xa9'\"\\"},
      {"\0\x1b[31m\n\x7f"sv, "\\x00\\x1b[31m\\x0a\\x7f"},
      {"\xc2\x80\xc2\x9f\xc2\xa0\xc2", "\\x80\\x9f\xc2\xa0\xc2"},
  };
  for (auto const& row : table) EXPECT_EQ(visible(row.text), row.visible);
  EXPECT_EQ(visibleLines("a\tb\n\n\x1b"), "a\\x09b\n\n\\x1b");
}

TEST(Escapes, ShortenALongTextInItsMiddle) {
  std::string const longest(200, 'x');
  EXPECT_EQ(shortened(longest), longest);
  EXPECT_EQ(shortened("a" + longest + "b"),
            "a" + std::string(89, 'x') + " ... " + std::string(89, 'x') + "b");
}

TEST(Escapes, GiveAllBytesOneFormInJson) {
  struct {
    std::string_view bytes;
    char const* form;
  } const table[] = {
      {"et3/1", "et3/1"},     {"100%", "100%25"}, {"\xc3\xa9%", "\xc3\xa9%25"},
      {"\xc3\xff", "%C3%FF"}, {"\0"sv, "\0"},     {"\xed\xa0\x80", "%ED%A0%80"},
      {"%41", "%2541"},
  };
  for (auto const& row : table) {
    std::string const form = percentEncoded(row.bytes);
    EXPECT_STREQ(form.c_str(), row.form);
    EXPECT_EQ(percentDecoded(form), row.bytes);
  }
  for (char const* text : {"%", "%4", "%4g", "%4/", "%:1", "%G1", "%ff", "a%"}) {
    EXPECT_EQ(percentDecoded(text), text) << "no escape";
  }
}

TEST(Words, AreListedWithAnOrBeforeTheLast) {
  EXPECT_EQ(listed({}), "");
  EXPECT_EQ(listed({"a"}), "a");
  EXPECT_EQ(listed({"a", "b"}), "a or b");
  EXPECT_EQ(listed({"a", "b", "c"}), "a, b or c");
  EXPECT_EQ(listed({"a", "b", "c"}, ", "), "a, b, c");
}

}  // namespace
}  // namespace Text
