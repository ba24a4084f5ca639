#include "platform/mox/HashMap.h"

namespace Mox {

HashMapEntry::~HashMapEntry() = default;

}  // namespace Mox
