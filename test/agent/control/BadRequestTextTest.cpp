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

std::string const noObject = "expected a JSON object; at byte ";
std::string const inValue = ": syntax error while parsing value - ";
std::string const lastRead = "; last read: '";

/// The parser words its own messages. There is one row for each kind of message that it has.
Row const rows[] = {
    {"", "expected a JSON object, found nothing"},
    {" ", "expected a JSON object, found nothing"},
    {"[]", "expected an object, found array"},
    {"null", "expected an object, found null"},
    {"-1.5", "expected an object, found number"},
    {R"({"verb":"get",})", noObject + "15: syntax error while parsing object key - unexpected '}'; "
                                      "expected string literal"},
    {"get config", noObject + "1" + inValue + "invalid literal" + lastRead + "g'"},
    {R"({"verb":"get"} x)", noObject + "16" + inValue + "invalid literal" + lastRead +
                                R"(\"get\"} x'; expected end of input)"},
    {R"({"verb":"get"}{"verb":"get"})",
     noObject + "15" + inValue + "unexpected '{'; expected end of input"},
    {R"({"verb":1e999})", "expected a JSON object; number overflow parsing '1e999'"},
    {R"({"verb":"\x"})", noObject + "11" + inValue +
                             "invalid string: forbidden character after backslash" + lastRead +
                             R"(\"\\x')"},
    {"{\"verb\":\"a\tb\"}",
     noObject + "11" + inValue +
         R"(invalid string: control character U+0009 (HT) must be escaped to \\u0009 or \\t)" +
         lastRead + R"(\"a<U+0009>')"},
    {"{\"verb\":\"\xff\"}", noObject + "10" + inValue + "invalid string: ill-formed UTF-8 byte" +
                                lastRead + "\\\"\xef\xbf\xbd'"},
    {std::string("\0", 1), noObject + "1: found a zero byte"},
    {std::string("{}\0{}", 5), noObject + "3: found a zero byte"},
    {nested(17), "expected at most 16 nested arrays and objects, found more"},
    {R"({"a":)" + nested(16) + "}", "expected at most 16 nested arrays and objects, found more"},
    {R"({"verb":")" + std::string(500, 'a'),
     noObject + "510" + inValue + "invalid string: missing closing quote" + lastRead +
         R"(\"aaa ... )" + std::string(89, 'a') + "'"},
    {R"({"verb":)" + std::string(500, '9') + "}",
     "expected a JSON object; number overflow parsing '" + std::string(65, '9') + " ... " +
         std::string(89, '9') + "'"},
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
