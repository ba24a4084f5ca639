#pragma once

#include <stdexcept>
#include <string>

namespace Kest::Agent {

/// A driver library that cannot be used; the message says which and why, every missing operation
/// by name.
class DriverError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A loaded driver library. From then on the nine operations that the state machine's library
/// leaves open are the driver's: load it before anything calls one. It stays loaded.
class DriverLibrary {
 public:
  /// @param driver `sim` for the simulated driver that comes with the agent, or a library's path
  explicit DriverLibrary(std::string const& driver);

  /// Hands a fault file to a driver that takes one: the simulated one does.
  void faultFileIs(std::string const& path);

 private:
  std::string path_;
  void* library_;
};

}  // namespace Kest::Agent
