#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "driver/sim/SimControl.h"
#include "driver/sim/SimDriver.h"
#include "platform/mox/RangeException.h"
#include "test/driver/SimFixture.h"

namespace Hardware::Kest::Sim {
namespace {

std::string faultRefusal(SimDriver& driver, std::string const& text) {
  try {
    driver.faultsAre(text, "my.faults");
  } catch (Mox::RangeException const& exception) {
    return exception.what();
  }
  return "accepted";
}

TEST(FaultFile, ReadsItsStatements) {
  struct {
    char const* text;
    char const* faults;
  } const table[] = {
      {"", ""},
      {"\n \t\n# nothing\n  # fail", ""},
      {"fail kestDmaIfadd 'et3/1' 11 times 20", "fail kestDmaIfadd 'et3/1' 11 times 20\n"},
      {"fail kestDmaDeviceUp * 5 always\r\n", "fail kestDmaDeviceUp * 5 always\n"},
      {"  fail\tkestDmaIfdel 'it\\'s # one' 4095 times 4294967295#c",
       "fail kestDmaIfdel 'it\\'s # one' 4095 times 4294967295\n"},
      {"flip 'nobody' after 3 kestDmaDump *", "flip 'nobody' after 3 kestDmaDump *\n"},
      {"flip 'fap0' # at once", ""},
      {"fail kestDmaNativeVlan * 1 always\n\nfail kestDmaIsDeviceUp 'a' 19 times 1\n",
       "fail kestDmaNativeVlan * 1 always\nfail kestDmaIsDeviceUp 'a' 19 times 1\n"},
  };
  SimDriver driver;
  addFap0(driver);
  for (auto const& row : table) {
    driver.faultsAre(row.text);
    EXPECT_EQ(driver.faultsText(), row.faults) << row.text;
    driver.faultsAre(driver.faultsText());
    EXPECT_EQ(driver.faultsText(), row.faults) << "read back: " << row.text;
  }
}

TEST(FaultFile, SaysWhereItIsWrongAndThenChangesNothing) {
  struct {
    char const* line;
    char const* error;
  } const table[] = {
      {"break", "1: expected fail or flip, found 'break'"},
      {"fail", "5: expected the name of a driver operation, found the end of the line"},
      {"fail kestDmaIfAdd * 1 always",
       "6: expected the name of a driver operation, found 'kestDmaIfAdd'"},
      {"fail kestDmaDump * 1 always",
       "6: expected a driver operation that has a result, found 'kestDmaDump'"},
      {"fail kestDmaIfadd et1 1 always", "19: expected a name in apostrophes or *, found 'et1'"},
      {"fail kestDmaIfadd 'et1",
       "23: expected the string's closing apostrophe, found the end of "
       "the text"},
      {"fail kestDmaIfadd * 0 always", "21: expected an error number from 1 to 4095, found 0"},
      {"fail kestDmaIfadd * 4096 always",
       "21: expected an error number from 1 to 4095, found 4096"},
      {"fail kestDmaIfadd * -11 always", "21: expected a decimal number, found '-'"},
      {"fail kestDmaIfadd * 11", "23: expected times or always, found the end of the line"},
      {"fail kestDmaIfadd * 11 # always",
       "24: expected times or always, found the end of the line"},
      {"fail kestDmaIfadd * 11 twice", "24: expected times or always, found 'twice'"},
      {"fail kestDmaIfadd * 11 times 0", "30: expected a count from 1 to 4294967295, found 0"},
      {"fail kestDmaIfadd * 11 times 4294967296",
       "30: expected a number from 0 to 4294967295, found a larger one"},
      {"fail kestDmaIfadd * 11 times 2 3", "32: expected the end of the line, found '3'"},
      {"flip", "5: expected a name in apostrophes, found the end of the line"},
      {"flip 'fap0' now", "13: expected after or the end of the line, found 'now'"},
      {"flip  'fap9'", "7: expected the name of a device that there is, found 'fap9'"},
      {"flip 'fap0' after 0 kestDmaDump *", "19: expected a count from 1 to 4294967295, found 0"},
      {"flip 'fap0' after 2",
       "20: expected the name of a driver operation, found the end of the "
       "line"},
      {"flip 'fap0' after 2 kestDmaIfdel",
       "33: expected a name in apostrophes or *, found the end of the line"},
  };
  SimDriver driver;
  addFap0(driver);
  driver.faultsAre("fail kestDmaIfdel * 2 always");
  std::string const before = driver.dumpText();
  for (auto const& row : table) {
    std::string const text = std::string("flip 'fap0'\nfail kestDmaIfadd * 1 always\n") + row.line;
    EXPECT_EQ(faultRefusal(driver, text), std::string("my.faults:3:") + row.error);
    EXPECT_EQ(driver.dumpText(), before) << row.line;
  }
}

TEST(FaultFile, TakesNamesOfABoundedLength) {
  SimDriver driver;
  std::string const longest = "fail kestDmaIfdel '" + std::string(255, 'a') + "' 1 always\n";
  EXPECT_EQ(faultRefusal(driver, longest), "accepted");
  EXPECT_EQ(driver.faultsText(), longest);
  EXPECT_EQ(faultRefusal(driver, "fail kestDmaIfdel '" + std::string(256, 'a') + "' 1 always"),
            "my.faults:1:19: expected a name of at most 255 bytes, found a longer one");
}

TEST(FaultFile, ReadsTheExample) {
  SimDriver driver;
  driver.faultFileIs(KEST_FAULTS_EXAMPLE);
  EXPECT_EQ(driver.faultsText(),
            "fail kestDmaIfadd 'et3/1' 11 times 20\n"
            "fail kestDmaDeviceParam 'fap3/1' 22 always\n"
            "fail kestDmaDeviceUp * 5 times 1\n"
            "flip 'fap3/0' after 30 kestDmaIsDeviceUp 'fap3/0'\n");
}

TEST(FaultFile, FirstMatchingFaultAnswersUntilItIsUsedUp) {
  SimDriver driver;
  driver.faultsAre(
      "fail kestDmaIfadd 'et1' 11 times 2\n"
      "fail kestDmaIfadd * 5 times 2\n");
  EXPECT_EQ(driver.ifadd("et2", portOn("", 0)), 5);
  EXPECT_EQ(driver.ifadd("et1", portOn("", 0)), 11);
  EXPECT_EQ(driver.ifdel("et1"), 19);
  EXPECT_EQ(driver.ifadd("et1", portOn("", 0)), 11);
  EXPECT_EQ(driver.interface("et1"), nullptr);
  EXPECT_EQ(driver.faultsText(), "fail kestDmaIfadd * 5 times 1\n");
  EXPECT_EQ(driver.ifadd("et1", portOn("", 0)), 5);
  EXPECT_EQ(driver.ifadd("et1", portOn("", 0)), 0);
  EXPECT_EQ(driver.faultsText(), "");
  EXPECT_NE(driver.interface("et1"), nullptr);
}

TEST(FaultFile, FlipsADeviceOnceTheCallsHaveBeenMade) {
  SimDriver driver;
  addFap0(driver);
  driver.faultsAre(
      "flip 'fap0'\n"
      "fail kestDmaIsDeviceUp 'fap0' 5 times 1\n"
      "flip 'fap0' after 2 kestDmaIsDeviceUp 'fap0'\n"
      "flip 'fap9' after 3 kestDmaIsDeviceUp *\n");
  EXPECT_TRUE(driver.device("fap0")->up);
  bool up = false;
  EXPECT_EQ(driver.isDeviceUp("fap0", &up), 5);  // a call that fails counts too
  EXPECT_EQ(driver.isDeviceUp("fap0", &up), 0);
  EXPECT_TRUE(up);
  testing::internal::CaptureStderr();
  EXPECT_EQ(driver.isDeviceUp("fap0", &up), 0);
  EXPECT_FALSE(up);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "kest-dma-sim: there is no device 'fap9' to flip\n");
  EXPECT_EQ(driver.faultsText(), "");
  EXPECT_EQ(driver.device("fap0")->flips, 2u);
}

TEST(FaultFile, IsHandedOverThroughTheCEntry) {
  simDriver().reset();
  std::string const path = testing::TempDir() + "kest_sim_faults" + std::to_string(getpid());
  std::ofstream(path) << "fail kestDmaIfdel * 7 times 1\nflop\n";
  char error[200] = "untouched";
  EXPECT_EQ(kestDmaSimFaultFileIs(path.c_str(), error, sizeof error), -1);
  EXPECT_EQ(error, path + ":2:1: expected fail or flip, found 'flop'");
  char shortError[8];
  EXPECT_EQ(kestDmaSimFaultFileIs(path.c_str(), shortError, sizeof shortError), -1);
  EXPECT_EQ(shortError, path.substr(0, 7));
  EXPECT_EQ(simDriver().faultsText(), "");

  std::ofstream(path) << "fail kestDmaIfdel * 7 times 1\n";
  EXPECT_EQ(kestDmaSimFaultFileIs(path.c_str(), error, sizeof error), 0);
  EXPECT_EQ(simDriver().faultsText(), "fail kestDmaIfdel * 7 times 1\n");
  simDriver().reset();

  std::remove(path.c_str());
  EXPECT_EQ(kestDmaSimFaultFileIs(path.c_str(), error, sizeof error), -1);
  EXPECT_EQ(error, path + ": cannot be read: No such file or directory");
  EXPECT_EQ(kestDmaSimFaultFileIs("/", error, sizeof error), -1);
  EXPECT_STREQ(error, "/: cannot be read: it is no regular file");
}

}  // namespace
}  // namespace Hardware::Kest::Sim
