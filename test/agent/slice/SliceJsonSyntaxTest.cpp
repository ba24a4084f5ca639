#include <gtest/gtest.h>

#include "platform/mox/Dir.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

class SliceJsonSyntaxError : public testing::TestWithParam<ErrorRow> {};

TEST_P(SliceJsonSyntaxError, SaysWhereTheTextIsNoJson) {
  EXPECT_EQ(jsonRefusal(GetParam().text), GetParam().message);
  EXPECT_EQ(Mox::root()->entities(), 0U) << "a refused file left something in the entity tree";
}

ErrorRow const syntaxErrors[] = {
    {"Empty", "",
     R"J(slice.json:1:1: no JSON: unexpected end of input; expected '[', '{', or a literal
  
  ^)J"},
    {"BlanksOnly",
     " \n"
     "\t\n",
     R"J(slice.json:3:1: no JSON: unexpected end of input; expected '[', '{', or a literal
  
  ^)J"},
    {"NoJson", R"J(pciHam '/pci/a'
)J",
     R"J(slice.json:1:1: no JSON: invalid literal
  pciHam '/pci/a'
  ^)J"},
    {"Unclosed", R"J({"sliceId": "a")J",
     R"J(slice.json:1:16: no JSON: unexpected end of input; expected '}'
  {"sliceId": "a"
                 ^)J"},
    {"UnclosedString", R"J({"sliceId": "a)J",
     R"J(slice.json:1:15: no JSON: invalid string: missing closing quote
  {"sliceId": "a
                ^)J"},
    {"TrailingComma", R"J({"sliceId": "a",})J",
     R"J(slice.json:1:17: no JSON: unexpected '}'; expected string literal
  {"sliceId": "a",}
                  ^)J"},
    {"TrailingCommaInAnArray", R"J({"pciHam": ["/pci/a",]})J",
     R"J(slice.json:1:22: no JSON: unexpected ']'; expected '[', '{', or a literal
  {"pciHam": ["/pci/a",]}
                       ^)J"},
    {"MissingComma", R"J({"sliceId": "a"
 "nativeVlan": {}})J",
     R"J(slice.json:2:2: no JSON: unexpected string literal; expected '}'
   "nativeVlan": {}}
   ^)J"},
    {"MissingColon", R"J({"sliceId" "a"})J",
     R"J(slice.json:1:12: no JSON: unexpected string literal; expected ':'
  {"sliceId" "a"}
             ^)J"},
    {"NameWithoutQuotes", R"J({sliceId: "a"})J",
     R"J(slice.json:1:2: no JSON: invalid literal; expected string literal
  {sliceId: "a"}
   ^)J"},
    {"Apostrophes", R"J({'sliceId': 'a'})J",
     R"J(slice.json:1:2: no JSON: invalid literal; expected string literal
  {'sliceId': 'a'}
   ^)J"},
    {"Comment", R"J({
  // the slice
  "sliceId": "a"
})J",
     R"J(slice.json:2:3: no JSON: invalid literal; expected string literal
    // the slice
    ^)J"},
    {"TwoValues", R"J({} {})J",
     R"J(slice.json:1:4: no JSON: unexpected '{'; expected end of input
  {} {}
     ^)J"},
    {"WordBehind", R"J({"sliceId": "a"}
end)J",
     R"J(slice.json:2:1: no JSON: invalid literal; expected end of input
  end
  ^)J"},
    {"PythonFlag", R"J({"switchPort": {"et1": {"ctrl": True}}})J",
     R"J(slice.json:1:33: no JSON: invalid literal
  {"switchPort": {"et1": {"ctrl": True}}}
                                  ^)J"},
    {"BadEscape", R"J({"sliceId": "a\qb"})J",
     R"J(slice.json:1:16: no JSON: invalid string: forbidden character after backslash
  {"sliceId": "a\qb"}
                 ^)J"},
    {"HalfASurrogate", R"J({"sliceId": "\ud83d"})J",
     R"J(slice.json:1:20: no JSON: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF
  {"sliceId": "\ud83d"}
                     ^)J"},
    {"ControlCharacterInAString", "{\"sliceId\": \"a\tb\"}",
     "slice.json:1:15: no JSON: invalid string: control character U+0009 (HT) must be escaped to "
     "\\u0009 or \\t\n"
     "  {\"sliceId\": \"a\tb\"}\n"
     "                ^"},
    {"NoUtf8", "{\"sliceId\": \"a\377\"}",
     "slice.json:1:15: no JSON: invalid string: ill-formed UTF-8 byte\n"
     "  {\"sliceId\": \"a\377\"}\n"
     "                ^"},
    {"LeadingZero", R"J({"nativeVlan": {"et1": 007}})J",
     R"J(slice.json:1:25: no JSON: unexpected number literal; expected '}'
  {"nativeVlan": {"et1": 007}}
                          ^)J"},
    {"PlusSign", R"J({"nativeVlan": {"et1": +7}})J",
     R"J(slice.json:1:24: no JSON: invalid literal
  {"nativeVlan": {"et1": +7}}
                         ^)J"},
    {"NumberWithoutEnd", R"J({"nativeVlan": {"et1": 1.}})J",
     R"J(slice.json:1:26: no JSON: invalid number; expected digit after '.'
  {"nativeVlan": {"et1": 1.}}
                           ^)J"},
    {"NumberTooLargeForAnything", R"J({"nativeVlan": {"et1": 1e999}})J",
     R"J(slice.json:1:28: no JSON: number overflow
  {"nativeVlan": {"et1": 1e999}}
                             ^)J"},
    {"MemberTwice", R"J({"sliceId": "a",
 "sliceId": "a"})J",
     R"J(slice.json:2:2: /sliceId: given a second time
   "sliceId": "a"}
   ^)J"},
    {"CollectionTwice", R"J({"nativeVlan": {"et1": 1},
 "nativeVlan": {"et2": 2}})J",
     R"J(slice.json:2:2: /nativeVlan: given a second time
   "nativeVlan": {"et2": 2}}
   ^)J"},
    {"HandlesTwice", R"J({"pciHam": ["/a"], "pciHam": ["/b"]})J",
     R"J(slice.json:1:20: /pciHam: given a second time
  {"pciHam": ["/a"], "pciHam": ["/b"]}
                     ^)J"},
    {"VlanTwice", R"J({"nativeVlan": {"et3/1": 10, "et2": 10, "et3/1": 10}})J",
     R"J(slice.json:1:41: /nativeVlan/et3~11: given a second time
  {"nativeVlan": {"et3/1": 10, "et2": 10, "et3/1": 10}}
                                          ^)J"},
    {"VlanTwiceByAnEscape", R"J({"nativeVlan": {"et1": 10, "\u0065t1": 20}})J",
     R"J(slice.json:1:28: /nativeVlan/et1: given a second time
  {"nativeVlan": {"et1": 10, "\u0065t1": 20}}
                             ^)J"},
    {"DeviceFieldTwice", R"J({"deviceState": {"fap0": "deviceStateUp"},
 "device": {"fap0": {"numFaps": 1, "numFaps": 1}}})J",
     R"J(slice.json:2:36: /device/fap0/numFaps: given a second time
   "device": {"fap0": {"numFaps": 1, "numFaps": 1}}}
                                     ^)J"},
    {"PortTwice", R"J({"switchPort": {
  "et1": {},
  "et1": {}
}})J",
     R"J(slice.json:3:3: /switchPort/et1: given a second time
    "et1": {}
    ^)J"},
};

INSTANTIATE_TEST_SUITE_P(Rows, SliceJsonSyntaxError, testing::ValuesIn(syntaxErrors),
                         [](auto const& row) { return row.param.name; });

ErrorRow const endErrors[] = {
    {"FollowedByAMember", R"J({"end": true, "sliceId": "a"})J",
     R"J(slice.json:1:15: /sliceId: expected nothing after 'end', found more
  {"end": true, "sliceId": "a"}
                ^)J"},
    {"FollowedByHandles", R"J({"end": true, "pciHam": []})J",
     R"J(slice.json:1:15: /pciHam: expected nothing after 'end', found more
  {"end": true, "pciHam": []}
                ^)J"},
    {"False", R"J({"end": false})J",
     R"J(slice.json:1:2: /end: expected true, found false
  {"end": false}
   ^)J"},
};

INSTANTIATE_TEST_SUITE_P(Ends, SliceJsonSyntaxError, testing::ValuesIn(endErrors),
                         [](auto const& row) { return row.param.name; });

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
