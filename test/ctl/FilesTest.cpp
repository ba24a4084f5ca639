#include "ctl/Files.h"

#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "ctl/Failure.h"
#include "test/agent/support/ScratchDirectory.h"

/// Whether files can be brought to the disk.
static bool diskTakesFiles = true;

extern "C" __attribute__((visibility("default"))) int fsync(int) {
  if (!diskTakesFiles) errno = EIO;
  return diskTakesFiles ? 0 : -1;
}

namespace Kest::Ctl {
namespace {

/// A file that cannot be replaced stays as it is, with nothing beside it.
class ReplacedFile : public Agent::ScratchDirectory {
 protected:
  ReplacedFile() { fileIs("file", "old"); }
  ~ReplacedFile() override { diskTakesFiles = true; }

  std::string refusal(std::string const& content) const {
    try {
      replaceFile(file, content);
      return "";
    } catch (Failure const& failure) {
      return failure.what();
    }
  }

  void expectOld() const {
    EXPECT_EQ(contentOf(file), "old");
    std::filesystem::directory_iterator const all(directory);
    EXPECT_EQ(std::distance(begin(all), end(all)), 1) << "a new file was left";
  }

  std::string const file = directory + "/file";
};

TEST_F(ReplacedFile, HasItsNewContent) {
  EXPECT_EQ(refusal("new"), "");
  EXPECT_EQ(contentOf(file), "new");
}

TEST_F(ReplacedFile, StaysWhenTheDiskFails) {
  diskTakesFiles = false;
  EXPECT_EQ(refusal("new"), file + " cannot be written: Input/output error");
  expectOld();
}

TEST_F(ReplacedFile, StaysWhenThereIsNoRoom) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit const little{1000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
  std::string const message = refusal(std::string(2000, 'x'));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(message, file + " cannot be written: File too large");
  expectOld();
}

}  // namespace
}  // namespace Kest::Ctl
