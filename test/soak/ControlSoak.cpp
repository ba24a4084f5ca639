// Loads an agent's control socket with many clients at once and shows what that costs: whether
// every answer is right, how late the poll of the devices gets, and how much memory the agent
// takes.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "agent/wire/Protocol.h"
#include "test/soak/Load.h"
#include "test/soak/SoakedAgent.h"

namespace Kest::Soak {
namespace {

constexpr double noLimit = 1e9;

struct Options {
  std::string agent;
  std::string slice;
  std::size_t clients = 500;
  std::size_t polls = 3;
  std::size_t mostGrowth = 64;  // MiB
  double mostLateness = noLimit;
};

struct Findings {
  std::size_t answered = 0;
  std::size_t changes = 0;
  std::size_t takenFromStalled = 0;
  double seconds = 0;
  double worstLateness = 0;  // milliseconds
  std::size_t before = 0;    // resident memory in KiB: before any client came,
  std::size_t most = 0;      // at most, as seen at each poll
  std::size_t after = 0;
  int exitCode = 0;
  std::string complaints;
};

Findings soak(SoakedAgent& agent, Options const& options) {
  agent.awaitPoll(0);
  Findings found;
  found.before = found.most = agent.residentKilobytes();
  Load load(agent.socketPath(), options.clients);
  std::size_t const first = agent.polls();
  auto const begin = SoakedAgent::Clock::now();
  load.start();
  for (std::size_t seen = first; seen < first + options.polls;) {
    load.turn();
    std::size_t const now = agent.polls();
    if (now != seen) found.most = std::max(found.most, agent.residentKilobytes());
    seen = now;
  }
  load.finish();
  found.seconds = std::chrono::duration<double>(SoakedAgent::Clock::now() - begin).count();
  found.after = agent.residentKilobytes();
  found.most = std::max(found.most, found.after);
  found.answered = load.answered();
  found.changes = load.changes();
  found.takenFromStalled = load.takenFromStalled();
  found.worstLateness = agent.worstLateness(first).count();
  found.exitCode = agent.end();
  found.complaints = agent.complaints();
  return found;
}

Findings soakOne(Options const& options) {
  SoakedAgent agent(options.agent, options.slice);
  try {
    return soak(agent, options);
  } catch (std::exception const& failed) {
    throw std::runtime_error(failed.what() + ("\n" + agent.complaints()));
  }
}

void show(Options const& options, Findings const& found) {
  constexpr double kilo = 1024;
  std::printf("%8s %8s %10s %10s %8s %12s %28s\n", "clients", "polls", "answers", "answers/s",
              "changes", "poll late by", "agent's memory, before/most/after");
  std::printf("%8zu %8zu %10zu %10.0f %8zu %9.1f ms %9.1f /%7.1f /%7.1f MiB\n", options.clients,
              options.polls, found.answered, static_cast<double>(found.answered) / found.seconds,
              found.changes, found.worstLateness, static_cast<double>(found.before) / kilo,
              static_cast<double>(found.most) / kilo, static_cast<double>(found.after) / kilo);
}

/// The findings that exceed their limits, a line each.
std::vector<std::string> judge(Options const& options, Findings const& found) {
  std::vector<std::string> wrong;
  if (found.worstLateness > options.mostLateness) {
    wrong.push_back("the poll was late by more than " + std::to_string(options.mostLateness) +
                    " ms");
  }
  if (found.most > found.before + options.mostGrowth * 1024) {
    wrong.push_back("the agent grew by more than " + std::to_string(options.mostGrowth) + " MiB");
  }
  if (found.takenFromStalled > mostTakenFromStalled) {
    wrong.push_back("the agent took " + std::to_string(found.takenFromStalled) +
                    " bytes of requests from a client that does not read the replies");
  }
  if (found.exitCode != 0)
    wrong.push_back("the agent ended with " + std::to_string(found.exitCode));
  if (!found.complaints.empty()) wrong.push_back("the agent complained: " + found.complaints);
  return wrong;
}

int run(Options const& options) {
  Findings const found = soakOne(options);
  show(options, found);
  std::vector<std::string> const wrong = judge(options, found);
  for (std::string const& what : wrong) std::fprintf(stderr, "control_soak: %s\n", what.c_str());
  return wrong.empty() ? 0 : 1;
}

}  // namespace
}  // namespace Kest::Soak

int main(int argc, char** argv) {
  using namespace Kest::Soak;
  Options options;
  CLI::App app("Loads an agent's control socket.", "control_soak");
  app.add_option("AGENT", options.agent, "The agent's program")->required();
  app.add_option("SLICEFILE", options.slice, "What it is to apply")->required();
  app.add_option("--clients", options.clients, "Clients at once, of all kinds")
      ->check(CLI::Range(std::size_t{4}, Kest::Wire::mostConnections))
      ->capture_default_str();
  app.add_option("--polls", options.polls, "Polls of the devices to see, two seconds apart")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  app.add_option("--most-growth", options.mostGrowth, "Memory that the agent may take for it, MiB")
      ->capture_default_str();
  app.add_option("--most-lateness", options.mostLateness,
                 "How late a poll may be, in milliseconds");
  CLI11_PARSE(app, argc, argv);
  try {
    raiseDescriptorLimit();
    return run(options);
  } catch (std::exception const& failed) {
    std::fprintf(stderr, "control_soak: %s\n", failed.what());
    return 1;
  }
}
