#pragma once

#include <memory>
#include <vector>

#include "platform/mox/Attribute.h"
#include "platform/mox/GenericIf.h"
#include "sm/KestSliceDmaSm.h"

namespace Hardware::Kest::Slice::detail {

/// One attribute of the state machine: what is registered of it and what can be done to it by name.
/// An operation that is null is refused.
struct SmAttribute {
  char const* name;
  Mox::AttributeId id;
  Mox::MoxType const* type;
  Mox::AttributeFlags flags = Mox::attributeVisible;
  char const* argument = nullptr;  // of a handler that takes one
  Mox::MoxType const* argumentType = nullptr;
  std::unique_ptr<Mox::GenericIf> (*read)(KestSliceDmaSm const& sm) = nullptr;
  void (*store)(KestSliceDmaSm& sm, Mox::GenericIf const* value) = nullptr;
  std::unique_ptr<Mox::GenericIf> (*remove)(KestSliceDmaSm& sm) = nullptr;
  void (*invoke)(SmAttribute const& self, KestSliceDmaSm& sm,
                 Mox::GenericIf const* arguments) = nullptr;

  Mox::Attribute registered() const;
};

/// In order of registration.
std::vector<SmAttribute> const& smAttributes();

/// The constructor arguments.
inline constexpr char const* smArguments[] = {"config", "status"};

}  // namespace Hardware::Kest::Slice::detail
