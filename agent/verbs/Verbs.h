#pragma once

#include <span>

#include "agent/verbs/Answer.h"
#include "agent/verbs/Request.h"
#include "agent/verbs/RunningAgent.h"

namespace Kest::Agent {

/// The verbs of the control protocol (`doc/control-protocol.md`), except `watch`, which concerns
/// the connection.
class Verbs {
 public:
  explicit Verbs(RunningAgent const& agent) : agent_(agent) {}

  /// Carries out a request, which is a JSON object.
  /// @param mayChange whether the client may change anything
  /// @param later takes a result that comes later
  /// @throw std::exception what the request is refused with
  Answer carryOut(Json const& json, bool mayChange, Later later);

 private:
  struct Verb;
  static std::span<Verb const> all();

  Answer types(Request const& request);
  Answer describe(Request const& request);
  Answer complete(Request const& request);
  Answer get(Request const& request);
  Answer set(Request const& request);
  Answer del(Request const& request);
  Answer notify(Request const& request);
  Answer call(Request const& request);
  Answer mode(Request const& request);
  Answer verify(Request const& request);
  Answer show(Request const& request);
  Answer apply(Request const& request);
  Answer diff(Request const& request);
  Answer dump(Request const& request);
  Answer trace(Request const& request);
  Answer driver(Request const& request);

  void checkIdle() const;

  RunningAgent const& agent_;
};

}  // namespace Kest::Agent
