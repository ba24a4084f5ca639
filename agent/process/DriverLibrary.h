#pragma once

#include <stdexcept>
#include <string>

#include "platform/mox/String8.h"

namespace Kest::Agent {

/// A driver library that cannot be used; the message says which and why, every missing operation
/// by name.
class DriverError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A loaded driver library, which stays loaded. The process has one driver, the last that was
/// loaded: `inDriver` then is what it has for each operation.
class DriverLibrary {
 public:
  /// @param driver `sim` for the simulated driver that comes with the agent, or a library's path
  explicit DriverLibrary(std::string const& driver);

  std::string const& path() const noexcept { return path_; }

  /// What the driver says of a device's state: an error number, and with 0 whether it is up.
  struct DeviceAnswer {
    int error;
    bool up;
  };
  DeviceAnswer deviceState(Mox::String8 const& devName) const;

  /// What the library exports under that name; null when it does not.
  void* symbol(char const* name) const;

 private:
  std::string path_;
  void* library_ = nullptr;
};

}  // namespace Kest::Agent
