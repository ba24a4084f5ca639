#pragma once

#include <utility>

#include "model/detail/ObserverList.h"
#include "platform/mox/Entity.h"

namespace Hardware::Kest::Slice::detail {

/// An entity that tells observers of its own what changes.
class ObservedEntity : public Mox::Entity {
 public:
  /// Attribute number of the zero-references event.
  static constexpr Mox::AttributeId zeroReferencesAttributeId = 5;
  /// Number of an entity's first attribute of its own; the others follow.
  static constexpr Mox::AttributeId firstOwnAttributeId = 258;

  /// The observers registered now. An observer joins and leaves by itself.
  ObserverList& observers() const noexcept { return observers_; }

  /// Called by the framework when only observers still hold the entity.
  void zeroReferencesIs(bool zero) override {
    if (!zero) return;
    observers_.tell(zeroReferencesAttributeId,
                    [](ListedNotifiee& observer) { observer.onZeroReferences(); });
  }

 protected:
  explicit ObservedEntity(Mox::Name name) noexcept : Entity(std::move(name)) {}

 private:
  mutable ObserverList observers_;
};

/// Base of the observers of one entity type: registration with the entity's observer list.
template <class Entity>
class EntityNotifiee : public ListedNotifiee {
 public:
  /// Joins the notifier's observers at the end, or leaves them. Without a notifier only the wish is
  /// recorded; it takes effect when there is one.
  void isRegisteredNotifieeIs(bool registered) const override {
    if (this->registered_ == registered) return;
    this->registered_ = registered;
    if (entity() != nullptr && registered) entity()->observers().append(*this);
    if (entity() != nullptr && !registered) entity()->observers().remove(*this);
  }

  /// The full name of the entity that is observed; empty without one.
  Mox::String8 name() const override {
    return entity() == nullptr ? Mox::String8() : entity()->fullName();
  }

  /// Accepts any framework object; one that is no `Entity` counts as no notifier. A registered
  /// observer leaves the old notifier's observers and joins the new one's.
  void notifierIs(Mox::Ptr<Mox::PtrInterface const> const& notifier) override {
    auto const* const next = dynamic_cast<Entity const*>(notifier.ptr());
    if (next == entity()) return;
    bool const registered = this->registered_;
    EntityNotifiee::isRegisteredNotifieeIs(false);
    Mox::Entity::NotifieeConst::notifierIs(next);
    EntityNotifiee::isRegisteredNotifieeIs(registered);
  }

  ~EntityNotifiee() override { EntityNotifiee::isRegisteredNotifieeIs(false); }

  /// Looking at it never counts as an outside reference, even if only observers hold the entity.
  Mox::Ptr<Entity const> notifier() const noexcept { return this->template lentNotifier<Entity>(); }

 private:
  Entity const* entity() const noexcept { return notifier().ptr(); }
};

}  // namespace Hardware::Kest::Slice::detail
