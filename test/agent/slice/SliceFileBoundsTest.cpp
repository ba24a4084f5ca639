#include <gtest/gtest.h>

#include "test/agent/slice/SliceTexts.h"

namespace Kest::Agent {
namespace {

TEST(SliceFile, IsRefusedWhenItCannotBeRead) {
  auto const message = [](std::string const& path) -> std::string {
    try {
      readSliceFile(path);
      return {};
    } catch (FileError const& error) {
      return error.what();
    }
  };
  EXPECT_EQ(message("no/such/slice"), "no/such/slice: cannot be read: No such file or directory");
  EXPECT_EQ(message("/"), "/: cannot be read: Is a directory");
  EXPECT_EQ(message("/dev/zero"), "/dev/zero: expected at most 16 MiB, found more");
}

TEST(SliceFile, IsBoundedInEitherForm) {
  std::string const largest(std::size_t{16} << 20U, ' ');
  EXPECT_EQ(refusal(largest), "");
  EXPECT_EQ(refusal(largest + " "), "slice: expected at most 16 MiB, found more");
  EXPECT_EQ(jsonRefusal(largest + " "), "slice.json: expected at most 16 MiB, found more");
}

/// The letters around the column, whole ones: each of these has two bytes.
TEST(SliceFile, IsShownInPartWhereALineIsVeryLong) {
  auto const letters = [](std::size_t count) {
    std::string text;
    while (count-- > 0) text += "\303\274";
    return text;
  };
  EXPECT_EQ(refusal("sliceId '" + letters(600) + "' x # " + letters(600)),
            "slice:1:1212: expected the end of the line, found 'x'\n"
            "  ..." +
                letters(29) + "' x # " + letters(28) + "...\n" + std::string(36, ' ') + "^");
}

TEST(SliceFile, IsShownInPartWhereALineIsVeryLongAndHoldsNoWholeCharacters) {
  auto const rests = [](std::size_t count) { return std::string(count, '\200'); };
  EXPECT_EQ(refusal("sliceId '" + rests(600) + "' x" + rests(600)),
            "slice:1:612: expected the end of the line, found 'x" + rests(89) + " ... " +
                rests(90) + "'\n  ..." + rests(61) + "' x" + rests(62) + "...\n" +
                std::string(7, ' ') + "^");
}

TEST(SliceFile, FoundIsShownInPartWhereANameIsVeryLong) {
  std::string const name(1000, 'x');
  std::string const found =
      "expected one of pciHam, sliceId, switchPort, nativeVlan, switchportMode, device, "
      "deviceState, found '" +
      std::string(90, 'x') + " ... " + std::string(90, 'x') + "'\n";
  std::string const line = std::string(60, 'x') + "...\n";
  EXPECT_EQ(refusal(name + " 1"), "slice:1:1: " + found + "  " + line + "  ^");
  EXPECT_EQ(jsonRefusal("{\"" + name + "\": 1}"), "slice.json:1:2: /" + std::string(89, 'x') +
                                                      " ... " + std::string(90, 'x') + ": " +
                                                      found + "  {\"" + line.substr(1) + "   ^");
}

}  // namespace
}  // namespace Kest::Agent
