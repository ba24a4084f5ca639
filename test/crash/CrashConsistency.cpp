// Kills the agent at every moment of its driver calls, restarts it with the driver's state kept,
// and requires what an undisturbed run leaves and shows. After a quarter of the kills the
// restarted agent is killed too, at a moment drawn by lot.

#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "test/crash/AgentRun.h"
#include "test/support/Files.h"

namespace Kest::Crash {
namespace {

constexpr unsigned seed = 20;

struct Sums {
  std::size_t runs = 0;
  std::size_t kills = 0;
  std::size_t secondKills = 0;
  std::size_t differences = 0;
};

/// The driver's state as a killed process leaves it.
struct Remains {
  explicit Remains(AgentRuns const& runs)
      : state(content(runs.stateFile())), unfinished(content(runs.unfinishedStateFile())) {}

  void restore(AgentRuns const& runs) const {
    contentIs(runs.stateFile(), state);
    contentIs(runs.unfinishedStateFile(), unfinished);
  }

  std::optional<std::string> state;
  std::optional<std::string> unfinished;
};

/// All kills of one slice file.
class Crashes {
 public:
  Crashes(AgentRuns const& runs, std::string name, Sums& sums)
      : runs_(runs), name_(std::move(name)), sums_(sums), undisturbed_(run(0)) {
    if (undisturbed_.exitCode != 0 || !undisturbed_.state) {
      throw std::runtime_error("the agent does not bring " + name_ + " up:\n" +
                               undisturbed_.output + undisturbed_.errors);
    }
  }

  void killEverywhere() {
    expectUndisturbed(run(0), "restarted without a kill");
    while (killOnce(static_cast<unsigned>(remains_.size()) + 1)) {
    }
    for (std::size_t i = 0; i < remains_.size(); i += 4) killAgain(i + 1);
  }

 private:
  Outcome run(unsigned killAt) {
    ++sums_.runs;
    return runs_.run(killAt);
  }

  /// Returns false when the run has ended before that moment.
  bool killOnce(unsigned at) {
    contentIs(runs_.stateFile(), std::nullopt);
    Outcome const killed = run(at);
    std::string const where = "killed at moment " + std::to_string(at);
    if (killed.exitCode != -SIGKILL) {
      expectUndisturbed(killed, "not " + where);
      return false;
    }
    ++sums_.kills;
    expectKept(where);
    remains_.emplace_back(runs_);
    expectUndisturbed(run(0), where);
    return true;
  }

  /// A restart makes as many driver calls as a first run but writes less, so it may end before the
  /// moment that is drawn.
  void killAgain(std::size_t first) {
    remains_[first - 1].restore(runs_);
    auto const second = static_cast<unsigned>(1 + random_() % remains_.size());
    std::string const where =
        "killed at moments " + std::to_string(first) + " and then " + std::to_string(second);
    Outcome const killed = run(second);
    if (killed.exitCode != -SIGKILL) return expectUndisturbed(killed, "not " + where);
    ++sums_.secondKills;
    expectKept(where);
    expectUndisturbed(run(0), where);
  }

  /// Between two calls the state file holds what the driver knows.
  void expectKept(std::string const& where) {
    std::optional<std::string> const known = content(runs_.driverState());
    if (!known) return;
    if (nothing_.empty()) nothing_ = *known;  // before the first call
    expectEqual("state file", stateIn(runs_.stateFile()).value_or(nothing_), *known, where);
  }

  void expectUndisturbed(Outcome const& found, std::string const& where) {
    expectEqual("exit code", std::to_string(found.exitCode), std::to_string(undisturbed_.exitCode),
                where);
    expectEqual("output", found.output, undisturbed_.output, where);
    expectEqual("errors", found.errors, undisturbed_.errors, where);
    expectEqual("state file", found.state.value_or("none"), *undisturbed_.state, where);
    bool const isLeft = std::filesystem::exists(runs_.unfinishedStateFile());
    expectEqual("unfinished file", isLeft ? "there" : "gone", "gone", where);
  }

  void expectEqual(char const* what, std::string const& found, std::string const& expected,
                   std::string const& where) {
    if (found == expected) return;
    ++sums_.differences;
    std::fprintf(stderr, "%s, %s: %s: expected\n%s\nfound\n%s\n", name_.c_str(), where.c_str(),
                 what, expected.c_str(), found.c_str());
  }

  AgentRuns const& runs_;
  std::string name_;
  Sums& sums_;
  Outcome undisturbed_;
  std::string nothing_;           ///< the state of a slice that has not been touched
  std::vector<Remains> remains_;  ///< of the kills at moments 1, 2, ...
  std::mt19937 random_{seed};
};

int run(int argc, char** argv) {
  constexpr int firstSlice = 3;
  if (argc <= firstSlice) {
    std::fprintf(stderr, "usage: crash_consistency AGENT HOOKS SLICEFILE...\n");
    return 2;
  }
  Sums sums;
  for (int i = firstSlice; i < argc; ++i) {
    Support::TempFolder const directory;
    // The agent runs in that directory.
    auto const absolute = [&](int argument) { return std::filesystem::absolute(argv[argument]); };
    AgentRuns const runs(absolute(1), absolute(2), absolute(i), directory.path());
    Crashes(runs, argv[i], sums).killEverywhere();
  }
  std::printf("crash consistency: runs %zu, kills %zu, second kills %zu, differences %zu\n",
              sums.runs, sums.kills, sums.secondKills, sums.differences);
  return sums.differences == 0 ? 0 : 1;
}

}  // namespace
}  // namespace Kest::Crash

int main(int argc, char** argv) {
  try {
    return Kest::Crash::run(argc, argv);
  } catch (std::exception const& failed) {
    std::fprintf(stderr, "crash_consistency: %s\n", failed.what());
    return 1;
  }
}
