#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <new>

#include "agent/slice/SliceFile.h"
#include "agent/slice/SliceWriter.h"
#include "platform/mox/Dir.h"
#include "test/exhaustion/Content.h"
#include "test/exhaustion/EveryAllocation.h"
#include "text/FileError.h"

/// Slice files that are read and written without memory.
namespace Kest::Agent {
namespace {

using Exhaustion::atEveryAllocation;
using Exhaustion::End;

constexpr char const* statements = R"(# one of everything
pciHam '/pci/bus 5/0000:05:00.0'
sliceId 'Linecard1, with a name that takes memory'
device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', 'pciHam': EntityPtr('/pci/bus 5/0000:05:00.0', 'Fru::PciHam'), 'fapType': 'fapTypeArad', 'numFaps': 1})
deviceState 'fap0' 'deviceStateUp'
switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': 'et1', 'destId': 1, 'devName': 'fap0', 'ctrl': True, 'macAddr': '00:1c:73:00:00:01'})
nativeVlan 'et1' 10
switchportMode 'et1' 'switchportModeAccess'
)";

struct Scene {
  Slice slice;
  std::string refusal;
};

/// Whether a file that is not read whole has left something in the entity tree.
bool isTreeClean() {
  return !Mox::entityAt("/pci");
}

void parse(Scene& scene, char const* name, std::string const& text) {
  try {
    Slice slice = parseSlice(name, text);
    slice.handles.enterTree();
    scene.slice = std::move(slice);
  } catch (Text::FileError const& refused) {
    Exhaustion::Pause const pause;
    scene.refusal = refused.what();
  }
}

void expectWholeOrNothing(Scene const& scene, std::string const& whole, bool isDone) {
  EXPECT_EQ(static_cast<bool>(scene.slice.config), isDone);
  EXPECT_EQ(isTreeClean(), !isDone);
  if (isDone) {
    EXPECT_EQ(contentOf(*scene.slice.config), whole);
  }
}

std::string contentOfFile(char const* name, std::string const& text) {
  Slice slice = parseSlice(name, text);
  slice.handles.enterTree();
  return contentOf(*slice.config);
}

TEST(SliceExhaustion, StatementsAreReadWhollyOrLeaveNothing) {
  std::string const whole = contentOfFile("slice", statements);
  atEveryAllocation([] { return Scene(); }, [](Scene& scene) { parse(scene, "slice", statements); },
                    [&](Scene& scene, End end) {
                      EXPECT_EQ(scene.refusal, "");
                      expectWholeOrNothing(scene, whole, end == End::done);
                    });
}

TEST(SliceExhaustion, ARefusalIsToldWholeOrNotAtAll) {
  std::string const text = std::string(statements) + "nativeVlan 'et1' 11\n";
  Scene undisturbed;
  parse(undisturbed, "slice", text);
  ASSERT_NE(undisturbed.refusal, "");
  atEveryAllocation([] { return Scene(); }, [&](Scene& scene) { parse(scene, "slice", text); },
                    [&](Scene& scene, End end) {
                      EXPECT_EQ(scene.refusal, end == End::done ? undisturbed.refusal : "");
                      EXPECT_TRUE(isTreeClean());
                    });
}

TEST(SliceExhaustion, StatementsAreWrittenWhollyOrNotAtAll) {
  Slice slice = parseSlice("slice", statements);
  slice.handles.enterTree();
  std::string const whole = sliceText(*slice.config, slice.handles.paths());
  atEveryAllocation(
      [] { return std::string(); },
      [&](std::string& text) { text = sliceText(*slice.config, slice.handles.paths()); },
      [&](std::string const& text, End end) { EXPECT_EQ(text, end == End::done ? whole : ""); });
}

/// How far a process has come, as another one sees it.
struct Progress {
  std::size_t at;     // the allocation that is failing
  std::size_t clean;  // failures that left nothing behind
};

constexpr int through = 0;
constexpr int ended = 1;  // by std::terminate
constexpr int wrong = 2;

/// With memory short at the allocation `at`: false when `act` gets through.
template <class Act>
bool failsCleanly(std::size_t at, Exhaustion::Lasting lasting, Act const& act) {
  Exhaustion::Shortage const shortage(at, lasting);
  try {
    bool const isWhole = act();
    if (!isWhole || shortage.hasCome()) _exit(wrong);
    return false;
  } catch (std::bad_alloc const&) {
    Exhaustion::Pause const pause;
    if (!isTreeClean()) _exit(wrong);
    return true;
  } catch (...) {
    _exit(wrong);
  }
}

/// In a process of its own: lets `act` fail at one allocation after the other, `step` apart.
template <class Act>
int exitCodeOf(Progress& progress, std::size_t step, Exhaustion::Lasting lasting, Act const& act) {
  pid_t const pid = fork();
  if (pid == 0) {
    std::set_terminate([] { _exit(ended); });
    while (failsCleanly(progress.at, lasting, act)) {
      progress.at += step;
      ++progress.clean;
    }
    _exit(through);
  }
  int status = 0;
  bool const hasEnded = pid > 0 && waitpid(pid, &status, 0) == pid && WIFEXITED(status);
  return hasEnded ? WEXITSTATUS(status) : wrong;
}

/// The JSON library takes memory to let go of an object, and where there is none then the process
/// ends at once. Whatever else happens leaves nothing half done.
template <class Act>
void endsOrLeavesNothing(std::size_t step, Exhaustion::Lasting lasting, Act const& act) {
  void* const shared =
      mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  Progress& progress = *new (shared) Progress{1, 0};
  int code = ended;
  for (; code == ended; progress.at += step) code = exitCodeOf(progress, step, lasting, act);
  EXPECT_EQ(code, through) << "at allocation " << progress.at - step;
  EXPECT_GT(progress.clean, 1U);
  munmap(shared, sizeof(Progress));
}

TEST(SliceExhaustion, JsonIsReadWhollyOrLeavesNothing) {
  std::string const whole = contentOfFile("slice", statements);
  std::string const json = [] {
    Slice slice = parseSlice("slice", statements);
    slice.handles.enterTree();
    return sliceJson(*slice.config, slice.handles.paths());
  }();
  auto const read = [&] { return contentOfFile("slice.json", json) == whole; };
  endsOrLeavesNothing(1, Exhaustion::Lasting::once, read);
  endsOrLeavesNothing(16, Exhaustion::Lasting::forGood, read);  // nearly every one ends a process
}

}  // namespace
}  // namespace Kest::Agent
