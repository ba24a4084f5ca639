#include "platform/mox/MoxType.h"

namespace Mox {

MoxType::~MoxType() = default;

}  // namespace Mox
