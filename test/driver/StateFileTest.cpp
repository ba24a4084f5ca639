#include "driver/sim/StateFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "driver/sim/SimDriver.h"
#include "platform/mox/RangeException.h"
#include "test/driver/SimFixture.h"

namespace Hardware::Kest::Sim {
namespace {

using testing::ElementsAre;

std::string pathRefusal(SimDriver& driver, std::string const& path) {
  try {
    driver.stateFileIs(path);
  } catch (Mox::RangeException const& exception) {
    return exception.what();
  }
  return "accepted";
}

/// What a process that starts with this file has.
std::string loaded(std::string const& path) {
  SimDriver driver;
  driver.stateFileIs(path);
  return driver.stateText();
}

/// A document with so many interfaces, "et0", "et1", ...
std::string portsText(int ports) {
  SimDriver driver;
  for (int port = 0; port < ports; ++port) {
    driver.ifadd(Mox::String8("et" + std::to_string(port)), portOn("", 0));
  }
  return driver.stateText();
}

TEST(StateFile, HoldsEveryChangeOnceTheCallHasReturned) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  SimDriver driver;
  driver.stateFileIs(path);
  EXPECT_FALSE(std::filesystem::exists(path));

  std::string before;
  auto const expectWritten = [&](char const* what) {
    EXPECT_EQ(stateIn(path), driver.stateText()) << what;
    EXPECT_NE(driver.stateText(), std::exchange(before, driver.stateText())) << what;
  };
  driver.deviceRename("fap0", pciHam("a"));
  expectWritten("rename");
  driver.deviceRename("fap0", pciHam("b"));
  expectWritten("a rename that fails, but makes a chip appear");
  driver.deviceParam("fap0", faps(2));
  expectWritten("param");
  driver.deviceUp("fap0");
  expectWritten("up");
  driver.ifadd("et1", portOn("fap0", 1));
  expectWritten("ifadd");
  driver.nativeVlan("et1", true, 10);
  expectWritten("native VLAN");
  driver.deviceFlip("fap0");
  expectWritten("flip");
  driver.faultsAre("flip 'fap0'\nflip 'fap0' after 2 kestDmaIfdel *");
  expectWritten("flip of a fault text");
  driver.ifdel("et1");
  expectWritten("ifdel");
  driver.ifdel("et1");
  expectWritten("flip after a call that changed nothing itself");
  driver.deviceUp("fap0");
  expectWritten("up again");
  driver.deviceDown("fap0");
  expectWritten("down");
}

TEST(StateFile, IsNeverWrittenThroughALink) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  std::string const others = folder.file("others");
  std::ofstream(others) << "theirs";
  std::filesystem::create_symlink(others, path + ".tmp");
  SimDriver driver;
  driver.stateFileIs(path);
  driver.deviceRename("fap0", pciHam("a"));
  EXPECT_EQ(stateIn(path), driver.stateText());
  std::filesystem::rename(path, folder.file("moved"));
  std::filesystem::create_symlink(folder.file("moved"), path);
  std::string const moved = contentOf(path);
  driver.deviceFlip("fap0");
  EXPECT_EQ(stateIn(path), driver.stateText());
  EXPECT_EQ(contentOf(others), "theirs");
  EXPECT_EQ(contentOf(folder.file("moved")), moved);
  EXPECT_EQ(folder.names(), (std::set<std::string>{"moved", "others", "state"}));
}

TEST(StateFile, IsNotWrittenWhenNothingHasChanged) {
  TempFolder const folder;
  SimDriver driver;
  addFap0(driver);
  driver.deviceUp("fap0");
  driver.ifadd("et1", portOn("fap0", 1));
  driver.stateFileIs(folder.file("state"));
  EXPECT_EQ(loaded(folder.file("state")), driver.stateText());

  std::filesystem::remove(folder.file("state"));
  bool up = false;
  driver.isDeviceUp("fap0", &up);
  driver.deviceUp("fap0");
  driver.deviceParam("fap0", faps(1));
  driver.deviceRename("fap0", pciHam("0000:05:00.0"));
  driver.ifadd("et1", portOn("fap0", 1));
  driver.nativeVlan("et1", true, 4096);
  driver.ifdel("et2");
  driver.deviceFlip("fap9");
  driver.faultsAre("fail kestDmaDeviceDown * 5 always");
  driver.deviceDown("fap0");
  EXPECT_THAT(folder.names(), ElementsAre());
}

TEST(StateFile, IsReplacedAsAWhole) {
  TempFolder const folder;
  std::string const before = portsText(1);
  std::ofstream(folder.file("state")) << before;
  std::ofstream(folder.file("state.tmp")) << "left by a process that was killed";
  SimDriver driver;
  driver.stateFileIs(folder.file("state"));
  std::ifstream reader(folder.file("state"));
  driver.ifdel("et0");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), before);
  EXPECT_EQ(contentOf(folder.file("state")), driver.stateText());
  EXPECT_THAT(folder.names(), ElementsAre("state"));
}

TEST(StateFile, LeavesFaultsAndLogAndTakesThePlaceOfTheState) {
  TempFolder const folder;
  SimDriver first;
  first.stateFileIs(folder.file("state"));
  addFap0(first);
  first.faultsAre("fail kestDmaIfdel * 7 always");

  SimDriver second;
  second.ifadd("et9", portOn("", 0));
  second.faultsAre("fail kestDmaIfadd * 5 always");
  second.stateFileIs(folder.file("state"));
  EXPECT_EQ(second.interfaces(), first.interfaces());
  EXPECT_EQ(second.devices(), first.devices());
  EXPECT_EQ(second.faultsText(), "fail kestDmaIfadd * 5 always\n");
  EXPECT_EQ(second.log().total(), 1u);

  second.stateFileIs(folder.file("other"));
  EXPECT_EQ(stateIn(folder.file("other")), second.stateText());
  std::string const left = contentOf(folder.file("state"));
  second.deviceFlip("fap0");
  EXPECT_EQ(contentOf(folder.file("state")), left);
  EXPECT_EQ(stateIn(folder.file("other")), second.stateText());
  std::string const kept = second.stateText();
  second.reset();
  second.ifadd("et1", portOn("", 0));
  EXPECT_EQ(stateIn(folder.file("other")), kept);
}

TEST(StateFile, IsRefusedWholeAndThenLeftAlone) {
  TempFolder const folder;
  SimDriver driver;
  addFap0(driver);
  driver.stateFileIs(folder.file("good"));
  std::string const before = driver.dumpText();
  std::string const bad = folder.file("bad");
  std::string const text = "{\"format\": \"kest-dma-sim-state/1\",\n\"interfaces\": 1}";
  std::ofstream(bad) << text;
  EXPECT_EQ(pathRefusal(driver, bad), bad + ":2:1: /interfaces: expected an object, found 1");
  EXPECT_EQ(pathRefusal(driver, folder.path()),
            folder.path() + ": cannot be read: it is no regular file");
  EXPECT_EQ(pathRefusal(driver, bad + "/state"), bad + "/state: cannot be read: Not a directory");
  EXPECT_EQ(pathRefusal(driver, ""), "expected the path of a state file, found an empty one");
  EXPECT_EQ(driver.dumpText(), before);
  driver.deviceFlip("fap0");
  EXPECT_EQ(contentOf(bad), text);
  EXPECT_EQ(stateIn(folder.file("good")), driver.stateText());

  std::ofstream(bad, std::ios::trunc).close();
  EXPECT_EQ(pathRefusal(driver, bad), "accepted");  // an empty file is as good as none
  EXPECT_EQ(contentOf(bad), driver.stateText());
}

TEST(StateFile, ReportsOnceThatItCannotBeWrittenAndTriesAgain) {
  TempFolder const folder;
  std::string const home = folder.file("home");
  std::string const path = home + "/state";
  std::string const report = "kest-dma-sim: " + path +
                             ": cannot be written: No such file or directory; trying again with "
                             "every operation\n";
  SimDriver driver;
  driver.stateFileIs(path);
  bool up = false;

  testing::internal::CaptureStderr();
  EXPECT_EQ(driver.ifadd("et1", portOn("", 0)), 0);
  EXPECT_EQ(driver.ifadd("et2", portOn("", 0)), 0);
  EXPECT_EQ(driver.interfaces().size(), 2u);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), report);

  std::filesystem::create_directory(home);
  testing::internal::CaptureStderr();
  EXPECT_EQ(driver.isDeviceUp("fap0", &up), 19);
  EXPECT_EQ(contentOf(path), driver.stateText());
  std::filesystem::remove_all(home);
  EXPECT_EQ(driver.ifdel("et1"), 0);
  EXPECT_EQ(driver.ifdel("et1"), 19);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), report);

  std::filesystem::create_directories(path + "/in the way");
  testing::internal::CaptureStderr();
  EXPECT_EQ(driver.ifdel("et2"), 0);  // an empty slice again, as in the file that is missing
  EXPECT_EQ(driver.ifadd("et2", portOn("", 0)), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  std::filesystem::remove_all(home);
}

ino_t fileNumber(std::string const& path) {
  struct stat found {};
  stat(path.c_str(), &found);
  return found.st_ino;
}

TEST(StateFile, IsWrittenInProportionToWhatChanges) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  SimDriver driver;
  driver.stateFileIs(path);
  std::uintmax_t written = 0;
  std::uintmax_t bytes = 0;
  for (int port = 0; port < 1000; ++port) {
    ino_t const before = fileNumber(path);
    driver.ifadd(Mox::String8("et" + std::to_string(port)), portOn("", 0));
    std::uintmax_t const now = std::filesystem::file_size(path);
    written += fileNumber(path) == before ? now - bytes : now;
    bytes = now;
  }
  EXPECT_EQ(stateIn(path), driver.stateText());
  EXPECT_LT(written, 4 * driver.stateText().size());
}

TEST(StateFile, IsReplacedWhenItsChangesHaveGrownAsLargeAsItsDocument) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  SimDriver driver;
  driver.stateFileIs(path);
  driver.ifadd("et1", portOn("", 0));
  for (unsigned short vlan = 1000; vlan < 1100; ++vlan) {
    driver.nativeVlan("et1", true, vlan);
    EXPECT_LE(std::filesystem::file_size(path), 2 * driver.stateText().size() + 4096);
  }
  EXPECT_EQ(stateIn(path), driver.stateText());
}

TEST(StateFile, IsTheStateBeforeOrAfterTheCallWhereverAWriterWasKilled) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  SimDriver driver;
  driver.stateFileIs(path);
  driver.ifadd("et1", portOn("", 0));
  std::string const document = contentOf(path);
  EXPECT_EQ(document, driver.stateText());
  driver.deviceRename("fap0", pciHam("a"));
  driver.ifadd("et1", portOn("fap0", 0));
  std::string const before = driver.stateText();
  std::size_t const bytesBefore = contentOf(path).size();
  driver.deviceRename("fap1", pciHam("a"));  // changes the interface too
  std::string const after = driver.stateText();
  std::string const text = contentOf(path);
  EXPECT_TRUE(text.starts_with(document));
  EXPECT_GT(bytesBefore, document.size());

  for (std::size_t bytes = bytesBefore; bytes <= text.size(); ++bytes) {
    std::ofstream(path, std::ios::trunc) << text.substr(0, bytes);
    SimDriver second;
    second.stateFileIs(path);
    EXPECT_EQ(second.stateText(), bytes < text.size() ? before : after) << bytes;
    // It is killed too, while it replaces the file.
    std::ofstream(path + ".tmp", std::ios::trunc) << second.stateText().substr(0, bytes / 2);
    SimDriver third;
    third.stateFileIs(path);
    EXPECT_EQ(third.stateText(), second.stateText()) << bytes;
    third.ifdel("et1");
    EXPECT_EQ(contentOf(path), third.stateText()) << bytes;
    EXPECT_THAT(folder.names(), ElementsAre("state"));
  }
}

TEST(StateFile, IsWrittenWholeWhenSomebodyElseHasChangedOrRemovedIt) {
  TempFolder const folder;
  std::string const path = folder.file("state");
  SimDriver driver;
  driver.stateFileIs(path);
  driver.deviceRename("fap0", pciHam("a"));
  std::filesystem::remove(path);
  driver.deviceFlip("fap0");
  EXPECT_EQ(contentOf(path), driver.stateText());
  std::ofstream(path, std::ios::app) << "theirs";
  driver.deviceFlip("fap0");
  EXPECT_EQ(contentOf(path), driver.stateText());
}

}  // namespace
}  // namespace Hardware::Kest::Sim
