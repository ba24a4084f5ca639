#include "registry/Registration.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <type_traits>

#include "platform/mox/IntrospectionReactor.h"
#include "registry/SmType.h"
#include "registry/detail/SmAttributes.h"
#include "sm/detail/Points.h"

/// What the library registers when it is loaded, in order, and withdraws when it is unloaded.
namespace Hardware::Kest::Slice {

namespace {

using Mox::IntrospectionReactor;
using Mox::MoxType;

constexpr Mox::AttributeFlags statusFlags = Mox::attributeVisible | Mox::attributeNotifying;
constexpr Mox::AttributeFlags configFlags =
    statusFlags | Mox::attributePersistent | Mox::attributeWritable;

void registerDeviceState(IntrospectionReactor& reactor) {
  reactor.onType(*DeviceState_fwkType());
  reactor.onEnumerators(*DeviceState_fwkType());
}

/// The type and what it inherits; its own attributes follow when its records are registered.
template <class Entity>
void registerEntity(IntrospectionReactor& reactor) {
  MoxType const& type = *Entity::_fwkType();
  reactor.onType(type);
  reactor.onConstructorArgument(
      type, {detail::entityArguments[0], Mox::TypeOf<Mox::Name>::type()->fullName()});
  reactor.onInheritedAttributes(type, *Mox::Entity::_fwkType());
}

template <class Record>
void registerRecord(IntrospectionReactor& reactor) {
  MoxType const& type = *Record::_fwkType();
  reactor.onType(type);
  detail::forEachFieldAttribute<Record>([&](auto const& field, Mox::AttributeId id) {
    using Value = std::decay_t<decltype(typename Record::Fields().*field.member)>;
    MoxType const* const valueType = detail::typeOf<Value>();
    reactor.onConstructorArgument(type, {field.name, valueType->fullName()});
    reactor.onAttribute(type, {field.name, id, valueType});
  });
}

template <class Entity>
void registerCollections(IntrospectionReactor& reactor, Mox::AttributeFlags flags) {
  MoxType const& type = *Entity::_fwkType();
  Entity::forEachCollectionType([&]<class Collection>(std::type_identity<Collection>) {
    using Value = typename Collection::Value;
    Mox::Attribute attribute{Collection::name, Collection::attributeId, Mox::TypeOf<Value>::type(),
                             Mox::IntrospectionClass::collection, flags};
    if constexpr (detail::IsRecord<Value>) {
      reactor.onRecordCollection(type, attribute, Collection::keyName);
    } else {
      attribute.keyName = Collection::keyName;
      attribute.keyType = Mox::TypeOf<Mox::String8>::type();
      reactor.onAttribute(type, attribute);
    }
  });
}

void registerSm(IntrospectionReactor& reactor) {
  MoxType const& type = *KestSliceDmaSm::_fwkType();
  reactor.onType(type);
  reactor.onConstructorArgument(type, {detail::smArguments[0], KestSliceDmaConfig::typeName});
  reactor.onConstructorArgument(type, {detail::smArguments[1], KestSliceDmaStatus::typeName});
  for (detail::SmAttribute const& one : detail::smAttributes()) {
    reactor.onAttribute(type, one.registered());
  }
}

/// The library's types, in order of announcement.
auto libraryTypes() {
  return std::array{DeviceState_fwkType(),
                    KestSliceDmaConfig::_fwkType(),
                    KestSliceDmaConfig::SwitchPort::_fwkType(),
                    KestSliceDmaConfig::Device::_fwkType(),
                    KestSliceDmaStatus::_fwkType(),
                    KestSliceDmaStatus::SwitchPort::_fwkType(),
                    KestSliceDmaStatus::Device::_fwkType(),
                    KestSliceDmaSm::_fwkType()};
}

}  // namespace

void moxInitKestSliceDmaSm() {
  IntrospectionReactor& reactor = IntrospectionReactor::global();
  for (char const* scope : {"Hardware", "Hardware::Kest", "Hardware::Kest::Slice"}) {
    reactor.onNamespace(scope);
  }
  registerDeviceState(reactor);
  registerEntity<KestSliceDmaConfig>(reactor);
  registerRecord<KestSliceDmaConfig::SwitchPort>(reactor);
  registerRecord<KestSliceDmaConfig::Device>(reactor);
  reactor.onAttribute(
      *KestSliceDmaConfig::_fwkType(),
      {KestSliceDmaConfig::sliceIdName, KestSliceDmaConfig::sliceIdAttributeId,
       Mox::TypeOf<Mox::String8>::type(), Mox::IntrospectionClass::scalar, configFlags});
  registerCollections<KestSliceDmaConfig>(reactor, configFlags);
  registerEntity<KestSliceDmaStatus>(reactor);
  registerRecord<KestSliceDmaStatus::SwitchPort>(reactor);
  registerRecord<KestSliceDmaStatus::Device>(reactor);
  registerCollections<KestSliceDmaStatus>(reactor, statusFlags);
  registerSm(reactor);
}

namespace {

/// A process that has another copy of the library, or another type of one of its names, cannot use
/// it.
void initOrAbort() noexcept {
  try {
    moxInitKestSliceDmaSm();
  } catch (std::exception const& exception) {
    std::fprintf(stderr, "kest-slice-dma cannot register its types: %s\n", exception.what());
    std::abort();
  }
}

/// The library's one static object: what loading the library does, and unloading undoes.
class Registration {
 public:
  Registration() noexcept : types_(libraryTypes()) {
    detail::deviceStateError();
    initOrAbort();
  }
  /// The last first: what is nested goes before what it is in.
  ~Registration() {
    std::for_each(types_.rbegin(), types_.rend(),
                  [](MoxType const* type) { IntrospectionReactor::global().typeDel(*type); });
  }
  Registration(Registration const&) = delete;
  Registration& operator=(Registration const&) = delete;

 private:
  decltype(libraryTypes()) types_;
} const registration;

}  // namespace

}  // namespace Hardware::Kest::Slice
