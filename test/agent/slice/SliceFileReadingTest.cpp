#include "agent/slice/SliceFileReading.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "test/agent/support/ScratchDirectory.h"
#include "text/FileError.h"

namespace Kest::Agent {
namespace {

/// A file of several pieces is changed between two of them.
class SliceFileReadingTest : public ScratchDirectory {
 protected:
  static constexpr std::size_t ports = 2000;

  static std::string manyPorts(std::string const& vlan) {
    std::string text;
    for (std::size_t port = 0; port < ports; ++port) {
      text += "nativeVlan 'et" + std::to_string(port) + "' " + vlan + "\n";
    }
    return text;
  }

  std::string file(char const* name = "slice") const { return directory + "/" + name; }

  void append(std::string const& text) const { std::ofstream(file(), std::ios::app) << text; }

  /// What came of it: VLANs of the first and the last port, or the refusal.
  static std::string outcome(SliceFileReading& reading) {
    try {
      while (reading.goOn()) {
      }
    } catch (Text::FileError const& refused) {
      return refused.what();
    }
    Slice const slice = reading.slice();
    Config const& config = *slice.config;
    Mox::String8 const last = Mox::format("et%d", static_cast<int>(ports - 1));
    return std::to_string(config.nativeVlan("et0")) + " " + std::to_string(config.nativeVlan(last));
  }
};

TEST_F(SliceFileReadingTest, TakesPieces) {
  fileIs("slice", manyPorts("7"));
  SliceFileReading reading(file(), SliceEnd::optional);
  EXPECT_TRUE(reading.goOn());
  EXPECT_EQ(outcome(reading), "7 7");
}

TEST_F(SliceFileReadingTest, OfAFileThatIsReplacedStartsAgain) {
  fileIs("slice", manyPorts("7"));
  fileIs("new", manyPorts("8"));
  SliceFileReading reading(file(), SliceEnd::optional);
  EXPECT_TRUE(reading.goOn());
  std::filesystem::rename(file("new"), file());
  EXPECT_EQ(outcome(reading), "8 8");
}

/// What is cut in the middle of a line is no error of the file either.
TEST_F(SliceFileReadingTest, OfAFileThatIsCutOffAndWrittenAgainStartsAgain) {
  fileIs("slice", manyPorts("7"));
  SliceFileReading reading(file(), SliceEnd::optional);
  EXPECT_TRUE(reading.goOn());
  std::filesystem::resize_file(file(), sliceBytesAtOnce + 5);
  EXPECT_TRUE(reading.goOn());
  EXPECT_TRUE(reading.goOn()) << "half a statement was taken for one";
  fileIs("slice", manyPorts("8"));
  EXPECT_EQ(outcome(reading), "8 8");
}

TEST_F(SliceFileReadingTest, OfAFileThatIsAppendedToStartsAgain) {
  fileIs("slice", "nativeVlan 'et0' 1\n");
  SliceFileReading reading(file(), SliceEnd::optional);
  EXPECT_TRUE(reading.goOn());
  EXPECT_TRUE(reading.goOn()) << "that was the end of the file";
  append("nativeVlan 'et1999' 2\n");
  EXPECT_EQ(outcome(reading), "1 2");
}

TEST_F(SliceFileReadingTest, OfAFileThatGoesIsRefused) {
  fileIs("slice", manyPorts("7"));
  SliceFileReading reading(file(), SliceEnd::optional);
  EXPECT_TRUE(reading.goOn());
  std::filesystem::remove(file());
  EXPECT_EQ(outcome(reading), file() + ": cannot be read: No such file or directory");
}

TEST_F(SliceFileReadingTest, OfAFileThatChangesAllTheTimeIsGivenUp) {
  fileIs("slice", "");
  SliceFileReading reading(file(), SliceEnd::optional);
  std::string message;
  for (int round = 0; round < 1000 && message.empty(); ++round) {
    append("nativeVlan 'et" + std::to_string(round) + "' 1\n");
    try {
      reading.goOn();
    } catch (Text::FileError const& refused) {
      message = refused.what();
    }
  }
  EXPECT_EQ(message, file() + ": changed each of the 5 times that it was read");
}

TEST_F(SliceFileReadingTest, NamesAnErrorOfAFileThatStaysAsItIs) {
  fileIs("slice", "sliceId 'a'\nbogus\n");
  SliceFileReading reading(file(), SliceEnd::optional);
  EXPECT_EQ(outcome(reading).substr(file().size(), 6), ":2:1: ");
}

/// A pipe that nobody writes to would be waited for.
TEST_F(SliceFileReadingTest, TakesRegularFilesAlone) {
  ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
  for (std::string const& path : {file("pipe"), directory, std::string("/dev/zero")}) {
    SliceFileReading reading(path, SliceEnd::optional);
    EXPECT_EQ(outcome(reading), path + ": cannot be read: it is no regular file");
  }
}

TEST_F(SliceFileReadingTest, WantsTheEndIfItIsRequired) {
  fileIs("slice", "sliceId 'a'");
  SliceFileReading without(file(), SliceEnd::required);
  EXPECT_EQ(outcome(without), file() +
                                  ":1:12: expected 'end' as the last statement, found none\n"
                                  "  sliceId 'a'\n"
                                  "             ^");
  fileIs("slice", "sliceId 'a'\nend # that is all\n");
  SliceFileReading with(file(), SliceEnd::required);
  EXPECT_EQ(outcome(with), "0 0");
  fileIs("slice.json", "\n{\"sliceId\": \"a\"}");
  SliceFileReading json(file("slice.json"), SliceEnd::required);
  EXPECT_EQ(outcome(json), file("slice.json") +
                               ":2:1: expected a last member 'end', found none\n"
                               "  {\"sliceId\": \"a\"}\n"
                               "  ^");
  fileIs("slice.json", "{\"sliceId\": \"a\", \"end\": true}");
  SliceFileReading whole(file("slice.json"), SliceEnd::required);
  EXPECT_EQ(outcome(whole), "0 0");
}

}  // namespace
}  // namespace Kest::Agent
