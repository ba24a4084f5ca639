#include "agent/show/StatusWatcher.h"

#include <type_traits>
#include <utility>

#include "agent/access/ValueText.h"

namespace Kest::Agent {

namespace {

template <class Value>
std::string statusText(Value const& value) {
  if constexpr (std::is_same_v<Value, Status::SwitchPort>) {
    return value.created() ? "created" : "not created";
  } else if constexpr (std::is_same_v<Value, Status::Device>) {
    return value.registered() ? "registered" : "refused by the driver";
  } else {
    return valueText(value);
  }
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
