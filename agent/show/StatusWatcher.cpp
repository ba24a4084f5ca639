#include "agent/show/StatusWatcher.h"

#include <utility>

#include "agent/access/Text.h"

namespace Kest::Agent {

namespace {

std::string statusText(Status::SwitchPort const& port) {
  return port.created() ? "created" : "not created";
}
std::string statusText(Status::Device const& device) {
  return device.registered() ? "registered" : "refused by the driver";
}

}  // namespace

StatusWatcher::StatusWatcher(Mox::Ptr<Status const> const& status, Told told)
    : CollectionObserver(status), told_(std::move(told)) {}

void StatusWatcher::changed(Mox::AttributeId id, Mox::String8 const& key) {
  notifier()->forEachCollection([&](auto const& collection) {
    if (collection.attributeId != id) return;
    auto const entry = collection.iteratorConst(key);
    std::string const now = entry ? statusText(entry.value()) : "removed";
    told_(std::string(collection.name) + " " + nameText(key) + ": " + now);
  });
}

}  // namespace Kest::Agent
