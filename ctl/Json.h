#pragma once

#include <nlohmann/json.hpp>

namespace Kest::Ctl {

/// Members stay in the order in which they came.
using Json = nlohmann::ordered_json;

}  // namespace Kest::Ctl
