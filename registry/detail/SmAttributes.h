#pragma once

#include <memory>
#include <vector>

#include "platform/mox/GenericIf.h"
#include "platform/mox/TypeNode.h"
#include "sm/KestSliceDmaSm.h"

/// The state machine's attributes, each described once: what is registered of it and what can be
/// done to it by name. An operation that is null is refused.
namespace Hardware::Kest::Slice::detail {

struct SmAttribute {
  Mox::Attribute attribute;
  std::unique_ptr<Mox::GenericIf> (*read)(KestSliceDmaSm const& sm) = nullptr;
  void (*store)(KestSliceDmaSm& sm, Mox::GenericIf const* value) = nullptr;
  std::unique_ptr<Mox::GenericIf> (*remove)(KestSliceDmaSm& sm) = nullptr;
  void (*invoke)(Mox::Attribute const& self, KestSliceDmaSm& sm,
                 Mox::GenericIf const* arguments) = nullptr;
};

/// In order of registration.
std::vector<SmAttribute> const& smAttributes();

/// The constructor arguments.
inline constexpr char const* configArgument = "config";
inline constexpr char const* statusArgument = "status";

}  // namespace Hardware::Kest::Slice::detail
