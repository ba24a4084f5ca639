#pragma once

#include <functional>
#include <string>
#include <utility>

#include "agent/access/GenericJson.h"
#include "agent/access/JsonText.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "registry/CollectionObserver.h"
#include "registry/RecordTypes.h"

namespace Kest::Agent {

/// Tells every change of an entity as an event of the control protocol, with the new value. Makes
/// nothing of it unless the event is wanted. Held through `Mox::Ptr`; `notifierIs(nullptr)` ends
/// it.
template <class Entity>
class ChangeFeed : public Hardware::Kest::Slice::CollectionObserver<Entity> {
 public:
  using Wanted = std::function<bool()>;
  /// @param event as JSON text
  using Told = std::function<void(std::string event)>;

  /// @param root what paths to the entity begin with
  ChangeFeed(Mox::Ptr<Entity const> const& entity, std::string root, Wanted wanted, Told told)
      : Hardware::Kest::Slice::CollectionObserver<Entity>(entity),
        root_(std::move(root)),
        wanted_(std::move(wanted)),
        told_(std::move(told)) {}

 protected:
  void changed(Mox::AttributeId id, Mox::String8 const& key) override {
    if (!isWanted()) return;
    this->notifier()->forEachCollection([&](auto const& collection) {
      using Value = typename std::remove_cvref_t<decltype(collection)>::Value;
      if (collection.attributeId != id) return;
      auto const entry = collection.iteratorConst(key);
      tell<Value>(std::string(collection.name) + "/" + std::string(key.view()),
                  entry ? &entry.value() : nullptr);
    });
  }

  bool isWanted() const { return wanted_(); }

  /// @param value null when it is gone
  template <class Value>
  void tell(std::string const& name, Value const* value) const {
    std::string event = R"({"event":"change","path":)";
    appendJsonString(event, root_ + "/" + name);
    event += R"(,"type":)";
    appendJsonString(event, Mox::TypeOf<Value>::type()->fullName().view());
    event += R"(,"value":)";
    if (value == nullptr) {
      event += "null";
    } else {
      appendJson(event, *Mox::genericOf(*value));
    }
    told_(std::move(event += '}'));
  }

 private:
  std::string root_;
  Wanted wanted_;
  Told told_;
};

using StatusFeed = ChangeFeed<Hardware::Kest::Slice::KestSliceDmaStatus>;

/// Tells changes of the slice id too.
class ConfigFeed final : public ChangeFeed<Hardware::Kest::Slice::KestSliceDmaConfig> {
 public:
  using ChangeFeed::ChangeFeed;

  void onSliceId() override {
    if (!isWanted()) return;
    tell(Hardware::Kest::Slice::KestSliceDmaConfig::sliceIdName, &notifier()->sliceId());
  }
};

}  // namespace Kest::Agent
