#include <gtest/gtest.h>

#include <algorithm>

#include "agent/slice/SliceForm.h"
#include "agent/slice/SliceStatements.h"
#include "platform/mox/RangeException.h"
#include "test/agent/support/SliceTexts.h"

namespace Kest::Agent {
namespace {

TEST(SliceFile, IsRefusedWhenItCannotBeRead) {
  auto const message = [](std::string const& path) -> std::string {
    try {
      readSliceFile(path);
      return {};
    } catch (Text::FileError const& error) {
      return error.what();
    }
  };
  EXPECT_EQ(message("no/such/slice"), "no/such/slice: cannot be read: No such file or directory");
  EXPECT_EQ(message("/"), "/: cannot be read: it is no regular file");
}

TEST(SliceFile, MayBeOfAnySizeAsStatements) {
  std::string const line = std::string(longestStatement, ' ') + "\n";
  std::string text;
  while (text.size() < std::size_t{17} << 20U) text += line;
  EXPECT_EQ(refusal(text), "");
}

TEST(SliceFile, IsBoundedAsJson) {
  auto const reader = sliceReader("slice.json", SliceForm::json, SliceEnd::optional);
  reader->take(std::string(std::size_t{64} << 20U, ' '));
  try {
    reader->take(" ");
    FAIL() << "not refused";
  } catch (Text::FileError const& refused) {
    EXPECT_STREQ(refused.what(), "slice.json: expected at most 64 MiB of JSON, found more");
  }
}

/// However its bytes come: a line is refused before it has come whole.
TEST(SliceFile, HasLinesOf64KiBAtMost) {
  std::string const line = "sliceId 'a' #" + std::string(longestStatement - 13, 'x');
  std::string const message =
      "slice:2:65537: expected a line of at most 65536 bytes, found a "
      "longer one\n  ..." +
      std::string(60, 'x') + "\n" + std::string(65, ' ') + "^";
  EXPECT_EQ(refusal(line), "");
  EXPECT_EQ(refusal("\n" + line + "x\n"), message);
  EXPECT_EQ(refusal("\n" + line + "x"), message);
  for (std::size_t const bytes : std::initializer_list<std::size_t>{1, 7, 4096, 65535}) {
    auto const reader = sliceReader("slice", SliceForm::statements, SliceEnd::optional);
    reader->take("\n");
    std::string_view rest = line;
    for (; !rest.empty(); rest.remove_prefix(std::min(bytes, rest.size()))) {
      reader->take(rest.substr(0, bytes));
    }
    try {
      reader->take("x");
      FAIL() << "not refused";
    } catch (Text::FileError const& refused) {
      EXPECT_EQ(refused.what(), message);
    }
  }
}

/// In files, in JSON and in whatever else declares handles.
TEST(SliceFile, HasPathsOf32StepsAnd255BytesAtMost) {
  auto const pathOf = [](std::size_t steps, std::size_t bytes) {
    std::string path;
    for (std::size_t step = 0; step < steps; ++step) path += "/a";
    return path.append(bytes - path.size(), 'x');
  };
  struct {
    std::string path;
    std::string message;
  } const bounds[] = {
      {pathOf(32, 255), ""},
      {pathOf(33, 66), "expected a path of at most 32 steps, found one of 33"},
      {pathOf(4000, 8000), "expected a path of at most 32 steps, found one of 4000"},
      {pathOf(2, 256), "expected a path of at most 255 bytes, found one of 256"},
  };
  auto const firstLine = [](std::string const& text) { return text.substr(0, text.find('\n')); };
  for (auto const& bound : bounds) {
    std::string const& path = bound.path;
    std::string const& message = bound.message;
    bool const isTaken = message.empty();
    EXPECT_EQ(firstLine(refusal("# handles\npciHam '" + path + "'")),
              isTaken ? "" : "slice:2:8: " + message);
    EXPECT_EQ(firstLine(jsonRefusal("{\"pciHam\":\n[\"" + path + "\"]}")),
              isTaken ? "" : "slice.json:2:2: /pciHam/0: " + message);
    PciHandles handles;
    EXPECT_EQ(isTaken, [&] {
      try {
        handles.declare(Mox::String8(path));
        return true;
      } catch (Mox::RangeException const& refused) {
        EXPECT_EQ(refused.what(), message);
        return false;
      }
    }());
  }
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
      "deviceState, end, found '" +
      std::string(90, 'x') + " ... " + std::string(90, 'x') + "'\n";
  std::string const line = std::string(60, 'x') + "...\n";
  EXPECT_EQ(refusal(name + " 1"), "slice:1:1: " + found + "  " + line + "  ^");
  EXPECT_EQ(jsonRefusal("{\"" + name + "\": 1}"), "slice.json:1:2: /" + std::string(89, 'x') +
                                                      " ... " + std::string(90, 'x') + ": " +
                                                      found + "  {\"" + line.substr(1) + "   ^");
}

}  // namespace
}  // namespace Kest::Agent
