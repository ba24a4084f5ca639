// Lets attackers loose on an agent with a large configuration, one after the other and all at once,
// and shows what they achieve: how late the poll of the devices gets, how long root waits for an
// answer, how long the agent takes to end when it is told to, and how much memory it takes.

#include <poll.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <deque>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "test/soak/Attacker.h"
#include "test/soak/SoakedAgent.h"
#include "test/support/SocketClient.h"

namespace Kest::Soak {
namespace {

using Clock = SoakedAgent::Clock;
using Support::SocketClient;

struct AttackOptions {
  std::string agent;
  std::string preloaded;
  std::size_t ports = 50000;
  double seconds = 6;
  std::string only;
  double mostLateness = 50;     // milliseconds
  double mostWait = 100;        // milliseconds
  double mostEnding = 1000;     // milliseconds
  std::size_t mostGrowth = 32;  // MiB
};

struct Harm {
  double lateness = 0;  // milliseconds
  double wait = 0;      // milliseconds
  double ending = 0;    // milliseconds
  double growth = 0;    // MiB
};

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Writes a slice of one device that is up, with so many ports.
void writeLargeSlice(std::string const& path, std::size_t ports) {
  std::ofstream file(path);
  std::string const type = " Value('Hardware::Kest::Slice::KestSliceDmaConfig::";
  file << "pciHam '/pci/0'\ndevice" << type
       << "Device', ** {'devName': 'fap0', 'pciHam': EntityPtr('/pci/0', 'Fru::PciHam')})\n"
       << "deviceState 'fap0' 'deviceStateUp'\n";
  for (std::size_t port = 0; port < ports; ++port) {
    file << "switchPort" << type << "SwitchPort', ** {'ifName': 'et" << port
         << "', 'devName': 'fap0'})\n";
  }
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

/// Waits until the agent has applied the whole slice and is no longer busy with it.
void awaitApplied(SocketClient& root) {
  constexpr int pauseMilliseconds = 200;
  std::string const change =
      "{\"verb\":\"set\",\"path\":\"config/nativeVlan/et99999\",\"value\":10}";
  while (root.ask(change).find("\"busy\"") != std::string::npos) {
    poll(nullptr, 0, pauseMilliseconds);
  }
}

/// Asks for a value and makes a change, of which watchers are told; returns how long the first
/// answer took, in milliseconds.
double askedAsRoot(SocketClient& root, std::size_t turn) {
  auto const start = Clock::now();
  root.ask("{\"verb\":\"get\",\"path\":\"config/sliceId\"}");
  double const wait = millisecondsSince(start);
  root.ask("{\"verb\":\"set\",\"path\":\"config/nativeVlan/et99999\",\"value\":" +
           std::to_string(10 + turn % 2) + "}");
  return wait;
}

Harm harmOf(std::vector<Attacker> const& attackers, AttackOptions const& options,
            std::string const& slice) {
  SoakedAgent agent(options.agent, slice, options.preloaded);
  agent.awaitPoll(0);
  SocketClient root(agent.socketPath());
  awaitApplied(root);
  std::size_t const idle = agent.residentKilobytes(), first = agent.polls();
  std::size_t most = idle;
  Harm harm;
  constexpr uid_t firstUser = 60000;  // one for each: users share the places, and the memory
  std::deque<Attack> attacks;
  for (Attacker const& attacker : attackers) {
    auto const user = static_cast<uid_t>(firstUser + attacks.size());
    attacks.emplace_back(agent.socketPath(), attacker, user);
  }
  auto const start = Clock::now();
  for (std::size_t turn = 0; millisecondsSince(start) < options.seconds * 1000; ++turn) {
    constexpr int pauseMilliseconds = 20;
    harm.wait = std::max(harm.wait, askedAsRoot(root, turn));
    most = std::max(most, agent.residentKilobytes());
    poll(nullptr, 0, pauseMilliseconds);
  }
  for (Attack const& attack : attacks) attack.check();
  agent.awaitPoll(agent.polls());
  harm.lateness = agent.worstLateness(first).count();
  harm.growth = static_cast<double>(std::max(most, agent.residentKilobytes()) - idle) / 1024;
  auto const told = Clock::now();
  agent.end();
  harm.ending = millisecondsSince(told);
  return harm;
}

/// Prints a row; returns whether the harm is within the budgets.
bool show(char const* name, Harm const& harm, AttackOptions const& options) {
  bool const isBearable = harm.lateness <= options.mostLateness && harm.wait <= options.mostWait &&
                          harm.ending <= options.mostEnding &&
                          harm.growth <= static_cast<double>(options.mostGrowth);
  std::printf("%-26s %9.1f ms %9.1f ms %9.1f ms %9.1f MiB  %s\n", name, harm.lateness, harm.wait,
              harm.ending, harm.growth, isBearable ? "ok" : "TOO MUCH");
  std::fflush(stdout);
  return isBearable;
}

bool showHarm(char const* name, std::vector<Attacker> const& attackers,
              AttackOptions const& options, std::string const& slice) {
  try {
    return show(name, harmOf(attackers, options, slice), options);
  } catch (std::exception const& failed) {
    std::printf("%-26s %s\n", name, failed.what());
    return false;
  }
}

int run(AttackOptions const& options) {
  raiseDescriptorLimit();
  Support::TempFolder const folder;
  std::string const slice = folder.file("large.slice");
  writeLargeSlice(slice, options.ports);
  std::vector<Attacker> const all = attackers();
  bool isBearable = true;
  std::printf("%-26s %12s %12s %12s %13s\n", "attacker", "poll late by", "root waits", "ends in",
              "memory");
  for (Attacker const& attacker : all) {
    if (!options.only.empty() && options.only != attacker.name) continue;
    isBearable = showHarm(attacker.name, {attacker}, options, slice) && isBearable;
  }
  if (options.only.empty()) isBearable = showHarm("all at once", all, options, slice) && isBearable;
  return isBearable ? 0 : 1;
}

}  // namespace
}  // namespace Kest::Soak

int main(int argc, char** argv) {
  using namespace Kest::Soak;
  AttackOptions options;
  CLI::App app("Lets attackers loose on an agent.", "attack_soak");
  app.add_option("AGENT", options.agent, "The agent's program")->required();
  app.add_option("PRELOADED", options.preloaded, "A library that makes its pauses pass at once")
      ->required();
  app.add_option("--ports", options.ports, "Ports of its configuration")->capture_default_str();
  app.add_option("--seconds", options.seconds, "How long each attack lasts")->capture_default_str();
  app.add_option("--only", options.only, "One attacker, by name");
  app.add_option("--most-lateness", options.mostLateness, "How late a poll may be, ms")
      ->capture_default_str();
  app.add_option("--most-wait", options.mostWait, "How long root's get may take, ms")
      ->capture_default_str();
  app.add_option("--most-ending", options.mostEnding, "How long SIGTERM may take, ms")
      ->capture_default_str();
  app.add_option("--most-growth", options.mostGrowth, "Memory beyond the idle agent's, MiB")
      ->capture_default_str();
  CLI11_PARSE(app, argc, argv);
  return run(options);
}
