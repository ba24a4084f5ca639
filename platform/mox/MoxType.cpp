#include "platform/mox/MoxType.h"

#include "platform/mox/GenericIf.h"

namespace Mox {

MoxType::~MoxType() = default;

std::vector<String8> MoxType::enumerators() const {
  return {};
}

std::unique_ptr<GenericIf> MoxType::genericIf(void const*, bool) const {
  GenericIf::throwOpNotSupportedException(fullName_, AttributeOpCode::read);
}

std::unique_ptr<GenericIf> MoxType::genericIf(GenericIf const*, bool) const {
  GenericIf::throwOpNotSupportedException(fullName_, AttributeOpCode::read);
}

std::unique_ptr<GenericIf> MoxType::genericIf(String8 const&, bool) const {
  GenericIf::throwOpNotSupportedException(fullName_, AttributeOpCode::read);
}

std::unique_ptr<GenericIf> MoxType::genericIf_(PtrInterface*, bool) const {
  GenericIf::throwOpNotSupportedException(fullName_, AttributeOpCode::read);
}

std::unique_ptr<GenericIf> MoxType::genericIfNew(GenericIf const&) const {
  GenericIf::throwOpNotSupportedException(fullName_, AttributeOpCode::construct);
}

}  // namespace Mox
