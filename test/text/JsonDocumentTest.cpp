#include "text/JsonDocument.h"

#include <gtest/gtest.h>

#include "text/JsonValue.h"

namespace Text {
namespace {

constexpr std::string_view text =
    R"({"a": {"x": 1}, "b": {"a": 2, "x": [3, {"y": 4}]}, "c": 12345})";

TEST(JsonDocument, KnowsWhereItsValuesAre) {
  struct {
    char const* pointer;
    std::string_view begins;  // with this
  } const table[] = {
      {"", "{\"a\""},         {"/a", "\"a\": {"},     {"/a/x", "\"x\": 1"}, {"/b", "\"b\""},
      {"/b/a", "\"a\": 2"},   {"/b/x", "\"x\": ["},   {"/b/x/0", "3"},      {"/b/x/1", "{\"y\""},
      {"/b/x/1/y", "\"y\""},  {"/c", "\"c\": 12345"}, {"/b/z", "\"b\""},    {"/z/x", "{\"a\""},
      {"/b/x/7", "\"x\": ["},
  };
  JsonDocument const document(text);
  for (auto const& row : table) {
    JsonError const refusal = document.refusal(JsonPointer(row.pointer), "bad");
    EXPECT_TRUE(text.substr(refusal.at()).starts_with(row.begins)) << row.pointer;
    EXPECT_EQ(refusal.what(), *row.pointer == '\0' ? "bad" : std::string(row.pointer) + ": bad");
  }
  EXPECT_TRUE(document.has(JsonPointer("/b/x/1/y")));
  EXPECT_FALSE(document.has(JsonPointer("/b/x/1/z")));
}

TEST(JsonDocument, ShowsPointersOnOneLineAndInPart) {
  std::string const name = "\n" + std::string(300, 'x');
  JsonDocument const document("{}");
  EXPECT_EQ(document.refusal(JsonPointer() / name, "bad").what(),
            "/\\x0a" + std::string(85, 'x') + " ... " + std::string(90, 'x') + ": bad");
}

/// The pointer and message of what is refused.
template <class Work>
std::string misfit(Work const& work) {
  try {
    work();
  } catch (JsonMisfit const& caught) {
    return caught.pointer.to_string() + " " + caught.message;
  }
  return "accepted";
}

template <class Number>
std::string misfitAs(char const* json) {
  Json const value = Json::parse(json);
  return misfit([&] {
    Number number{};
    readJson(&value, number);
    EXPECT_EQ(Json(number), value);
  });
}

TEST(JsonValue, IsReadIfItFits) {
  EXPECT_EQ(misfitAs<unsigned short>("65535"), "accepted");
  EXPECT_EQ(misfitAs<unsigned short>("65536"), " expected an integer from 0 to 65535, found 65536");
  EXPECT_EQ(misfitAs<unsigned>("-1"), " expected an integer from 0 to 4294967295, found -1");
  EXPECT_EQ(misfitAs<short>("-32768"), "accepted");
  EXPECT_EQ(misfitAs<short>("1.0"), " expected an integer from -32768 to 32767, found 1.0");
  EXPECT_EQ(misfitAs<short>("[]"), " expected an integer from -32768 to 32767, found an array");
  EXPECT_EQ(misfitAs<bool>("true"), "accepted");
  EXPECT_EQ(misfitAs<bool>("{}"), " expected true or false, found an object");
  EXPECT_EQ(misfit([] { inMember("a/b", [] { inMember("c", [] { needObject(nullptr); }); }); }),
            "/a~1b/c expected an object, found nothing");
}

}  // namespace
}  // namespace Text
