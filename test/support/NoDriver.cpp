#include <cstdlib>

/// Lets a test program link the library whose state machine it never starts: there is no driver,
/// and a call of one ends the program.
namespace Hardware::Kest {

[[noreturn]] static int driven(char const*, auto const&...) {
  std::abort();
}

}  // namespace Hardware::Kest

#include "test/support/DriverOperations.h"
