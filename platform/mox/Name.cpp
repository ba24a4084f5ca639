#include "platform/mox/Name.h"

#include "platform/mox/GenericValue.h"

namespace Mox {

MoxType const* Name::_fwkType() {
  static ValueType<Name> const type("Mox::Name");
  return &type;
}

String8 valueToStrep(Name const& value) {
  return valueToStrep(value.string());
}

Name sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end, Name*) {
  return Name(sequenceToValue(it, end, static_cast<String8*>(nullptr)));
}

}  // namespace Mox
