#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "agent/control/ControlServer.h"
#include "agent/process/Console.h"
#include "agent/process/Output.h"
#include "agent/slice/SliceFile.h"
#include "driver/sim/SimDriver.h"
#include "platform/mox/Activity.h"
#include "platform/mox/RangeException.h"
#include "test/agent/support/ScratchDirectory.h"
#include "test/exhaustion/Calls.h"
#include "test/support/SocketClient.h"
#include "test/support/UnixSocket.h"
#include "text/FileError.h"

/// The agent's sockets, files and loop when the system refuses: it goes on, or says what is wrong.
namespace Kest::Agent {
namespace {

using Client = Support::SocketClient;

namespace fs = std::filesystem;
using Exhaustion::atEveryCall;
using Exhaustion::TestsOwnCalls;
using Support::contentOf;

/// The text of the exception with which the step fails; empty when it does not fail.
template <class Exception, class Step>
std::string refusalOf(Step const& step) {
  try {
    step();
    return "";
  } catch (Exception const& refused) {
    TestsOwnCalls const own;
    std::string const text = refused.what();
    EXPECT_NE(text, "");
    EXPECT_EQ(text.find("Success"), std::string::npos) << text;
    return text;
  }
}

class AgentCalls : public ScratchDirectory {
 protected:
  std::string const path = directory + "/agent.sock";
};

/// Leaves a socket as a killed agent does.
void leaveSocket(std::string const& path) {
  fs::remove(path);
  int const fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(Support::bindTo(fd, path), 0);
  close(fd);
}

TEST_F(AgentCalls, AListenerIsThereOrSaysWhyAndLeavesTheWayFree) {
  struct Scene {
    std::unique_ptr<Listener> listener;
    std::string refusal;
  };
  auto const prepare = [&] {
    leaveSocket(path);
    return Scene();
  };
  auto const act = [&](Scene& scene) {
    scene.refusal = refusalOf<ControlSocketError>(
        [&] { scene.listener = std::make_unique<Listener>(path, SocketAccess()); });
  };
  auto const judge = [&](Scene& scene, std::string const& what) {
    EXPECT_EQ(scene.refusal.empty(), static_cast<bool>(scene.listener));
    EXPECT_TRUE(scene.listener || !what.empty());
    bool const isDescriptor = what == "socket EMFILE" || what == "socket ENFILE";
    EXPECT_TRUE(!isDescriptor || scene.refusal.find("oo many open files") != std::string::npos)
        << scene.refusal;
    if (!scene.listener) act(scene);
    ASSERT_TRUE(scene.listener) << scene.refusal;
    Client const client(path);
    EXPECT_TRUE(scene.listener->accept("").isOpen());
    scene.listener = nullptr;
    EXPECT_FALSE(fs::exists(path));
  };
  atEveryCall(prepare, act, judge);
}

TEST_F(AgentCalls, AListenerThatIsRefusedLeavesNoSocketOfItsOwn) {
  auto const prepare = [&] {
    fs::remove(path);
    return 0;
  };
  atEveryCall(
      prepare,
      [&](int) {
        refusalOf<ControlSocketError>([&] { Listener const listener(path, SocketAccess()); });
      },
      [&](int, std::string const& what) {
        // The end of one that was made cannot remove it then.
        bool const mayStay = what.starts_with("lstat") || what.starts_with("unlink");
        EXPECT_TRUE(mayStay || !fs::exists(path)) << what;
      });
}

/// A listener that is out of descriptors gives its spare one up to turn clients away. If somebody
/// else gets it, it takes another one as soon as there is one.
TEST_F(AgentCalls, TheSpareDescriptorComesBack) {
  Listener listener(path, SocketAccess());
  std::size_t const before = Exhaustion::openDescriptors();
  Client const client(path);
  {
    constexpr std::size_t emfile = 1;  // of what does not pass by itself
    Exhaustion::FailingCall const failing(1, emfile, Exhaustion::Lasting::forGood);
    EXPECT_FALSE(listener.accept("").isOpen());
    EXPECT_EQ(failing.what(), "accept4 EMFILE");
  }
  EXPECT_EQ(Exhaustion::openDescriptors(), before)
      << "with the client's own, without the spare one";
  EXPECT_TRUE(listener.accept("").isOpen());
  EXPECT_EQ(Exhaustion::openDescriptors(), before + 1);
}

TEST_F(AgentCalls, ASliceFileIsReadWholeOrRefused) {
  fileIs("slice", "sliceId 'Linecard1'\n" + std::string(9000, '#') + "\nnativeVlan 'et1' 10\n");
  struct Scene {
    Slice slice;
    std::string refusal;
  };
  atEveryCall([] { return Scene(); },
              [&](Scene& scene) {
                scene.refusal = refusalOf<Text::FileError>(
                    [&] { scene.slice = readSliceFile(directory + "/slice"); });
              },
              [](Scene& scene, std::string const& what) {
                bool const passes = what.starts_with("close") || what.ends_with(" EINTR");
                bool const isRefused = !what.empty() && !passes;
                EXPECT_EQ(scene.refusal.empty(), !isRefused) << scene.refusal;
                EXPECT_EQ(static_cast<bool>(scene.slice.config), !isRefused);
                if (isRefused) return;
                EXPECT_EQ(scene.slice.config->nativeVlan("et1"), 10);
              });
}

std::string stateIn(std::string const& file) {
  return Hardware::Kest::Sim::stateText(Hardware::Kest::Sim::readState(contentOf(file), file));
}

int rename(Hardware::Kest::Sim::SimDriver& driver, char const* name) {
  return driver.deviceRename(name, Mox::Ptr<Fru::PciHam const>(new Fru::PciHam("5")));
}

/// The operations answer as usual. The file holds one of the states, whole, and after the next
/// call, even if it changes nothing, the last one. A failed write was reported once.
TEST_F(AgentCalls, AStateFileIsWrittenWholeOrLater) {
  using Hardware::Kest::Sim::SimDriver;
  std::string const file = directory + "/state";
  std::vector<std::string> states;
  SimDriver other;
  for (char const* name : {"fap0", "fap1", "fap2", "fap3"}) {
    rename(other, name);
    states.push_back(other.stateText());
  }
  struct Scene {
    std::unique_ptr<SimDriver> driver = std::make_unique<SimDriver>();
    std::string refusal;
    std::vector<int> answers;
  };
  atEveryCall(
      [&] {
        fileIs("state", states[0]);
        chmod(file.c_str(), 0640);
        testing::internal::CaptureStderr();
        return Scene();
      },
      [&](Scene& scene) {
        scene.refusal = refusalOf<Mox::RangeException>([&] { scene.driver->stateFileIs(file); });
        if (!scene.refusal.empty()) return;
        for (char const* name : {"fap1", "fap2", "fap3"}) {  // the first replaces the file
          scene.answers.push_back(rename(*scene.driver, name));
        }
      },
      [&](Scene& scene, std::string const& what) {
        std::string const report = testing::internal::GetCapturedStderr();
        if (!scene.refusal.empty()) {
          EXPECT_FALSE(what.empty());
          EXPECT_EQ(contentOf(file), states[0]);
          return;
        }
        EXPECT_EQ(scene.answers, (std::vector<int>{0, 0, 0}));
        std::string const found = stateIn(file);
        bool const isKept = found == states[3];
        EXPECT_TRUE(isKept || std::count(states.begin(), states.end(), found) == 1) << found;
        EXPECT_TRUE(isKept || !report.empty());
        std::string const end = "; trying again with every operation\n";
        EXPECT_TRUE(report.empty() ||
                    report.find(end) == report.size() - end.size() /* that is, once */)
            << report;
        rename(*scene.driver, "fap3");
        EXPECT_EQ(stateIn(file), states[3]);
        fs::perms const mode = fs::status(file).permissions();
        bool const mayBeStricter = what == "lstat ENOENT" || what.starts_with("fchown");
        EXPECT_TRUE(mode == fs::perms{0640} || (mayBeStricter && mode == fs::perms{0600}));
        EXPECT_FALSE(fs::exists(file + ".tmp") && !what.starts_with("remove"));
      });
}

TEST_F(AgentCalls, TheLoopLosesNothingAndEndsWithTheSystemsReason) {
  struct Scene {
    Scene() {
      if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) throw std::runtime_error("pipe2");
    }
    ~Scene() {
      for (int const end : ends) close(end);
    }
    std::array<int, 2> ends{};
    std::unique_ptr<ActivityLoop> loop{std::make_unique<ActivityLoop>(nullptr)};
    int signals = 0;
    int bytes = 0;
    std::string refusal;
  };
  std::set<std::string> const isFatal = {"signalfd EMFILE", "signalfd ENOMEM", "poll ENOMEM",
                                         "read EIO"};
  auto const work = [](Scene& scene) {
    scene.loop->signalIs(SIGUSR1, [&] { ++scene.signals; });
    scene.loop->fdIs(scene.ends[0], [&] {
      TestsOwnCalls const own;
      char byte = 0;
      scene.bytes += static_cast<int>(read(scene.ends[0], &byte, 1));
    });
    raise(SIGUSR1);
    scene.loop->runOnce(0);
  };
  atEveryCall([] { return std::make_unique<Scene>(); },
              [&](std::unique_ptr<Scene>& scene) {
                {
                  TestsOwnCalls const own;
                  ASSERT_EQ(write(scene->ends[1], "x", 1), 1);
                }
                scene->refusal = refusalOf<std::system_error>([&] { work(*scene); });
              },
              [&](std::unique_ptr<Scene>& scene, std::string const& what) {
                EXPECT_EQ(scene->refusal.empty(), !isFatal.contains(what)) << scene->refusal;
                bool const isTaken = !what.starts_with("signalfd");
                for (int i = 0; i < 3; ++i) scene->loop->runOnce(0);
                EXPECT_EQ(scene->signals, isTaken ? 1 : 0);
                EXPECT_EQ(scene->bytes, isTaken ? 1 : 0);
              });
}

TEST_F(AgentCalls, AConsoleGoesOnAfterALineThatCouldNotBeWritten) {
  struct Scene {
    explicit Scene(std::string const& file)
        : fd(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600)) {}
    ~Scene() { close(fd); }
    int fd;
    Output output{fd, {1000, std::chrono::milliseconds(0)}};
    std::ostream out{&output};
    Console console{out, false, false};
  };
  std::string const file = directory + "/console";
  std::set<std::string> const isLosing = {"send ECONNRESET", "send ENOBUFS", "send EPIPE",
                                          "write EIO", "write ENOSPC"};
  atEveryCall([&] { return std::make_unique<Scene>(file); },
              [](std::unique_ptr<Scene>& scene) { scene->console.line("first"); },
              [&](std::unique_ptr<Scene>& scene, std::string const& what) {
                scene->console.line("second");
                std::string const first =
                    isLosing.contains(what) ? "1 line lost: could not be written in time" : "first";
                EXPECT_EQ(contentOf(file), first + "\nsecond\n");
              });
}

/// A served agent, its loop and a client that reads and one that changes something.
class ServedScene {
 public:
  explicit ServedScene(std::string path) : path_(std::move(path)) { Mox::timeSourceIs(&time_); }
  ~ServedScene() { Mox::timeSourceIs(nullptr); }
  ServedScene(ServedScene const&) = delete;
  ServedScene& operator=(ServedScene const&) = delete;

  void serve() { server_ = std::make_unique<ControlServer>(loop_, path_, served_); }
  bool isServed() const { return server_ != nullptr; }

  void connect() {
    TestsOwnCalls const own;
    client_.emplace(path_);
    client_->send(std::string(R"({"verb":"get","path":"config/sliceId"})") + "\n" + R"({"verb":)" +
                  R"("set","path":"config/sliceId","value":"Linecard2"})" + "\n");
  }

  void rounds(int count) {
    for (int i = 0; i < count; ++i) loop_.runOnce(0);
  }

  /// The server waits so long when the system lets nobody in.
  void aSecondPasses() {
    time_.advance(1);
    Mox::activityManager()->clock()->dispatch();
  }

  /// The answer to a client when nothing goes wrong any more.
  std::string answer() {
    TestsOwnCalls const own;
    Client client(path_);
    client.send("{\"verb\":\"get\",\"path\":\"config/sliceId\"}\n");
    rounds(6);
    return client.received();
  }

  std::vector<std::string> received() {
    return client_ ? client_->lines() : std::vector<std::string>();
  }
  std::string sliceId() const { return config->sliceId().charPtr(); }

  Mox::Ptr<Config> config{new Config("config")};

 private:
  std::string path_;
  Mox::ManualTimeSource time_;
  ActivityLoop loop_{nullptr};
  Mox::Ptr<Status> status_{new Status("status")};
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaSm> sm_{
      Hardware::Kest::Slice::kestSliceDmaSmFactory(config, status_)};
  DriverLibrary driver_{"sim"};
  PciHandles handles_;
  RunningAgent served_{config,
                       status_,
                       sm_,
                       driver_,
                       handles_,
                       [] { return false; },
                       [](std::string const&, Slice, std::function<void(Applied)> const&) {}};
  std::optional<Client> client_;
  std::unique_ptr<ControlServer> server_;
};

TEST_F(AgentCalls, TheServerLivesAndAnswersWholly) {
  auto const reply = [](std::string const& rest) {
    return R"({"ok":true,"result":{"path":"config/sliceId","type":"Mox::String",)" + rest + "}}";
  };
  std::vector<std::string> const replies = {reply(R"("value":"Linecard1")"),
                                            reply(R"("changed":true,"value":"Linecard2")")};
  // After these a client has gone, or is turned away.
  std::set<std::string> const isEnding = {"accept4 EMFILE", "accept4 ENFILE",  "recv ECONNRESET",
                                          "recv ENOMEM",    "send ECONNRESET", "send ENOBUFS",
                                          "send EPIPE"};
  auto const prepare = [&] {
    auto scene = std::make_unique<ServedScene>(path);
    scene->config->sliceIdIs("Linecard1");
    scene->serve();
    return scene;
  };
  auto const act = [](std::unique_ptr<ServedScene>& scene) {
    scene->connect();
    refusalOf<std::system_error>([&] { scene->rounds(8); });
  };
  atEveryCall(prepare, act, [&](std::unique_ptr<ServedScene>& scene, std::string const& what) {
    scene->aSecondPasses();
    scene->rounds(8);  // now that all works
    std::vector<std::string> found = scene->received();
    bool const mayEnd = isEnding.contains(what);
    if (what.starts_with("accept4 E") && mayEnd && found.size() == 1) {
      EXPECT_NE(found[0].find("no file descriptors left"), std::string::npos) << found[0];
      found.clear();
    }
    ASSERT_TRUE(found.size() == 2 || (mayEnd && found.size() < 2)) << found.size();
    // A client whose user is unknown may change nothing.
    bool const isDenied = what.starts_with("getsockopt");
    if (!found.empty()) {
      EXPECT_EQ(found[0], replies[0]);
    }
    if (found.size() == 2 && isDenied) {
      EXPECT_EQ(found[1].find(R"({"ok":false,"error":{"kind":"denied")"), 0U) << found[1];
    } else if (found.size() == 2) {
      EXPECT_EQ(found[1], replies[1]);
    }
    // A change that was answered is made; one whose client has gone may be.
    bool const isChanged = scene->sliceId() == "Linecard2";
    EXPECT_TRUE(isChanged != isDenied || mayEnd);
    EXPECT_EQ(scene->config->changeCount(), isChanged ? 2U : 1U);
    EXPECT_EQ(scene->answer(), reply("\"value\":\"" + scene->sliceId() + "\"") + "\n");
  });
}

}  // namespace
}  // namespace Kest::Agent
