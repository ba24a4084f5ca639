#pragma once

#include <map>
#include <set>
#include <type_traits>
#include <utility>

#include "registry/CollectionObserver.h"

namespace Hardware::Kest::Slice {

/// Stands between an entity and one of its observers and delivers later: what changes is noted, the
/// observer's immediate handler is told that something is pending, and `deliver()` hands over what
/// has come together since. One pending key of a collection goes to the keyed handler; of two or
/// more the observer is told once, by the whole-collection handler.
///
/// Delivery goes by attribute number. What changes while it is under way waits for the next one.
/// What a handler throws is reported to the observer, as by the entity itself. The end of all other
/// references is not deferred.
///
/// Ownership. It holds the observer, which must not be registered with the entity itself, and
/// observes the entity until it goes.
template <class Entity>
class DeferredNotification : public CollectionObserver<Entity> {
 public:
  using Observer = typename Entity::NotifieeConst;

  DeferredNotification(Mox::Ptr<Entity const> const& entity, Mox::Ptr<Observer> observer)
      : CollectionObserver<Entity>(entity), observer_(std::move(observer)) {}

  bool isPending() const noexcept { return !pending_.empty(); }

  void deliver() {
    Mox::Ptr<DeferredNotification> const self(this);
    for (auto const& [attribute, keys] : std::exchange(pending_, {})) {
      try {
        Mox::ExpectationScope const scope;
        tell(attribute, keys);
      } catch (...) {
        report(attribute);
      }
    }
  }

  void onNotificationException(Mox::AttributeId attribute) override {
    observer_->onNotificationException(attribute);
  }
  void onZeroReferences() override { observer_->onZeroReferences(); }

 protected:
  using Keys = std::set<Mox::String8>;

  void changed(Mox::AttributeId collection, Mox::String8 const& key) override {
    pending_[collection].insert(key);
    visit(collection, [&](auto description) { description.tellImmediate(*observer_); });
  }

  /// Notes an attribute that is no collection; `tell` then gets no keys.
  void changed(Mox::AttributeId attribute) { pending_[attribute]; }

  virtual void tell(Mox::AttributeId collection, Keys const& keys) {
    visit(collection, [&](auto description) {
      if (keys.size() == 1) {
        description.tell(*observer_, *keys.begin());
      } else {
        description.tellWhole(*observer_);
      }
    });
  }

  Observer& observer() const { return *observer_; }

 private:
  void report(Mox::AttributeId attribute) noexcept {
    try {
      onNotificationException(attribute);
    } catch (...) {  // NOLINT(bugprone-empty-catch): nobody is left to tell
    }
  }

  /// By the types alone: a reference to the entity, taken and let go of, would tell its observers
  /// of zero references once more.
  template <class Visit>
  static void visit(Mox::AttributeId attribute, Visit visitDescription) {
    Entity::forEachCollectionType([&]<class Collection>(std::type_identity<Collection>) {
      if (Collection::attributeId == attribute) visitDescription(Collection::description());
    });
  }

  Mox::Ptr<Observer> observer_;
  std::map<Mox::AttributeId, Keys> pending_;
};

using DeferredStatusNotification = DeferredNotification<KestSliceDmaStatus>;

/// With the slice id besides the collections.
class DeferredConfigNotification final : public DeferredNotification<KestSliceDmaConfig> {
 public:
  using DeferredNotification::DeferredNotification;

  void onSliceId() override { changed(KestSliceDmaConfig::sliceIdAttributeId); }

 private:
  using DeferredNotification::changed;

  void tell(Mox::AttributeId attribute, Keys const& keys) override {
    if (attribute == KestSliceDmaConfig::sliceIdAttributeId) {
      observer().onSliceId();
    } else {
      DeferredNotification::tell(attribute, keys);
    }
  }
};

}  // namespace Hardware::Kest::Slice
