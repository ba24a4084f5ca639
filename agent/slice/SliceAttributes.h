#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/mox/GenericIf.h"
#include "platform/mox/TypeNode.h"

/// What a slice file may hold: PCI handles, and what the type registry knows of the configuration.
namespace Kest::Agent {

/// What declares PCI handles in a slice file. Everything else there is an attribute.
inline constexpr char const* handlesName = "pciHam";

/// The last statement of a slice file, which says that the file is whole.
inline constexpr char const* endName = "end";

/// The configuration's persistent attributes, in order of registration.
std::vector<Mox::Attribute const*> sliceAttributes();
Mox::Attribute const& sliceAttribute(Mox::AttributeId id);

/// The names of all that a slice file may hold, in the order in which they are offered.
std::vector<std::string> sliceNames();

/// Refuses a name that is none of those, with the one that was probably meant.
/// `Mox::RangeException`.
[[noreturn]] void refuseName(std::string const& name, std::vector<std::string> const& expected);

/// Whether a collection's values are records that hold their own keys.
bool holdsKey(Mox::Attribute const& collection);

using VisitField = std::function<void(Mox::Attribute const& field, Mox::GenericIf const& value)>;
/// Visits each field of a record, in order; of any other value nothing.
void forEachField(Mox::GenericIf const& value, VisitField const& visit);

}  // namespace Kest::Agent
