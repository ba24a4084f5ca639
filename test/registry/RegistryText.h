#pragma once

#include <string>

#include "platform/mox/IntrospectionReactor.h"

namespace Mox {

/// What a registry holds below the namespace `scope`, in order: the namespaces that lead there,
/// then one paragraph a type.
std::string registryText(IntrospectionReactor const& reactor, std::string const& scope);

/// One type with all that is registered of it.
std::string typeText(MoxType const& type);

}  // namespace Mox
