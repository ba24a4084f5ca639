#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "agent/access/GenericJson.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "registry/CollectionObserver.h"
#include "registry/RecordTypes.h"

namespace Kest::Agent {

/// Tells every change of an entity as an event of the control protocol, with the new value. Held
/// through `Mox::Ptr`; `notifierIs(nullptr)` ends it.
template <class Entity>
class ChangeFeed : public Hardware::Kest::Slice::CollectionObserver<Entity> {
 public:
  using Told = std::function<void(Json event)>;

  /// @param root what paths to the entity begin with
  ChangeFeed(Mox::Ptr<Entity const> const& entity, std::string root, Told told)
      : Hardware::Kest::Slice::CollectionObserver<Entity>(entity),
        root_(std::move(root)),
        told_(std::move(told)) {}

 protected:
  void changed(Mox::AttributeId id, Mox::String8 const& key) override {
    this->notifier()->forEachCollection([&](auto const& collection) {
      using Value = typename std::remove_cvref_t<decltype(collection)>::Value;
      if (collection.attributeId != id) return;
      auto const entry = collection.iteratorConst(key);
      tell<Value>(std::string(collection.name) + "/" + std::string(key.view()),
                  entry ? &entry.value() : nullptr);
    });
  }

  /// @param value null when it is gone
  template <class Value>
  void tell(std::string const& name, Value const* value) const {
    told_({{"event", "change"},
           {"path", root_ + "/" + name},
           {"type", std::string(Mox::TypeOf<Value>::type()->fullName().view())},
           {"value", value == nullptr ? Json(nullptr) : toJson(*Mox::genericOf(*value))}});
  }

 private:
  std::string root_;
  Told told_;
};

using StatusFeed = ChangeFeed<Hardware::Kest::Slice::KestSliceDmaStatus>;

/// Tells changes of the slice id too.
class ConfigFeed final : public ChangeFeed<Hardware::Kest::Slice::KestSliceDmaConfig> {
 public:
  using ChangeFeed::ChangeFeed;

  void onSliceId() override {
    tell(Hardware::Kest::Slice::KestSliceDmaConfig::sliceIdName, &notifier()->sliceId());
  }
};

}  // namespace Kest::Agent
