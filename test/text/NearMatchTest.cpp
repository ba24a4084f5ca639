#include "text/NearMatch.h"

#include <gtest/gtest.h>

#include <random>

namespace Text {
namespace {

TEST(NearMatch, CountsInsertionsOmissionsReplacementsAndSwaps) {
  struct Row {
    char const* a;
    char const* b;
    std::size_t distance;
  };
  for (Row const& row :
       {Row{"", "", 0}, Row{"", "abc", 3}, Row{"abc", "abc", 0}, Row{"abc", "abxc", 1},
        Row{"abc", "ac", 1}, Row{"abc", "axc", 1}, Row{"abc", "acb", 1}, Row{"abcd", "badc", 2},
        Row{"abc", "xyz", 3}, Row{"kitten", "sitting", 3}}) {
    EXPECT_EQ(editDistance(row.a, row.b), row.distance) << row.a << " " << row.b;
    EXPECT_EQ(editDistance(row.b, row.a), row.distance) << row.b << " " << row.a;
  }
}

TEST(NearMatch, FindsWhatWasProbablyMeant) {
  std::vector<std::string> const names{"switchPort", "switchportMode", "nativeVlan",
                                       "device",     "deviceState",    "sliceId"};
  struct Row {
    char const* typed;
    char const* meant;  // null for nothing
  };
  for (Row const& row : {Row{"nativeVlan", "nativeVlan"}, Row{"natveVlan", "nativeVlan"},
                         Row{"naitveVlan", "nativeVlan"}, Row{"NATIVEVLAN", "nativeVlan"},
                         Row{"nat", "nativeVlan"},                     // it alone begins so
                         Row{"devic", "device"}, Row{"dev", nullptr},  // two begin so
                         Row{"devicestat", "deviceState"}, Row{"switchportmod", "switchportMode"},
                         Row{"sliceld", "sliceId"}, Row{"", nullptr}, Row{"vlan", nullptr},
                         Row{"xyzxyzxyz", nullptr}, Row{"slice", "sliceId"}}) {
    EXPECT_EQ(nearMatch(row.typed, names).value_or("-"), row.meant == nullptr ? "-" : row.meant)
        << row.typed;
  }
}

TEST(NearMatch, AShortNameMayDifferInLessThanALongOne) {
  EXPECT_EQ(nearMatch("gt", {"set", "at"}), std::nullopt);
  EXPECT_EQ(nearMatch("gte", {"get"}), "get");
  EXPECT_EQ(nearMatch("gtx", {"get"}), std::nullopt);
  EXPECT_EQ(nearMatch("abcdef", {"abcdxy"}), "abcdxy");
  EXPECT_EQ(nearMatch("abcdef", {"abcxyz"}), std::nullopt);
}

TEST(NearMatch, TheFirstOfSeveralThatAreAsNearIsTaken) {
  EXPECT_EQ(nearMatch("port", {"sort", "fort"}), "sort");
  EXPECT_EQ(nearMatch("port", {"fort", "sort"}), "fort");
  EXPECT_EQ(nearMatch("port", {"fort", "Port", "PORT"}), "Port");
}

TEST(NearMatch, ANameOfAnyLengthAndBytesIsTaken) {
  std::string const longName(1U << 20U, 'a');
  EXPECT_EQ(nearMatch(longName, {longName}), std::nullopt);
  EXPECT_EQ(nearMatch("b", {longName}), std::nullopt);
  EXPECT_EQ(nearMatch("\xff\xfe\x80zz", {"\xff\xfe\x80zy"}), "\xff\xfe\x80zy");
}

TEST(NearMatch, MistakesWithinTheBoundLeadBackToTheName) {
  std::vector<std::string> const names{"nativeVlan", "switchportMode", "deviceState"};
  std::mt19937_64 random(1);
  auto const below = [&](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
  for (int round = 0; round < 2000; ++round) {
    std::string const& name = names[below(names.size())];
    std::string typed = name;
    for (int mistake = 0; mistake < 2; ++mistake) {
      std::size_t const at = 1 + below(typed.size() - 2);
      switch (below(4)) {
        case 0:
          typed.erase(at, 1);
          break;
        case 1:
          typed.insert(at, 1, 'q');
          break;
        case 2:
          typed[at] = 'q';
          break;
        default:
          std::swap(typed[at], typed[at + 1]);
      }
    }
    ASSERT_EQ(nearMatch(typed, names), name) << typed << ", round " << round;
  }
}

}  // namespace
}  // namespace Text
