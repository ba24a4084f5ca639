#pragma once

#include <span>

#include "agent/access/GenericJson.h"
#include "agent/verbs/Answer.h"
#include "agent/verbs/Request.h"
#include "agent/verbs/Served.h"

namespace Kest::Agent {

/// The verbs of the control protocol (`doc/control-protocol.md`), but for `watch`, which is about a
/// connection.
class Verbs {
 public:
  explicit Verbs(Served const& served) : served_(served) {}

  /// Carries a request, an object, out.
  /// @param mayChange whether the client may change anything
  /// @param later for a result that comes later
  /// @throw ControlError what the request is refused with
  Answer carryOut(Json const& json, bool mayChange, Later later);

 private:
  struct Verb;
  static std::span<Verb const> all();

  Json types(Request const& request);
  Json describe(Request const& request);
  Answer complete(Request const& request);
  Answer get(Request const& request);
  Json set(Request const& request);
  Json del(Request const& request);
  Json notify(Request const& request);
  Json call(Request const& request);
  Json mode(Request const& request);
  Answer verify(Request const& request);
  Answer show(Request const& request);
  Answer apply(Request const& request, Later later);
  Answer diff(Request const& request);
  Answer dump(Request const& request);
  Json trace(Request const& request);
  Answer driver(Request const& request);

  void checkIdle() const;

  Served const& served_;
};

}  // namespace Kest::Agent
