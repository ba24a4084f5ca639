#include "sm/detail/Points.h"

#undef NDEBUG  // assertions are active in every build; <cassert> declares the report only then
#include <cassert>

namespace Hardware::Kest::Slice::detail {

void assertionFailed(char const* expression, Handler const& handler, unsigned lineNumber) {
  __assert_fail(expression, source, lineNumber, handler.signature);
}

}  // namespace Hardware::Kest::Slice::detail
