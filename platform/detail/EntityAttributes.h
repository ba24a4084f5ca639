#pragma once

#include <memory>
#include <span>

#include "platform/mox/Entity.h"
#include "platform/mox/GenericIf.h"

namespace Mox {

/// One attribute that every entity has. Number 5 between them is the zero-references event.
struct EntityAttribute {
  char const* name;
  AttributeId id;
  MoxType const* (*type)();
  std::unique_ptr<GenericIf> (*read)(Entity const& entity);
};

std::span<EntityAttribute const> entityAttributes();

}  // namespace Mox
