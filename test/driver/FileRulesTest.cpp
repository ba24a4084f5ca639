#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "driver/sim/SimDriver.h"
#include "platform/mox/RangeException.h"
#include "test/driver/SimFixture.h"

/// What files the state and the faults are read from, and whose a state file is.
namespace Hardware::Kest::Sim {
namespace {

using TakesFile = void (SimDriver::*)(std::string const& path);

std::string pathRefusal(SimDriver& driver, std::string const& path, TakesFile takesFile) {
  try {
    (driver.*takesFile)(path);
  } catch (Mox::RangeException const& exception) {
    return exception.what();
  }
  return "accepted";
}

struct stat fileAt(std::string const& path) {
  struct stat found {};
  stat(path.c_str(), &found);
  return found;
}

mode_t modeOf(std::string const& path) {
  return fileAt(path).st_mode & 07777;
}

TEST(FileRules, IsItsOwnersAloneUntilItIsGivenAMode) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  mode_t const before = umask(0);
  SimDriver driver;
  driver.stateFileIs(path);
  driver.ifadd("et1", portOn("", 0));
  EXPECT_EQ(modeOf(path), 0600u);

  for (mode_t const mode : {0640u, 0666u, 0600u}) {
    chmod(path.c_str(), mode);
    std::ofstream(path, std::ios::app) << "\n";  // no longer as it was left: it is replaced
    driver.deviceRename("fap0", pciHam(std::to_string(mode).c_str()));
    EXPECT_EQ(contentOf(path), driver.stateText());
    EXPECT_EQ(modeOf(path), mode);
  }
  umask(before);
}

TEST(FileRules, KeepsItsOwnerAndGroupWhereTheProcessMayGiveThemAway) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may give files away";
  struct {
    uid_t user;  // of the process
    gid_t group;
    uid_t owner;  // of the file then
    gid_t ownerGroup;
    mode_t mode;
  } const table[] = {
      {0, 0, 5000, 5001, 0664},
      {6000, 5001, 6000, 5001, 0664},
      {6000, 6001, 6000, 6001, 0644},  // the group is another: it gets what others have
  };
  for (auto const& row : table) {
    TempFolder const folder;
    std::string const path = folder.file("state");
    std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
    std::ofstream(path).close();
    ASSERT_EQ(chown(path.c_str(), 5000, 5001), 0);
    ASSERT_EQ(chmod(path.c_str(), 0664), 0);
    SimDriver driver;
    driver.ifadd("et1", portOn("", 0));
    ASSERT_EQ(setegid(row.group), 0);
    ASSERT_EQ(seteuid(row.user), 0);
    driver.stateFileIs(path);
    ASSERT_EQ(seteuid(0), 0);
    ASSERT_EQ(setegid(0), 0);
    EXPECT_EQ(contentOf(path), driver.stateText());
    EXPECT_EQ(fileAt(path).st_uid, row.owner) << row.user;
    EXPECT_EQ(fileAt(path).st_gid, row.ownerGroup) << row.group;
    EXPECT_EQ(modeOf(path), row.mode) << row.group;
  }
}

TEST(FileRules, IsARegularFileOfABoundedSize) {
  TempFolder const folder;
  SimDriver driver;
  auto const expectRefused = [&](std::string const& path, std::string const& reason) {
    EXPECT_EQ(pathRefusal(driver, path, &SimDriver::stateFileIs), path + ": " + reason);
    EXPECT_EQ(pathRefusal(driver, path, &SimDriver::faultFileIs), path + ": " + reason);
  };
  expectRefused("/dev/zero", "cannot be read: it is no regular file");
  std::string const fifo = folder.file("fifo");
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  expectRefused(fifo, "cannot be read: it is no regular file");
  std::string const large = folder.file("large");
  std::ofstream(large).close();
  std::filesystem::resize_file(large, (std::uintmax_t{64} << 20) + 1);
  expectRefused(large, "expected at most 64 MiB, found more");
}

}  // namespace
}  // namespace Hardware::Kest::Sim
