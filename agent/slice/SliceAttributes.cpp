#include "agent/slice/SliceAttributes.h"

#include <memory>
#include <utility>

#include "agent/access/ValueText.h"
#include "model/KestSliceDmaConfig.h"
#include "platform/mox/RangeException.h"
#include "text/Escapes.h"
#include "text/NearMatch.h"
#include "text/Words.h"

namespace Kest::Agent {

namespace {

Mox::TypeNode const& configNode() {
  return *Hardware::Kest::Slice::KestSliceDmaConfig::_fwkType()->typeNode();
}

}  // namespace

std::vector<Mox::Attribute const*> sliceAttributes() {
  std::vector<Mox::Attribute const*> all;
  for (Mox::Attribute const& attribute : configNode().attributes()) {
    if ((attribute.flags & Mox::attributePersistent) != 0) all.push_back(&attribute);
  }
  return all;
}

Mox::Attribute const& sliceAttribute(Mox::AttributeId id) {
  return *configNode().attribute(id);
}

std::vector<std::string> sliceNames() {
  std::vector<std::string> all = {handlesName};
  for (Mox::Attribute const* attribute : sliceAttributes()) {
    all.emplace_back(attribute->name.view());
  }
  all.emplace_back(endName);
  return all;
}

void refuseName(std::string const& name, std::vector<std::string> const& expected) {
  std::string text = "expected one of " + Text::listed(expected, ", ");
  text.append(", found '").append(Text::shortened(name)).append("'");
  if (auto const near = Text::nearMatch(name, expected)) {
    text.append("; did you mean '").append(*near).append("'?");
  }
  Mox::throwRangeException(Mox::String8(text));
}

bool holdsKey(Mox::Attribute const& collection) {
  return collection.type->typeNode()->attribute(collection.keyName) != nullptr;
}

void forEachField(Mox::GenericIf const& value, VisitField const& visit) {
  if (value.type()->kind() != Mox::MoxType::Kind::value) return;
  std::unique_ptr<Mox::GenericIf> const record = value.clone();
  for (Mox::Attribute const& field : value.type()->typeNode()->attributes()) {
    std::unique_ptr<Mox::GenericIf> part;
    record->attributeOp({field.id, Mox::AttributeOpCode::read}, nullptr, part);
    visit(field, *part);
  }
}

}  // namespace Kest::Agent
