#include "platform/mox/GenericIfPtrInterface.h"

#include "platform/mox/Entity.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"

namespace Mox {

GenericIfPtrInterface::GenericIfPtrInterface(MoxType const* type, PtrInterface* object,
                                             bool isConst)
    : GenericIf(type, isConst), object_(object) {
  if (object != nullptr && object->fwkType() != type) throwTypeException(type->fullName());
}

GenericIfPtrInterface::~GenericIfPtrInterface() = default;

std::unique_ptr<GenericIf> GenericIfPtrInterface::clone() const {
  return type()->genericIf_(object_.ptr(), isConst());
}

String8 GenericIfPtrInterface::strRep() const {
  auto const* const entity = dynamic_cast<Entity const*>(object_.ptr());
  if (object_ && entity == nullptr) {
    return format("ObjectPtr(%s)", valueToStrep(type()->fullName()).charPtr());
  }
  return valueToStrepOfRawPtr(entity, type());
}

void GenericIfPtrInterface::attributeOp(AttributeOp const& op, GenericIf const* arg,
                                        std::unique_ptr<GenericIf>& result) {
  if (op.attribute != wholeAttributeId || op.code != AttributeOpCode::equality) {
    GenericIf::attributeOp(op, arg, result);
    return;
  }
  auto const* const other = dynamic_cast<GenericIfPtrInterface const*>(arg);
  if (other == nullptr || other->type() != type()) throwTypeException(type()->fullName());
  result = genericOf(object_ == other->object_);
}

}  // namespace Mox
