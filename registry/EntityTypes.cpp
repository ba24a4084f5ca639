#include "registry/EntityTypes.h"

#include "registry/detail/Arguments.h"

namespace Hardware::Kest::Slice {

namespace {

/// A new entity from the constructor's one argument, its name.
template <class Type>
std::unique_ptr<Mox::GenericIf> newFromList(Type const& type, Mox::GenericIf const& list) {
  detail::Arguments const arguments(list, type);
  auto const entity = Type::newEntity(arguments.value<Mox::Name>(0), nullptr);
  return type.genericIf_(entity.ptr(), false);
}

}  // namespace

Mox::MoxType const* KestSliceDmaConfig::_fwkType() {
  static _Type const type;
  return &type;
}

Mox::Ptr<KestSliceDmaConfig> KestSliceDmaConfig::_Type::newEntity(Mox::Name const& name,
                                                                  Mox::Dir*) {
  return new KestSliceDmaConfig(name);
}

std::unique_ptr<Mox::GenericIf> KestSliceDmaConfig::_Type::genericIfNew(
    Mox::GenericIf const& arguments) const {
  return newFromList(*this, arguments);
}

void KestSliceDmaConfig::GenericIf_::attributeOp(Mox::AttributeOp const& op,
                                                 Mox::GenericIf const* arg,
                                                 std::unique_ptr<Mox::GenericIf>& result) {
  checkModifiable(op);
  if (op.attribute == sliceIdAttributeId) {
    sliceIdOp(op, arg, result);
  } else {
    EntityAdapter::attributeOp(op, arg, result);
  }
}

void KestSliceDmaConfig::GenericIf_::sliceIdOp(Mox::AttributeOp const& op,
                                               Mox::GenericIf const* arg,
                                               std::unique_ptr<Mox::GenericIf>& result) {
  if (op.index != nullptr) throwBadIndexAttrException(sliceIdName);
  if (op.code == Mox::AttributeOpCode::read) {
    result = Mox::genericOf(entity().sliceId());
  } else if (op.code == Mox::AttributeOpCode::store) {
    auto const* const sliceId = Mox::genericVal<Mox::String8>(arg);
    if (sliceId == nullptr) throwTypeException(sliceIdName);
    entity().sliceIdIs(*sliceId);
  } else {
    throwOpNotSupportedException(sliceIdName, op.code);
  }
}

Mox::MoxType const* KestSliceDmaStatus::_fwkType() {
  static _Type const type;
  return &type;
}

Mox::Ptr<KestSliceDmaStatus> KestSliceDmaStatus::_Type::newEntity(Mox::Name const& name,
                                                                  Mox::Dir*) {
  return new KestSliceDmaStatus(name);
}

std::unique_ptr<Mox::GenericIf> KestSliceDmaStatus::_Type::genericIfNew(
    Mox::GenericIf const& arguments) const {
  return newFromList(*this, arguments);
}

}  // namespace Hardware::Kest::Slice
