#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class SliceJsonSyntaxError : public testing::TestWithParam<ErrorRow> {};

TEST_P(SliceJsonSyntaxError, SaysWhereTheTextIsNoJson) {
  EXPECT_EQ(jsonRefusal(GetParam().text), reportOf(GetParam(), "slice.json"));
  EXPECT_EQ(Mox::root()->entities(), 0U) << "a refused file left something in the entity tree";
}

ErrorRow const syntaxErrors[] = {
    {"Empty", "", "1:1", "no JSON: unexpected end of input; expected '[', '{', or a literal"},
    {"Unclosed", R"({"sliceId": "a")", "1:16", "no JSON: unexpected end of input; expected '}'"},
    {"TrailingComma", R"({"sliceId": "a",})", "1:17",
     "no JSON: unexpected '}'; expected string literal"},
    {"MissingComma", R"({"sliceId": "a"
 "nativeVlan": {}})",
     "2:2", "no JSON: unexpected string literal; expected '}'"},
    {"NameWithoutQuotes", R"({sliceId: "a"})", "1:2",
     "no JSON: invalid literal; expected string literal"},
    {"Comment", R"({
  // the slice
  "sliceId": "a"
})",
     "2:3", "no JSON: invalid literal; expected string literal"},
    {"TwoValues", "{} {}", "1:4", "no JSON: unexpected '{'; expected end of input"},
    {"HalfASurrogate", R"({"sliceId": "\ud83d"})", "1:20",
     "no JSON: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
    {"LeadingZero", R"({"nativeVlan": {"et1": 007}})", "1:25",
     "no JSON: unexpected number literal; expected '}'"},
    {"NumberTooLargeForAnything", R"({"nativeVlan": {"et1": 1e999}})", "1:28",
     "no JSON: number overflow"},
    {"MemberTwice", R"({"sliceId": "a",
 "sliceId": "a"})",
     "2:2", "/sliceId: given a second time"},
    {"HandlesTwice", R"({"pciHam": ["/a"], "pciHam": ["/b"]})", "1:20",
     "/pciHam: given a second time"},
    {"VlanTwice", R"({"nativeVlan": {"et3/1": 10, "et2": 10, "et3/1": 10}})", "1:41",
     "/nativeVlan/et3~11: given a second time"},
    {"VlanTwiceByAnEscape", R"({"nativeVlan": {"et1": 10, "\u0065t1": 20}})", "1:28",
     "/nativeVlan/et1: given a second time"},
};

INSTANTIATE_TEST_SUITE_P(Rows, SliceJsonSyntaxError, testing::ValuesIn(syntaxErrors),
                         [](auto const& row) { return row.param.name; });

ErrorRow const endErrors[] = {
    {"FollowedByAMember", R"({"end": true, "sliceId": "a"})", "1:15",
     "/sliceId: expected nothing after 'end', found more"},
    {"FollowedByHandles", R"({"end": true, "pciHam": []})", "1:15",
     "/pciHam: expected nothing after 'end', found more"},
    {"False", R"({"end": false})", "1:2", "/end: expected true, found false"},
};

INSTANTIATE_TEST_SUITE_P(Ends, SliceJsonSyntaxError, testing::ValuesIn(endErrors),
                         [](auto const& row) { return row.param.name; });

TEST(SliceJsonSyntax, IsShownWithItsBytesAsTheyAre) {
  struct {
    char const* text;
    char const* report;
  } const table[] = {
      {" \n\t\n",
       R"(slice.json:3:1: no JSON: unexpected end of input; expected '[', '{', or a literal
  
  ^)"},
      {"{\"sliceId\": \"a\tb\"}",
       "slice.json:1:15: no JSON: invalid string: control character U+0009 (HT) must be escaped to "
       "\\u0009 or \\t\n  {\"sliceId\": \"a\tb\"}\n                ^"},
      {"{\"sliceId\": \"a\377\"}",
       "slice.json:1:15: no JSON: invalid string: ill-formed UTF-8 byte\n  {\"sliceId\": "
       "\"a\377\"}\n                ^"},
  };
  for (auto const& row : table) EXPECT_EQ(jsonRefusal(row.text), row.report);
}

std::string nested(std::size_t levels) {
  return R"({"sliceId": )" + std::string(levels - 1, '[') + std::string(levels - 1, ']') + "}";
}

TEST(SliceJsonSyntax, AllowsSixteenLevelsOfNesting) {
  EXPECT_EQ(jsonRefusal(nested(16)),
            "slice.json:1:2: /sliceId: expected a string, found [[[[[[[[[[[[[[[]]]]]]]]]]]]]]]\n"
            "  {\"sliceId\": [[[[[[[[[[[[[[[]]]]]]]]]]]]]]]}\n"
            "   ^");
  EXPECT_EQ(
      jsonRefusal(nested(17)),
      "slice.json:1:28: /sliceId/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0: expected at most 16 levels of "
      "nesting, found more\n"
      "  {\"sliceId\": [[[[[[[[[[[[[[[[]]]]]]]]]]]]]]]]}\n"
      "                             ^");
}

/// The bounds hold before anything is built of what is beyond them.
TEST(SliceJsonSyntax, RefusesEndlessNestingAtOnce) {
  std::string const endless(1U << 20U, '[');
  EXPECT_EQ(jsonRefusal(endless),
            "slice.json:1:17: /0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0: expected at most 16 levels of "
            "nesting, found more\n"
            "  " +
                std::string(76, '[') + "...\n" + std::string(18, ' ') + "^");
}

TEST(SliceJsonSyntax, TakesNoNulByteForTheEnd) {
  EXPECT_EQ(jsonRefusal(std::string_view("{\"sliceId\": \"a\"}\0{}", 19)),
            "slice.json:1:17: no JSON: character 0x00\n"
            "  {\"sliceId\": \"a\"} {}\n"
            "                  ^");
}

}  // namespace
}  // namespace Kest::Agent
