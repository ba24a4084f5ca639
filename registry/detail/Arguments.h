#pragma once

#include <cstddef>
#include <span>

#include "platform/mox/String8.h"
#include "registry/Refusals.h"
#include "registry/detail/Held.h"

namespace Hardware::Kest::Slice::detail {

/// The arguments that a constructor or a handler was given. Refused: more of them than it takes, by
/// its own name; one that is missing or of the wrong type, by the argument's name.
class Arguments {
 public:
  using Names = std::span<char const* const>;

  /// @param list a list, or null for no arguments; like the names it must outlive this
  Arguments(Mox::GenericIf const* list, char const* taker, Names names)
      : list_(list == nullptr ? nullptr : &listOf(*list)), names_(names) {
    if (list_ != nullptr && list_->items().size() > names.size()) {
      Mox::GenericIf::throwUnknownArgException(taker);
    }
  }

  /// A value, or a reference if `T` is a `Ptr`.
  template <class T>
  decltype(auto) value(std::size_t index) const {
    bool const given = list_ != nullptr && index < list_->items().size();
    return held<T>(given ? list_->items()[index].get() : nullptr, names_[index]);
  }

 private:
  Mox::GenericIf::List_ const* list_;
  Names names_;
};

}  // namespace Hardware::Kest::Slice::detail
