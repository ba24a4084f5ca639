#include <memory>

#include "platform/bridging/SwitchportMode.h"
#include "platform/detail/EntityAttributes.h"
#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/Activity.h"
#include "platform/mox/Dir.h"
#include "platform/mox/GenericEnum.h"
#include "platform/mox/IntrospectionReactor.h"
#include "platform/pelk/EthAddr.h"

/// The platform's own types, registered when it is loaded.
namespace Mox {

MoxType const* TypeOf<bool>::type() {
  static ValueType<bool> const type("bool");
  return &type;
}

MoxType const* TypeOf<std::uint16_t>::type() {
  static ValueType<std::uint16_t> const type("U16");
  return &type;
}

MoxType const* TypeOf<std::uint32_t>::type() {
  static ValueType<std::uint32_t> const type("U32");
  return &type;
}

MoxType const* TypeOf<unsigned long long>::type() {
  static ValueType<unsigned long long> const type("U64");
  return &type;
}

MoxType const* TypeOf<double>::type() {
  static ValueType<double> const type("double");
  return &type;
}

MoxType const* TypeOf<String8>::type() {
  static ValueType<String8> const type("Mox::String");
  return &type;
}

MoxType const* untypedPointer() {
  static MoxType const type("Mox::VoidPtr", MoxType::Kind::untyped);
  return &type;
}

MoxType const* enumerationType() {
  static MoxType const type("Mox::Enumeration", MoxType::Kind::enumeration);
  return &type;
}

namespace {

void registerEntities(IntrospectionReactor& reactor) {
  MoxType const& base = *Entity::_fwkType();
  reactor.onType(base);
  for (EntityAttribute const& attribute : entityAttributes()) {
    reactor.onAttribute(base, {attribute.name, attribute.id, attribute.type()});
  }
  for (MoxType const* entity : {Dir::_fwkType(), Clock::_fwkType(), ActivityConfig::_fwkType()}) {
    reactor.onType(*entity);
    reactor.onInheritedAttributes(*entity, base);
  }
}

void registerEnumerations(IntrospectionReactor& reactor) {
  reactor.onType(*enumerationType());
  reactor.onAttribute(*enumerationType(),
                      {"value", enumerationValueAttributeId, TypeOf<std::uint32_t>::type()});
}

template <class Enum>
void registerEnumeration(IntrospectionReactor& reactor) {
  reactor.onType(*TypeOf<Enum>::type());
  reactor.onEnumerators(*TypeOf<Enum>::type());
}

struct Registration {
  Registration() {
    IntrospectionReactor& reactor = IntrospectionReactor::global();
    for (MoxType const* basic : {TypeOf<bool>::type(), TypeOf<std::uint16_t>::type(),
                                 TypeOf<std::uint32_t>::type(), TypeOf<unsigned long long>::type(),
                                 TypeOf<double>::type(), GenericIf::List_::_fwkType()}) {
      reactor.onType(*basic);
    }
    reactor.onNamespace("Mox");
    for (MoxType const* basic : {TypeOf<String8>::type(), TypeOf<Name>::type(), untypedPointer()}) {
      reactor.onType(*basic);
    }
    registerEnumerations(reactor);
    registerEntities(reactor);
    reactor.onNamespace("Pelk");
    reactor.onType(*TypeOf<Pelk::EthAddr>::type());
    reactor.onNamespace("Fru");
    reactor.onType(*TypeOf<Fru::PciHam>::type());
    reactor.onInheritedAttributes(*TypeOf<Fru::PciHam>::type(), *Entity::_fwkType());
    reactor.onNamespace("Bridging");
    registerEnumeration<Bridging::SwitchportMode>(reactor);
    reactor.onNamespace("Hardware");
    reactor.onNamespace("Hardware::Kest");
    registerEnumeration<Hardware::Kest::FapType>(reactor);
    registerEnumeration<Hardware::Kest::SmMode>(reactor);
  }
} const registration;

}  // namespace
}  // namespace Mox
