#pragma once

#include <string>

#include "ctl/Json.h"
#include "ctl/Options.h"

/// Results of the verbs, for people.
namespace Kest::Ctl {

/// How a verb's result is shown.
struct Shown {
  std::string text;
  bool isGood = true;  // otherwise the exit code is that of a failure
};

Shown presentTypes(Json const& result, Options const& options, bool colour);
Shown presentType(Json const& result, Options const& options, bool colour);
Shown presentValue(Json const& result, Options const& options, bool colour);
Shown presentSet(Json const& result, Options const& options, bool colour);
Shown presentRemoved(Json const& result, Options const& options, bool colour);
Shown presentNotified(Json const& result, Options const& options, bool colour);
Shown presentCalled(Json const& result, Options const& options, bool colour);
Shown presentDifferences(Json const& result, Options const& options, bool colour);
Shown presentSlice(Json const& result, Options const& options, bool colour);
Shown presentApplied(Json const& result, Options const& options, bool colour);
Shown presentSteps(Json const& result, Options const& options, bool colour);
Shown presentContent(Json const& result, Options const& options, bool colour);
Shown presentNothing(Json const& result, Options const& options, bool colour);
Shown presentSetting(Json const& result, Options const& options, bool colour);
Shown presentDriver(Json const& result, Options const& options, bool colour);
Shown presentMode(Json const& result, Options const& options, bool colour);

/// One event of `watch`, as a line.
std::string eventLine(Json const& event);

}  // namespace Kest::Ctl
