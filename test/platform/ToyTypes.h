#pragma once

#include <cstdint>

#include "platform/mox/Entity.h"
#include "platform/mox/GenericEnum.h"
#include "platform/mox/GenericIfEntity.h"

/// Types of the smallest kind, for tests of the registry and of generic access.
namespace Toy {

/// A value: a name and a number.
struct Spot {
  Mox::String8 name;
  std::uint32_t size = 0;

  static Mox::MoxType const* _fwkType() {
    static Mox::ValueType<Spot> const type("Toy::Box::Spot");
    return &type;
  }
  friend bool operator==(Spot const&, Spot const&) = default;
};

inline Mox::String8 valueToStrep(Spot const& spot) {
  return Mox::format("%s of %u", Mox::valueToStrep(spot.name).charPtr(), spot.size);
}

inline Spot sequenceToValue(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end,
                            Spot*) {
  Spot spot;
  spot.name = Mox::sequenceToValue(it, end, &spot.name);
  Mox::needString(it, end, " of ");
  spot.size = Mox::sequenceToValue(it, end, &spot.size);
  return spot;
}

enum class Colour : std::int32_t { red, green };

Mox::MoxType const* colourType();

inline Mox::String8 valueToStrep(Colour const& colour) {
  return colour == Colour::red ? "'red'" : "'green'";
}

inline Colour sequenceToValue(Mox::String8::IteratorConst& it,
                              Mox::String8::IteratorConst const& end, Colour*) {
  return Mox::sequenceToValue(it, end, static_cast<Mox::String8*>(nullptr)) == "red"
             ? Colour::red
             : Colour::green;
}

/// An entity.
class Box : public Mox::Entity {
 public:
  using Entity::Entity;

  using Entity::changeCountInc;
  using Entity::lookupCountInc;

  Mox::MoxType const* fwkType() const override { return _fwkType(); }
  static Mox::MoxType const* _fwkType() {
    static Mox::EntityType const type("Toy::Box");
    return &type;
  }
};

/// A counted object that is no entity.
class Thing : public Mox::PtrInterface {
 public:
  class _Type : public Mox::MoxType {
   public:
    _Type() : MoxType("Toy::Thing") {}
    std::unique_ptr<Mox::GenericIf> genericIf_(Mox::PtrInterface* object,
                                               bool isConst) const override {
      return std::make_unique<Mox::GenericIfPtrInterface>(this, object, isConst);
    }
  };

  Mox::MoxType const* fwkType() const override { return _fwkType(); }
  static Mox::MoxType const* _fwkType() {
    static _Type const type;
    return &type;
  }
};

}  // namespace Toy

template <>
struct Mox::TypeOf<Toy::Colour> {
  static MoxType const* type() { return Toy::colourType(); }
};

namespace Toy {

inline Mox::MoxType const* colourType() {
  static Mox::EnumType<Colour> const type("Toy::Colour", {"red", "green"});
  return &type;
}

}  // namespace Toy
