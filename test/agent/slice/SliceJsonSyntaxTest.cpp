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
    {"NoJson", R"(pciHam '/pci/a'
)",
     "1:1", "no JSON: invalid literal"},
    {"Unclosed", R"({"sliceId": "a")", "1:16", "no JSON: unexpected end of input; expected '}'"},
    {"UnclosedString", R"({"sliceId": "a)", "1:15",
     "no JSON: invalid string: missing closing quote"},
    {"TrailingComma", R"({"sliceId": "a",})", "1:17",
     "no JSON: unexpected '}'; expected string literal"},
    {"TrailingCommaInAnArray", R"({"pciHam": ["/pci/a",]})", "1:22",
     "no JSON: unexpected ']'; expected '[', '{', or a literal"},
    {"MissingComma", R"({"sliceId": "a"
 "nativeVlan": {}})",
     "2:2", "no JSON: unexpected string literal; expected '}'"},
    {"MissingColon", R"({"sliceId" "a"})", "1:12",
     "no JSON: unexpected string literal; expected ':'"},
    {"NameWithoutQuotes", R"({sliceId: "a"})", "1:2",
     "no JSON: invalid literal; expected string literal"},
    {"Apostrophes", "{'sliceId': 'a'}", "1:2", "no JSON: invalid literal; expected string literal"},
    {"Comment", R"({
  // the slice
  "sliceId": "a"
})",
     "2:3", "no JSON: invalid literal; expected string literal"},
    {"TwoValues", "{} {}", "1:4", "no JSON: unexpected '{'; expected end of input"},
    {"WordBehind", R"({"sliceId": "a"}
end)",
     "2:1", "no JSON: invalid literal; expected end of input"},
    {"PythonFlag", R"({"switchPort": {"et1": {"ctrl": True}}})", "1:33",
     "no JSON: invalid literal"},
    {"BadEscape", R"({"sliceId": "a\qb"})", "1:16",
     "no JSON: invalid string: forbidden character after backslash"},
    {"HalfASurrogate", R"({"sliceId": "\ud83d"})", "1:20",
     "no JSON: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
    {"LeadingZero", R"({"nativeVlan": {"et1": 007}})", "1:25",
     "no JSON: unexpected number literal; expected '}'"},
    {"PlusSign", R"({"nativeVlan": {"et1": +7}})", "1:24", "no JSON: invalid literal"},
    {"NumberWithoutEnd", R"({"nativeVlan": {"et1": 1.}})", "1:26",
     "no JSON: invalid number; expected digit after '.'"},
    {"NumberTooLargeForAnything", R"({"nativeVlan": {"et1": 1e999}})", "1:28",
     "no JSON: number overflow"},
    {"MemberTwice", R"({"sliceId": "a",
 "sliceId": "a"})",
     "2:2", "/sliceId: given a second time"},
    {"CollectionTwice", R"({"nativeVlan": {"et1": 1},
 "nativeVlan": {"et2": 2}})",
     "2:2", "/nativeVlan: given a second time"},
    {"HandlesTwice", R"({"pciHam": ["/a"], "pciHam": ["/b"]})", "1:20",
     "/pciHam: given a second time"},
    {"VlanTwice", R"({"nativeVlan": {"et3/1": 10, "et2": 10, "et3/1": 10}})", "1:41",
     "/nativeVlan/et3~11: given a second time"},
    {"VlanTwiceByAnEscape", R"({"nativeVlan": {"et1": 10, "\u0065t1": 20}})", "1:28",
     "/nativeVlan/et1: given a second time"},
    {"DeviceFieldTwice", R"({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"numFaps": 1, "numFaps": 1}}})",
     "2:36", "/device/fap0/numFaps: given a second time"},
    {"PortTwice", R"({"switchPort": {
  "et1": {},
  "et1": {}
}})",
     "3:3", "/switchPort/et1: given a second time"},
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

/// Members are neither found nor compared one by one: a large file is no way to keep an agent busy.
TEST(SliceJsonSyntax, TakesAHundredThousandMembersInItsStride) {
  std::string text = "{\"nativeVlan\": {";
  for (int port = 0; port < 100000; ++port) text += "\"et" + std::to_string(port) + "\": 1,";
  EXPECT_EQ(
      jsonRefusal(text + "\"et100000\": 4095}}"),
      "slice.json:1:1288907: /nativeVlan/et100000: expected a VLAN id from 1 to 4094, or 0 for "
      "none, found 4095\n"
      "  ...995\": 1,\"et99996\": 1,\"et99997\": 1,\"et99998\": 1,\"et99999\": 1,\"et100000\": "
      "4095}}\n"
      "                                                                 ^");
}

}  // namespace
}  // namespace Kest::Agent
