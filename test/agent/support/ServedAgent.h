#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "agent/control/Refusal.h"
#include "agent/control/RequestText.h"
#include "agent/show/StatusReport.h"
#include "agent/slice/Comparison.h"
#include "agent/verbs/Verbs.h"
#include "driver/sim/SimDriver.h"
#include "test/agent/support/SliceTexts.h"
#include "test/support/VirtualTime.h"

namespace Kest::Agent {

/// What an agent serves, without its loop: a slice is applied at once. One device and two ports of
/// a slice named 'Linecard1' are up.
class ServedAgent : public testing::Test {
 protected:
  static constexpr char const* slice =
      "pciHam '/pci/0000:05:00.0'\n"
      "sliceId 'Linecard1'\n"
      "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {'devName': 'fap0', "
      "'pciHam': EntityPtr('/pci/0000:05:00.0', 'Fru::PciHam'), 'fapType': 'fapTypeArad'})\n"
      "deviceState 'fap0' 'deviceStateUp'\n"
      "nativeVlan 'et3/1' 10\n"
      "switchportMode 'et3/1' 'switchportModeTrunk'\n"
      "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': "
      "'et3/1', 'destId': 1, 'devName': 'fap0', 'macAddr': '00:1c:73:00:00:01'})\n"
      "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {'ifName': "
      "'et3/2', 'destId': 2, 'devName': 'fap0', 'macAddr': '00:1c:73:00:00:02'})\n";

  ServedAgent() {
    Hardware::Kest::Sim::simDriver().reset();
    apply("first.slice", parseSlice("first.slice", slice));
  }

  Applied apply(std::string const& /*file*/, Slice wanted) {
    Changes const changes = changesBetween(*config, *wanted.config);
    wanted.handles.enterTree();
    wanted.handles.succeed(handles);
    handles = std::move(wanted.handles);
    for (Change const& change : changes.steps) change.apply(*config);
    return {changes.steps.size(), changes.unchanged, notUp(*config, *status)};
  }

  /// The reply to a request, as the client gets it, but for `ok`.
  /// @param following bytes that come after the request
  std::string ask(std::string const& request, bool mayChange = true,
                  std::string_view following = {}) {
    std::string reply;
    try {
      auto const later = [&](Json const& result) { reply = textOf(result); };
      std::string const now =
          whole(verbs.carryOut(readRequest(request), mayChange, later), following);
      if (!now.empty()) reply = now;
    } catch (std::exception const&) {
      ControlError const refused = currentRefusal();
      std::string text = std::string(Wire::name(refused.kind())) + ": " + refused.what();
      return refused.suggestion().empty() ? text : text + " [" + refused.suggestion() + "]";
    }
    return reply;
  }

  static std::string textOf(Json const& result) {
    return result.dump(-1, ' ', false, Json::error_handler_t::replace);
  }

  /// The text of an answer, to its end; empty when it comes later.
  static std::string whole(Answer answer, std::string_view following) {
    if (auto const* const upload = std::get_if<std::unique_ptr<Upload>>(&answer)) {
      (*upload)->take(following);
      return whole((*upload)->end(), {});
    }
    if (auto const* const result = std::get_if<Json>(&answer)) return textOf(*result);
    if (auto const* const result = std::get_if<ResultText>(&answer)) return result->json;
    std::string text;
    if (auto const* const result = std::get_if<std::unique_ptr<LongResult>>(&answer)) {
      while ((*result)->goOn(text) == LongResult::Progress::more) {
      }
    }
    return text;
  }

  Support::Journal journal;
  Support::VirtualTime time{journal};
  DriverLibrary driver{"sim"};
  Mox::Ptr<Config> config{new Config("config")};
  Mox::Ptr<Status> status{new Status("status")};
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaSm> sm{
      Hardware::Kest::Slice::kestSliceDmaSmFactory(config, status)};
  PciHandles handles;
  bool applying = false;
  RunningAgent served{
      config,
      status,
      sm,
      driver,
      handles,
      [this] { return applying; },
      [this](std::string const& file, Slice wanted, std::function<void(Applied)> done) {
        done(apply(file, std::move(wanted)));
      }};
  Verbs verbs{served};
};

}  // namespace Kest::Agent
