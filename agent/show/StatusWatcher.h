#pragma once

#include <functional>
#include <string>

#include "agent/access/Entities.h"
#include "registry/CollectionObserver.h"

namespace Kest::Agent {

/// Observes a status and tells each change as a line for people, as in "switchPort et3/1: created".
/// Held through `Mox::Ptr`; `notifierIs(nullptr)` ends it.
class StatusWatcher : public Hardware::Kest::Slice::CollectionObserver<Status> {
 public:
  using Told = std::function<void(std::string const& line)>;

  StatusWatcher(Mox::Ptr<Status const> const& status, Told told);

 protected:
  void changed(Mox::AttributeId id, Mox::String8 const& key) override;

 private:
  Told told_;
};

}  // namespace Kest::Agent
