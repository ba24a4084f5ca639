#include "agent/slice/SliceBuilder.h"

#include <utility>

#include "agent/rules/SliceRules.h"
#include "agent/slice/SliceAttributes.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "registry/EntityTypes.h"

namespace Kest::Agent {

namespace {

std::string statementId(std::string_view name, Mox::String8 const& key) {
  return std::string(name) + " " + Mox::valueToStrep(key).charPtr();
}

}  // namespace

SliceBuilder::SliceBuilder()
    : slice_{new Config("file"), {}},
      adapter_(Config::_fwkType()->genericIf_(slice_.config.ptr(), false)) {}

void SliceBuilder::handle(Mox::String8 const& path) {
  unique(statementId(handlesName, path));
  slice_.handles.declare(path);
}

void SliceBuilder::begin(Mox::Attribute const& attribute) {
  unique(std::string(attribute.name.view()));
}

void SliceBuilder::begin(Mox::Attribute const& collection, Mox::String8 const& key) {
  checkKey(collection.keyName.view(), key);
  unique(statementId(collection.name.view(), key));
}

/// A handle may be there because a file read earlier declared it: it is about to leave the tree.
void SliceBuilder::check(Mox::GenericIf const& value) const {
  checkValue(value);
  bool isHandle = false;
  auto const handle = Mox::genericRef<Fru::PciHam const>(&value, isHandle);
  if (handle && !slice_.handles.declares(*handle)) {
    Mox::throwRangeException(Mox::format("expected a %s for %s before it, found none", handlesName,
                                         Mox::valueToStrep(handle->fullName()).charPtr()));
  }
  forEachField(value, [&](auto const&, Mox::GenericIf const& field) { check(field); });
}

void SliceBuilder::store(Mox::Attribute const& attribute, Mox::String8 const* key,
                         Mox::GenericIf const& value) {
  check(value);
  auto const index = key == nullptr ? nullptr : Mox::genericOf(*key);
  std::unique_ptr<Mox::GenericIf> nothing;
  adapter_->attributeOp({attribute.id, Mox::AttributeOpCode::store, index.get()}, &value, nothing);
}

Slice SliceBuilder::take() {
  return std::move(slice_);
}

void SliceBuilder::unique(std::string const& what) {
  auto const [earlier, isNew] = places_.emplace(what, place_);
  if (isNew) return;
  Mox::throwRangeException(Mox::String8(what + " was given in " + earlier->second + " already"));
}

}  // namespace Kest::Agent
