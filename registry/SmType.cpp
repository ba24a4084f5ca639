#include "registry/SmType.h"

#include <algorithm>

#include "registry/Refusals.h"
#include "registry/detail/Arguments.h"
#include "registry/detail/SmAttributes.h"

namespace Hardware::Kest::Slice {

KestSliceDmaSm::_Type::_Type() noexcept : MoxType(typeName) {}

std::unique_ptr<Mox::GenericIf> KestSliceDmaSm::_Type::genericIf_(Mox::PtrInterface* object,
                                                                  bool isConst) const {
  return std::make_unique<GenericIf_>(object, isConst);
}

std::unique_ptr<Mox::GenericIf> KestSliceDmaSm::_Type::genericIfNew(
    Mox::GenericIf const& arguments) const {
  detail::Arguments const given(&arguments, typeName, detail::smArguments);
  auto const config = given.value<Mox::Ptr<KestSliceDmaConfig const>>(0);
  auto const status = given.value<Mox::Ptr<KestSliceDmaStatus>>(1);
  if (!status) Mox::GenericIf::throwTypeException(detail::smArguments[1]);
  return genericIf_(kestSliceDmaSmFactory(config, status).ptr(), false);
}

KestSliceDmaSm::GenericIf_::GenericIf_(Mox::PtrInterface* object, bool isConst)
    : GenericIfPtrInterface(_fwkType(), object, isConst) {}

void KestSliceDmaSm::GenericIf_::attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                                             std::unique_ptr<Mox::GenericIf>& result) {
  using Code = Mox::AttributeOpCode;
  detail::checkOperation(*this, op, arg);
  auto const& all = detail::smAttributes();
  auto const found =
      std::find_if(all.begin(), all.end(), [&](auto const& one) { return one.id == op.attribute; });
  if (found == all.end() || detail::comparesWhole(op)) {
    GenericIfPtrInterface::attributeOp(op, arg, result);
    return;
  }
  if (op.index != nullptr) throwBadIndexAttrException(found->name);
  Mox::Ptr<KestSliceDmaSm> const sm(&objectAs<KestSliceDmaSm>());
  if (op.code == Code::read && found->read != nullptr) {
    result = found->read(*sm);
  } else if (op.code == Code::store && found->store != nullptr) {
    found->store(*sm, arg);
  } else if (op.code == Code::remove && found->remove != nullptr) {
    result = found->remove(*sm);
  } else if (op.code == Code::invoke && found->invoke != nullptr) {
    found->invoke(*found, *sm, arg);
  } else {
    throwOpNotSupportedException(found->name, op.code);
  }
}

}  // namespace Hardware::Kest::Slice
