#pragma once

#include "model/detail/ObserverList.h"

namespace Hardware::Kest::Slice::detail {

/// Base of the observers of one entity type: registration with the entity's observer list.
///
/// `Entity` has an `observers()` list.
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
    auto const next = Mox::ptrCast<Entity const>(notifier);
    if (next.ptr() == entity()) return;
    bool const registered = this->registered_;
    EntityNotifiee::isRegisteredNotifieeIs(false);
    Mox::Entity::NotifieeConst::notifierIs(next);
    EntityNotifiee::isRegisteredNotifieeIs(registered);
  }

  ~EntityNotifiee() override { EntityNotifiee::isRegisteredNotifieeIs(false); }

  /// To look at it tells nobody, even if only observers hold it.
  Mox::Ptr<Entity const> notifier() const noexcept { return this->template lentNotifier<Entity>(); }

 private:
  Entity const* entity() const noexcept { return static_cast<Entity const*>(rawNotifier()); }
};

}  // namespace Hardware::Kest::Slice::detail
