#include <gmock/gmock.h>

#include "test/agent/support/Connected.h"

namespace Kest::Agent {
namespace {

struct Row {
  std::string line;
  std::string message;  // as JSON, without quotes
};

class BadRequestTextTest : public Connected {
 protected:
  std::string replyTo(Pair& pair, std::string const& line) {
    pair.client.send(line + "\n");
    rounds(1);
    return pair.client.received();
  }
};

std::string nested(std::size_t depth) {
  return R"({"verb":"echo","text":"x","deep":)" + std::string(depth - 1, '[') +
         std::string(depth - 1, ']') + "}";
}

Row const rows[] = {
    {"", "expected a JSON object, found nothing"},
    {" ", "expected a JSON object, found nothing"},
    {"{",
     "expected a JSON object; at byte 2: syntax error while parsing object key - unexpected end of "
     "input; expected string literal"},
    {"}",
     "expected a JSON object; at byte 1: syntax error while parsing value - unexpected '}'; "
     "expected '[', '{', or a literal"},
    {"[",
     "expected a JSON object; at byte 2: syntax error while parsing value - unexpected end of "
     "input; expected '[', '{', or a literal"},
    {"[]", "expected an object, found array"},
    {"null", "expected an object, found null"},
    {"true", "expected an object, found boolean"},
    {"7", "expected an object, found number"},
    {"-1.5", "expected an object, found number"},
    {"\"get\"", "expected an object, found string"},
    {"get config",
     "expected a JSON object; at byte 1: syntax error while parsing value - invalid literal; last "
     "read: 'g'"},
    {"nul",
     "expected a JSON object; at byte 4: syntax error while parsing value - invalid literal; last "
     "read: 'nul'"},
    {"{verb:1}",
     "expected a JSON object; at byte 2: syntax error while parsing object key - invalid literal; "
     "last read: '{v'; expected string literal"},
    {"{'verb':1}",
     "expected a JSON object; at byte 2: syntax error while parsing object key - invalid literal; "
     "last read: '{''; expected string literal"},
    {R"({"verb")",
     "expected a JSON object; at byte 8: syntax error while parsing object separator - unexpected "
     "end of input; expected ':'"},
    {R"({"verb":)",
     "expected a JSON object; at byte 9: syntax error while parsing value - unexpected end of "
     "input; expected '[', '{', or a literal"},
    {R"({"verb":})",
     "expected a JSON object; at byte 9: syntax error while parsing value - unexpected '}'; "
     "expected '[', '{', or a literal"},
    {R"({"verb" "get"})",
     "expected a JSON object; at byte 13: syntax error while parsing object separator - unexpected "
     "string literal; expected ':'"},
    {R"({"verb":"get")",
     "expected a JSON object; at byte 14: syntax error while parsing object - unexpected end of "
     "input; expected '}'"},
    {R"({"verb":"get",)",
     "expected a JSON object; at byte 15: syntax error while parsing object key - unexpected end "
     "of input; expected string literal"},
    {R"({"verb":"get",})",
     "expected a JSON object; at byte 15: syntax error while parsing object key - unexpected '}'; "
     "expected string literal"},
    {R"({"verb":"get";"path":""})",
     R"(expected a JSON object; at byte 14: syntax error while parsing object - invalid literal; last read: '\"get\";'; expected '}')"},
    {R"({"verb":"get} )",
     R"(expected a JSON object; at byte 15: syntax error while parsing value - invalid string: missing closing quote; last read: '\"get} ')"},
    {R"({"verb":"get"} x)",
     R"(expected a JSON object; at byte 16: syntax error while parsing value - invalid literal; last read: '\"get\"} x'; expected end of input)"},
    {R"({"verb":"get"}{"verb":"get"})",
     "expected a JSON object; at byte 15: syntax error while parsing value - unexpected '{'; "
     "expected end of input"},
    {R"({"verb":"get"},)",
     "expected a JSON object; at byte 15: syntax error while parsing value - unexpected ','; "
     "expected end of input"},
    {R"({"verb":["a",]})",
     "expected a JSON object; at byte 14: syntax error while parsing value - unexpected ']'; "
     "expected '[', '{', or a literal"},
    {R"({"verb":["a" "b"]})",
     "expected a JSON object; at byte 16: syntax error while parsing array - unexpected string "
     "literal; expected ']'"},
    {R"({"verb":["a"})",
     "expected a JSON object; at byte 13: syntax error while parsing array - unexpected '}'; "
     "expected ']'"},
    {R"({"verb":01})",
     "expected a JSON object; at byte 10: syntax error while parsing object - unexpected number "
     "literal; expected '}'"},
    {R"({"verb":+1})",
     R"(expected a JSON object; at byte 9: syntax error while parsing value - invalid literal; last read: '\"verb\":+')"},
    {R"({"verb":.5})",
     R"(expected a JSON object; at byte 9: syntax error while parsing value - invalid literal; last read: '\"verb\":.')"},
    {R"({"verb":1.})",
     "expected a JSON object; at byte 11: syntax error while parsing value - invalid number; "
     "expected digit after '.'; last read: '1.}'"},
    {R"({"verb":1e})",
     "expected a JSON object; at byte 11: syntax error while parsing value - invalid number; "
     "expected '+', '-', or digit after exponent; last read: '1e}'"},
    {R"({"verb":-})",
     "expected a JSON object; at byte 10: syntax error while parsing value - invalid number; "
     "expected digit after '-'; last read: '-}'"},
    {R"({"verb":1e999})", "expected a JSON object; number overflow parsing '1e999'"},
    {R"({"verb":NaN})",
     R"(expected a JSON object; at byte 9: syntax error while parsing value - invalid literal; last read: '\"verb\":N')"},
    {R"({"verb":0x1})",
     "expected a JSON object; at byte 10: syntax error while parsing object - invalid literal; "
     "last read: '0x'; expected '}'"},
    {R"({"verb":"\x"})",
     R"(expected a JSON object; at byte 11: syntax error while parsing value - invalid string: forbidden character after backslash; last read: '\"\\x')"},
    {R"({"verb":"\u12g4"})",
     R"(expected a JSON object; at byte 14: syntax error while parsing value - invalid string: '\\u' must be followed by 4 hex digits; last read: '\"\\u12g')"},
    {R"({"verb":"\ud800"})",
     R"(expected a JSON object; at byte 16: syntax error while parsing value - invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF; last read: '\"\\ud800\"')"},
    {R"({"verb":"\udc00"})",
     R"(expected a JSON object; at byte 15: syntax error while parsing value - invalid string: surrogate U+DC00..U+DFFF must follow U+D800..U+DBFF; last read: '\"\\udc00')"},
    {"{\"verb\":\"a\tb\"}",
     R"(expected a JSON object; at byte 11: syntax error while parsing value - invalid string: control character U+0009 (HT) must be escaped to \\u0009 or \\t; last read: '\"a<U+0009>')"},
    {"{\"verb\":\"\xff\"}",
     R"(expected a JSON object; at byte 10: syntax error while parsing value - invalid string: ill-formed UTF-8 byte; last read: '\")"
     "\xef\xbf\xbd"
     "'"},
    {"{\"verb\":\"\xc0\x80\"}",
     R"(expected a JSON object; at byte 10: syntax error while parsing value - invalid string: ill-formed UTF-8 byte; last read: '\")"
     "\xef\xbf\xbd"
     "'"},
    {"{\"verb\":\"\xed\xa0\x80\"}",
     R"(expected a JSON object; at byte 11: syntax error while parsing value - invalid string: ill-formed UTF-8 byte; last read: '\")"
     "\xef\xbf\xbd"
     ""
     "\xef\xbf\xbd"
     "'"},
    {"{\"verb\":\xff}",
     R"(expected a JSON object; at byte 9: syntax error while parsing value - invalid literal; last read: '\"verb\":)"
     "\xef\xbf\xbd"
     "'"},
    {std::string("\0", 1), "expected a JSON object; at byte 1: found a zero byte"},
    {std::string("{}\0{}", 5), "expected a JSON object; at byte 3: found a zero byte"},
    {R"(/* c */ {})",
     "expected a JSON object; at byte 1: syntax error while parsing value - invalid literal; last "
     "read: '/'"},
    {R"({1:2})",
     "expected a JSON object; at byte 2: syntax error while parsing object key - unexpected number "
     "literal; expected string literal"},
    {R"({null:2})",
     "expected a JSON object; at byte 5: syntax error while parsing object key - unexpected null "
     "literal; expected string literal"},
    {nested(17), "expected at most 16 nested arrays and objects, found more"},
    {std::string(1000, '['), "expected at most 16 nested arrays and objects, found more"},
    {R"({"a":)" + nested(16) + "}", "expected at most 16 nested arrays and objects, found more"},
    {R"({"verb":")" + std::string(500, 'a'),
     R"(expected a JSON object; at byte 510: syntax error while parsing value - invalid string: missing closing quote; last read: '\"aaa ... aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa')"},
    {R"({"verb":)" + std::string(500, '9') + "}",
     "expected a JSON object; number overflow parsing "
     "'99999999999999999999999999999999999999999999999999999999999999999 ... "
     "99999999999999999999999999999999999999999999999999999999999999999999999999999999999999999'"},
};

TEST_F(BadRequestTextTest, EveryOneGetsItsErrorAndTheConnectionLivesOn) {
  Pair pair = connected();
  for (Row const& row : rows) {
    EXPECT_EQ(replyTo(pair, row.line),
              R"({"ok":false,"error":{"kind":"request","message":")" + row.message + "\"}}\n");
  }
  EXPECT_EQ(served, 0);
  EXPECT_EQ(replyTo(pair, R"({"verb":"echo","text":"alive"})"), echoed("alive"));
}

TEST_F(BadRequestTextTest, WhatLooksOddButIsARequestIsServed) {
  Pair pair = connected();
  for (std::string const line : {
           " \t{\"verb\" : \"echo\" , \"text\" : \"x\"} \r",
           "\xef\xbb\xbf{\"verb\":\"echo\",\"text\":\"x\"}",
           "{\"verb\":\"\\u0065cho\",\"text\":\"x\"}",
       }) {
    EXPECT_EQ(replyTo(pair, line), echoed("x"));
  }
  EXPECT_EQ(replyTo(pair, nested(16)), echoed("x"));
}

}  // namespace
}  // namespace Kest::Agent
