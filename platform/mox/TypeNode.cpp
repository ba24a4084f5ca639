#include "platform/mox/TypeNode.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Mox {

namespace {

template <class Matches>
Attribute const* firstOf(std::vector<Attribute> const& all, Matches const& matches) {
  auto const found = std::find_if(all.begin(), all.end(), matches);
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

TypeNode::TypeNode(TypeNode* parent, String8 name) noexcept
    : parent_(parent), name_(std::move(name)) {}

String8 TypeNode::fullName() const {
  if (parent_ == nullptr || parent_->parent_ == nullptr) return name_;
  return String8(std::string(parent_->fullName().view()).append("::").append(name_.view()));
}

TypeNode* TypeNode::member(String8 const& name) const noexcept {
  auto const found = std::find_if(members_.begin(), members_.end(),
                                  [&](auto const& member) { return member->name() == name; });
  return found == members_.end() ? nullptr : found->get();
}

Attribute const* TypeNode::attribute(String8 const& name) const noexcept {
  return firstOf(attributes_, [&](Attribute const& one) { return one.name == name; });
}

Attribute const* TypeNode::attribute(AttributeId id) const noexcept {
  return firstOf(attributes_, [&](Attribute const& one) { return one.id == id; });
}

}  // namespace Mox
