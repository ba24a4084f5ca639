#include "agent/control/Listener.h"

#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "test/agent/support/Client.h"
#include "test/agent/support/DescriptorLimit.h"
#include "test/agent/support/ScratchDirectory.h"
#include "test/support/UnixSocket.h"

namespace Kest::Agent {
namespace {

namespace fs = std::filesystem;

class ListenerTest : public ScratchDirectory {
 protected:
  /// What a listener at the path is refused with; empty if it is not.
  static std::string refusal(std::string const& at, SocketAccess const& access = {}) {
    try {
      Listener const listener(at, access);
    } catch (ControlSocketError const& refused) {
      return refused.what();
    }
    return "";
  }

  static ino_t inode(std::string const& at) {
    struct stat file {};
    EXPECT_EQ(lstat(at.c_str(), &file), 0);
    return file.st_ino;
  }

  static mode_t modeOf(std::string const& at) {
    struct stat file {};
    EXPECT_EQ(lstat(at.c_str(), &file), 0);
    return file.st_mode;
  }

  /// A socket in the file system that somebody else made.
  static Text::Descriptor foreignSocket(std::string const& at) {
    Text::Descriptor made(socket(AF_UNIX, SOCK_STREAM, 0));
    EXPECT_EQ(Support::bindTo(made.fd(), at), 0);
    return made;
  }

  std::string path = directory + "/agent.sock";
  static constexpr char const* turnedAwayWith = "full\n";
};

TEST_F(ListenerTest, TakesClientsInTheirOrderWithoutWaiting) {
  Listener listener(path, SocketAccess());
  EXPECT_FALSE(listener.accept(turnedAwayWith).isOpen());
  Client const first(path);
  Client const second(path);
  first.send("1");
  second.send("2");
  for (char const expected : {'1', '2'}) {
    Text::Descriptor const client = listener.accept(turnedAwayWith);
    char byte = 0;
    EXPECT_EQ(recv(client.fd(), &byte, 1, 0), 1);
    EXPECT_EQ(byte, expected);
    EXPECT_EQ(recv(client.fd(), &byte, 1, 0), -1);  // nor does the client's end wait
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_EQ(fcntl(client.fd(), F_GETFD), FD_CLOEXEC);
  }
  EXPECT_FALSE(listener.accept(turnedAwayWith).isOpen());
}

TEST_F(ListenerTest, TheFileHasItsModeWhateverTheMask) {
  for (mode_t const mask : {0000U, 0077U, 0777U}) {
    for (mode_t const mode : {0666U, 0600U, 0660U}) {
      mode_t const before = umask(mask);
      {
        Listener const listener(path, {mode, ""});
        EXPECT_EQ(modeOf(path), mode_t{S_IFSOCK} | mode) << std::oct << mask;
      }
      EXPECT_EQ(umask(before), mask);
    }
  }
}

TEST_F(ListenerTest, ASocketThatADeadAgentLeftIsReplaced) {
  foreignSocket(path);
  ASSERT_TRUE(fs::is_socket(path));
  Listener listener(path, SocketAccess());
  Client const client(path);
  EXPECT_TRUE(listener.accept(turnedAwayWith).isOpen());
}

TEST_F(ListenerTest, ARunningAgentKeepsItsSocket) {
  Listener listener(path, SocketAccess());
  ino_t const before = inode(path);
  EXPECT_EQ(refusal(path), "control socket " + path + " is in use by another agent");
  EXPECT_EQ(inode(path), before);
  Client const client(path);
  EXPECT_TRUE(listener.accept(turnedAwayWith).isOpen());
}

TEST_F(ListenerTest, ASocketThatSomebodyListensToIsLeftAloneWithoutALockToo) {
  Text::Descriptor const foreign = foreignSocket(path);
  ASSERT_EQ(listen(foreign.fd(), 1), 0);
  ino_t const before = inode(path);
  EXPECT_EQ(refusal(path), "control socket " + path + " is in use by another agent");
  EXPECT_EQ(inode(path), before);
}

/// It holds the lock, and has no socket yet.
TEST_F(ListenerTest, AnAgentThatIsJustStartingGoesFirst) {
  Text::Descriptor const lock(open((path + ".lock").c_str(), O_CREAT | O_RDWR, 0600));
  ASSERT_EQ(flock(lock.fd(), LOCK_EX), 0);
  EXPECT_EQ(refusal(path), "control socket " + path + " is in use by another agent");
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(ListenerTest, WhatIsNoSocketIsLeftAlone) {
  std::string const why = " cannot be made: there is a file that is no socket";
  fileIs("agent.sock", "precious");
  EXPECT_EQ(refusal(path), "control socket " + path + why);
  EXPECT_EQ(fs::file_size(path), 8U);

  std::string const folder = directory + "/folder";
  fs::create_directory(folder);
  EXPECT_EQ(refusal(folder), "control socket " + folder + why);
  EXPECT_TRUE(fs::is_directory(folder));

  std::string const link = directory + "/link";
  fs::create_symlink(directory + "/nowhere", link);
  EXPECT_EQ(refusal(link), "control socket " + link + why);
  EXPECT_TRUE(fs::is_symlink(link));
}

TEST_F(ListenerTest, APathThatCannotBeIsRefusedAndLeavesNothingBehind) {
  constexpr std::size_t longest = 107;
  std::string const fits = directory + "/" + std::string(longest - directory.size() - 1, 'l');
  EXPECT_EQ(refusal(fits), "");
  fs::remove(fits + ".lock");
  EXPECT_EQ(refusal(fits + "l"),
            "control socket " + fits + "l cannot be made: the path has more than 107 bytes");
  EXPECT_EQ(refusal(""), "control socket  cannot be made: the path is empty");
  std::string const nowhere = directory + "/none/agent.sock";
  EXPECT_EQ(refusal(nowhere),
            "control socket " + nowhere + " cannot be locked: No such file or directory");
  EXPECT_TRUE(fs::is_empty(directory));
}

TEST_F(ListenerTest, TheFileGoesWithItsListenerAndThePathIsFreeAgain) {
  { Listener const listener(path, SocketAccess()); }
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(refusal(path), "");
}

TEST_F(ListenerTest, AFileThatTookThePlaceIsNotRemoved) {
  {
    Listener const listener(path, SocketAccess());
    fs::rename(path, path + ".moved");  // so that its inode is not free for the next
    foreignSocket(path);
  }
  EXPECT_TRUE(fs::is_socket(path));
}

TEST_F(ListenerTest, ByDefaultOnlyOwnerAndGroupMayConnect) {
  Listener const listener(path, {});
  EXPECT_EQ(modeOf(path), mode_t{S_IFSOCK} | 0660U);
}

TEST_F(ListenerTest, TheFileHasItsGroup) {
  if (geteuid() != 0) GTEST_SKIP() << "not root";
  constexpr gid_t games = 60;  // as in every Debian
  for (char const* group : {"60", "games"}) {
    Listener const listener(path, {0660, group});
    struct stat file {};
    ASSERT_EQ(lstat(path.c_str(), &file), 0);
    EXPECT_EQ(file.st_gid, games);
    EXPECT_EQ(file.st_uid, 0U);
    EXPECT_EQ(file.st_mode, mode_t{S_IFSOCK} | 0660U);
  }
}

TEST_F(ListenerTest, AGroupThatCannotBeIsRefusedAndLeavesNoSocket) {
  EXPECT_EQ(refusal(path, {0660, "no such"}),
            "control socket " + path + " cannot be made: there is no group 'no such'");
  EXPECT_FALSE(fs::exists(path));
  if (geteuid() == 0) return;
  EXPECT_EQ(
      refusal(path, {0660, "0"}),
      "control socket " + path + " cannot be given to the group '0': Operation not permitted");
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(ListenerTest, WithoutDescriptorsWhoeverWaitsIsToldSoAndTurnedAway) {
  Listener listener(path, SocketAccess());
  Client turnedAway(path);
  Client alsoTurnedAway(path);
  DescriptorLimit const limit;
  limit.isReached();
  EXPECT_FALSE(listener.accept(turnedAwayWith).isOpen());
  EXPECT_FALSE(listener.isStuck());
  limit.restore();
  for (Client* const client : {&turnedAway, &alsoTurnedAway}) {
    EXPECT_TRUE(client->isEnded());
    EXPECT_EQ(client->received(), "full\n");
  }
  Client taken(path);
  EXPECT_TRUE(listener.accept(turnedAwayWith).isOpen());
}

TEST_F(ListenerTest, ItTurnsAwayAFewAtATime) {
  Listener listener(path, SocketAccess());
  std::vector<Client> waiting;
  for (int i = 0; i < 20; ++i) waiting.emplace_back(path);
  DescriptorLimit const limit;
  limit.isReached();
  auto const ended = [&] {
    return std::count_if(waiting.begin(), waiting.end(),
                         [](Client& client) { return client.isEnded(); });
  };
  listener.accept(turnedAwayWith);
  EXPECT_EQ(ended(), 16);
  listener.accept(turnedAwayWith);
  EXPECT_EQ(ended(), 20);
}

TEST_F(ListenerTest, WithoutTheSpareDescriptorEitherItIsStuckAndNobodyIsLost) {
  Listener listener(path, SocketAccess());
  Client const waiting(path);
  DescriptorLimit const limit;
  ASSERT_TRUE(limit.is(3));  // the spare one does not come back
  listener.accept(turnedAwayWith);
  EXPECT_TRUE(listener.isStuck());
  limit.restore();
  EXPECT_TRUE(listener.accept(turnedAwayWith).isOpen());
  EXPECT_FALSE(listener.isStuck());
}

}  // namespace
}  // namespace Kest::Agent
