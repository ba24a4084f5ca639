#include "platform/mox/TypeNode.h"

namespace Mox {

Attribute const* TypeNode::attribute(String8 const& name) const noexcept {
  for (Attribute const& one : attributes_) {
    if (one.name == name) return &one;
  }
  return nullptr;
}

Attribute const* TypeNode::attribute(AttributeId id) const noexcept {
  for (Attribute const& one : attributes_) {
    if (one.id == id) return &one;
  }
  return nullptr;
}

}  // namespace Mox
