#pragma once

#include <string>
#include <vector>

#include "test/agent/support/ServedAgent.h"

namespace Kest::Agent {

/// A request, and what it is refused with: "kind: message [suggestion]".
struct Refusal {
  std::string request;
  std::string expected;
};

/// Requests that are refused, and change nothing.
class RefusedRequests : public ServedAgent {
 protected:
  void expectRefused(std::vector<Refusal> const& all) {
    std::string const before = everything();
    for (auto const& [request, expected] : all) EXPECT_EQ(ask(request), expected) << request;
    EXPECT_EQ(everything(), before);
  }

  /// Configuration, status, state machine and driver, as far as a request can change them.
  std::string everything() {
    return unasked() + std::to_string(Hardware::Kest::Sim::simDriver().log().total());
  }

  /// Everything but how often the driver was asked: `verify` and `show` ask it for states.
  std::string unasked() {
    std::string all = std::to_string(config->changeCount()) + " " +
                      std::to_string(status->changeCount()) + ask(R"({"verb":"dump"})");
    for (char const* collection :
         {"switchPort", "nativeVlan", "switchportMode", "device", "deviceState"}) {
      all += ask(std::string(R"({"verb":"get","path":"status/)") + collection + R"("})");
    }
    for (char const* attribute : {"config", "stateTimer", "mode"}) {
      all += ask(std::string(R"({"verb":"get","path":"sm/)") + attribute + R"("})");
    }
    all += sm->hasNotificationActive() ? "" : "inactive";
    all += ask(R"({"verb":"trace"})");
    Hardware::Kest::Sim::SimDriver const& sim = Hardware::Kest::Sim::simDriver();
    return all + sim.stateText() + sim.faultsText();
  }
};

}  // namespace Kest::Agent
