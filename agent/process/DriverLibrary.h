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

/// A loaded driver library; it stays loaded. The process uses the driver that was loaded last:
/// `inDriver` holds its operations.
class DriverLibrary {
 public:
  /// @param driver `sim` for the simulated driver that comes with the agent, or a library's path
  explicit DriverLibrary(std::string const& driver);

  std::string const& path() const noexcept { return path_; }

  /// The driver's answer about a device: an error number; if that is 0, whether the device is up.
  struct DeviceAnswer {
    int error;
    bool up;
  };
  DeviceAnswer deviceState(Mox::String8 const& devName) const;

  /// The library's exported symbol of that name; null if there is none.
  void* symbol(char const* name) const;

 private:
  std::string path_;
  void* library_ = nullptr;
};

}  // namespace Kest::Agent
