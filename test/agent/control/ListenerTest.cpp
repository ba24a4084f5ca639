#include "agent/control/Listener.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <optional>

#include "test/agent/ScratchDirectory.h"
#include "test/agent/control/Client.h"

namespace Kest::Agent {
namespace {

namespace fs = std::filesystem;

class ListenerTest : public ScratchDirectory {
 protected:
  /// What a listener at the path is refused with; empty if it is not.
  static std::string refusal(std::string const& at) {
    try {
      Listener const listener(at, 0666);
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
  static Descriptor foreignSocket(std::string const& at) {
    Descriptor made(socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    at.copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(bind(made.fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    return made;
  }

  std::string path = directory + "/agent.sock";
};

TEST_F(ListenerTest, TakesClientsInTheirOrderWithoutWaiting) {
  Listener listener(path, 0666);
  EXPECT_FALSE(listener.accept().isOpen());
  Client const first(path);
  Client const second(path);
  first.send("1");
  second.send("2");
  for (char const expected : {'1', '2'}) {
    Descriptor const client = listener.accept();
    char byte = 0;
    EXPECT_EQ(recv(client.fd(), &byte, 1, 0), 1);
    EXPECT_EQ(byte, expected);
    EXPECT_EQ(recv(client.fd(), &byte, 1, 0), -1);  // nor does the client's end wait
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_EQ(fcntl(client.fd(), F_GETFD), FD_CLOEXEC);
  }
  EXPECT_FALSE(listener.accept().isOpen());
}

TEST_F(ListenerTest, TheFileHasItsModeWhateverTheMask) {
  for (mode_t const mask : {0000U, 0077U, 0777U}) {
    for (mode_t const mode : {0666U, 0600U, 0660U}) {
      mode_t const before = umask(mask);
      {
        Listener const listener(path, mode);
        EXPECT_EQ(modeOf(path), mode_t{S_IFSOCK} | mode) << std::oct << mask;
      }
      EXPECT_EQ(umask(before), mask);
    }
  }
}

TEST_F(ListenerTest, ASocketThatADeadAgentLeftIsReplaced) {
  foreignSocket(path);
  ASSERT_TRUE(fs::is_socket(path));
  Listener listener(path, 0666);
  Client const client(path);
  EXPECT_TRUE(listener.accept().isOpen());
}

TEST_F(ListenerTest, ARunningAgentKeepsItsSocket) {
  Listener listener(path, 0666);
  ino_t const before = inode(path);
  EXPECT_EQ(refusal(path), "control socket " + path + " is in use by another agent");
  EXPECT_EQ(inode(path), before);
  Client const client(path);
  EXPECT_TRUE(listener.accept().isOpen());
}

TEST_F(ListenerTest, ASocketThatSomebodyListensToIsLeftAloneWithoutALockToo) {
  Descriptor const foreign = foreignSocket(path);
  ASSERT_EQ(listen(foreign.fd(), 1), 0);
  ino_t const before = inode(path);
  EXPECT_EQ(refusal(path), "control socket " + path + " is in use by another agent");
  EXPECT_EQ(inode(path), before);
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
  { Listener const listener(path, 0666); }
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(refusal(path), "");
}

TEST_F(ListenerTest, AFileThatTookThePlaceIsNotRemoved) {
  {
    Listener const listener(path, 0666);
    fs::rename(path, path + ".moved");  // so that its inode is not free for the next
    foreignSocket(path);
  }
  EXPECT_TRUE(fs::is_socket(path));
}

TEST_F(ListenerTest, WithoutDescriptorsWhoeverWaitsIsTurnedAway) {
  Listener listener(path, 0666);
  Client turnedAway(path);
  Client alsoTurnedAway(path);
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  int const free = dup(listener.fd());
  close(free);
  rlimit const none{static_cast<rlim_t>(free), before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  bool const isOpen = listener.accept().isOpen();
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  EXPECT_FALSE(isOpen);
  EXPECT_TRUE(turnedAway.isEnded());
  EXPECT_TRUE(alsoTurnedAway.isEnded());
  Client taken(path);
  EXPECT_TRUE(listener.accept().isOpen());
}

}  // namespace
}  // namespace Kest::Agent
