#include "agent/process/ServiceManager.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "agent/process/SignOfLife.h"
#include "test/agent/support/NotifySocket.h"
#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Agent {
namespace {

class ServiceManagerTest : public ScratchDirectory {
 protected:
  ~ServiceManagerTest() override {
    signsOfLifeGoTo(-1, "");
    unsetenv("NOTIFY_SOCKET");
    unsetenv("WATCHDOG_USEC");
  }

  std::string const path = directory + "/notify";
};

TEST_F(ServiceManagerTest, IsToldWhereTheEnvironmentSays) {
  for (std::string const& name : {path, "@kest-" + path}) {
    NotifySocket const socket(name);
    setenv("NOTIFY_SOCKET", name.c_str(), 1);
    ServiceManager const manager;
    manager.isTold("READY=1");
    EXPECT_EQ(socket.told(), "READY=1");
  }
}

TEST_F(ServiceManagerTest, IsToldOfLifeWhenItWatches) {
  NotifySocket const socket(path);
  setenv("NOTIFY_SOCKET", path.c_str(), 1);
  ServiceManager const manager;
  manager.isToldOfLife();
  giveSignOfLife();
  setenv("WATCHDOG_USEC", "30000000", 1);
  manager.isTold("one");
  manager.isToldOfLife();
  giveSignOfLife();
  manager.isTold("two");
  EXPECT_EQ(socket.told(), "one");
  EXPECT_EQ(socket.told(), "WATCHDOG=1");
  EXPECT_EQ(socket.told(), "two");
}

TEST_F(ServiceManagerTest, IsNotWaitedForWhenItDoesNotListen) {
  NotifySocket const socket(path);
  setenv("NOTIFY_SOCKET", path.c_str(), 1);
  ServiceManager const manager;
  for (int i = 0; i < 10000; ++i) manager.isTold("READY=1");
}

TEST_F(ServiceManagerTest, MayBeMissing) {
  for (std::string const& name : {std::string(), path, std::string(200, 'x')}) {
    setenv("NOTIFY_SOCKET", name.c_str(), 1);
    testing::internal::CaptureStderr();
    ServiceManager const manager;
    manager.isTold("READY=1");
    std::string const reason = name == path ? "No such file or directory" : "File name too long";
    std::string const line =
        "kest-slice-agent: NOTIFY_SOCKET is not used: " + name + ": " + reason + "\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), name.empty() ? "" : line);
  }
}

}  // namespace
}  // namespace Kest::Agent
