#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "test/model/RecordSamples.h"
#include "test/support/Refusal.h"

/// What stands in a text as it is printed is recognised in one piece. That shows in nothing: a
/// blank in front of the text, which says nothing, prevents it, and the text reads, or is refused,
/// the same.
namespace Hardware::Kest::Slice {
namespace {

template <class Record>
struct Reading {
  explicit Reading(std::string const& chars) {
    Mox::String8 const text(chars);
    Mox::String8::IteratorConst it = text.begin();
    refused = Test::refusal([&] { record.emplace(it, text.end()); });
    pos = it.pos();
  }

  std::optional<Record> record;
  std::string refused;
  std::size_t pos;
};

template <class Record>
void expectTheSameBehindABlank(std::string const& text) {
  Reading<Record> const printed(text);
  Reading<Record> const other(" " + text);
  ASSERT_EQ(printed.record, other.record) << text;
  ASSERT_EQ(printed.refused, other.refused) << text;
  ASSERT_EQ(printed.pos + 1, other.pos) << text;
}

char meaningful(Random& random) {
  static constexpr std::string_view all = "\\'\n\t ,:{}()xn0129TFaf";
  return all[below(all.size(), random)];
}

/// Changes, takes out or puts in a character.
void spoil(std::string& text, Random& random) {
  std::size_t const at = below(static_cast<unsigned>(text.size()), random);
  switch (below(3, random)) {
    case 0:
      text[at] = meaningful(random);
      break;
    case 1:
      text.erase(at, 1);
      break;
    default:
      text.insert(at, 1, meaningful(random));
  }
}

/// The fields of a record's text.
std::string fieldsIn(std::string const& text) {
  std::size_t const from = text.find('{') + 1;
  return text.substr(from, text.rfind('}') - from);
}

template <class Record>
class RecordForm : public testing::Test {};
TYPED_TEST_SUITE(RecordForm, AllRecords);

TYPED_TEST(RecordForm, OfASpoiltTextMakesNoDifference) {
  Random random(31);
  for (int i = 0; i < 20000; ++i) {
    std::string text(valueToStrep(randomRecord<TypeParam>(random)).view());
    for (unsigned spoils = below(4, random); spoils > 0; --spoils) spoil(text, random);
    ASSERT_NO_FATAL_FAILURE(expectTheSameBehindABlank<TypeParam>(text));
  }
}

TYPED_TEST(RecordForm, OfFieldsThatComeTwiceMakesNoDifference) {
  Random random(32);
  for (int i = 0; i < 1000; ++i) {
    auto const last = randomRecord<TypeParam>(random);
    std::string const first(valueToStrep(randomRecord<TypeParam>(random)).view());
    std::string const text = around<TypeParam>(fieldsIn(first) + ", " +
                                               fieldsIn(std::string(valueToStrep(last).view())));
    ASSERT_EQ(read<TypeParam>(text), last) << text;
    ASSERT_NO_FATAL_FAILURE(expectTheSameBehindABlank<TypeParam>(text));
  }
}

/// The text of a record that has nothing set, with `from` replaced.
template <class Record>
std::string withReplaced(std::string const& from, std::string const& to) {
  std::string text(valueToStrep(Record()).view());
  return text.replace(text.find(from), from.size(), to);
}

TEST(RecordFields, AreRefusedBehindTheBlanksInFrontOfThem) {
  std::string const blanks = "\t \t";
  expectTheSameBehindABlank<ConfigSwitchPort>(
      withReplaced<ConfigSwitchPort>("'00:00:00:00:00:00'", blanks + "'00:00'"));
  expectTheSameBehindABlank<ConfigDevice>(
      withReplaced<ConfigDevice>("'fapTypeUnknown'", blanks + "'fapTypeNone'"));
}

TEST(RecordFields, FieldsMayBeLeftOutAnywhere) {
  ConfigSwitchPort port;
  port.ifNameIs("et3");
  port.destIdIs(7);
  port.ctrlIs(true);
  for (char const* fields : {
           "'ifName': 'et3', 'destId': 7, 'ctrl': True",
           "'ifName': 'et3', 'ctrl': True, 'destId': 7",
           "'ifName': 'et3', 'destId':7,'ctrl': True",
           "'ifName':'et3', 'destId': 7, 'ctrl': True",
           "'destId': 7, 'ifName': 'et3', 'ctrl': True",
       }) {
    EXPECT_EQ(read<ConfigSwitchPort>(around<ConfigSwitchPort>(fields)), port) << fields;
  }
}

}  // namespace
}  // namespace Hardware::Kest::Slice
