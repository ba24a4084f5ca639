#pragma once

#include <cstddef>
#include <vector>

#include "platform/mox/String8.h"
#include "platform/mox/TypeNode.h"
#include "registry/Refusals.h"
#include "registry/detail/Held.h"

namespace Hardware::Kest::Slice::detail {

/// The arguments that a constructor or a handler was given, held against those that it declares.
/// Refused: more of them than are declared, by the name of what takes them; one that is missing or
/// of the wrong type, by its own name.
class Arguments {
 public:
  /// @param list a list, or null for no arguments; like the rest it must outlive this
  Arguments(Mox::GenericIf const* list, Mox::String8 const& takes,
            std::vector<Mox::Argument> const& declared)
      : list_(list == nullptr ? nullptr : &listOf(*list)), declared_(declared) {
    if (list_ != nullptr && list_->items().size() > declared_.size()) {
      Mox::GenericIf::throwUnknownArgException(takes);
    }
  }
  /// Of a handler.
  Arguments(Mox::GenericIf const* list, Mox::Attribute const& handler)
      : Arguments(list, handler.name, handler.arguments) {}
  /// Of a registered type's constructor.
  Arguments(Mox::GenericIf const& list, Mox::MoxType const& type)
      : Arguments(&list, type.fullName(), type.typeNode()->constructorArguments()) {}

  /// A value, or a reference if `T` is a `Ptr`.
  template <class T>
  decltype(auto) value(std::size_t index) const {
    return held<T>(item(index), declared_[index].name);
  }

  [[noreturn]] void refuse(std::size_t index) const {
    Mox::GenericIf::throwTypeException(declared_[index].name);
  }

 private:
  Mox::GenericIf const* item(std::size_t index) const {
    bool const given = list_ != nullptr && index < list_->items().size();
    return given ? list_->items()[index].get() : nullptr;
  }

  Mox::GenericIf::List_ const* list_;
  std::vector<Mox::Argument> const& declared_;
};

}  // namespace Hardware::Kest::Slice::detail
