#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "agent/access/GenericJson.h"
#include "agent/slice/SliceFile.h"
#include "ctl/Verbs.h"
#include "driver/sim/StateText.h"
#include "platform/mox/GenericValue.h"
#include "registry/DeviceStateType.h"
#include "registry/RecordTypes.h"
#include "test/model/RecordNames.h"

/// What takes text from outside, for tests of what reading costs. Each ends by an exception when it
/// refuses the text.
namespace Support {

inline void readSliceStatements(std::string_view text) {
  Kest::Agent::parseSlice("test.slice", text);
}

inline void readSliceJson(std::string_view text) {
  Kest::Agent::parseSlice("test.json", text);
}

inline void readSimState(std::string_view text) {
  Hardware::Kest::Sim::readState(text, "state");
}

/// A value's text form.
template <class Value>
void readText(std::string_view text) {
  Mox::strepToValue<Value>(Mox::String8(text));
}

/// What a person types, or a client sends as JSON.
template <class Value>
void readTyped(std::string_view text) {
  Kest::Agent::fromTyped(*Mox::TypeOf<Value>::type(), text);
}

/// Shows a reply's result as each verb of the client would.
inline void showResult(Kest::Ctl::Json const& result) {
  Kest::Ctl::Options options;
  options.arguments = {"state", "fap0"};
  for (Kest::Ctl::Verb const& verb : Kest::Ctl::verbs()) {
    try {
      verb.present(result, options, true);
    } catch (Kest::Ctl::Json::exception const&) {  // NOLINT(bugprone-empty-catch): of another form
    }
  }
}

}  // namespace Support
