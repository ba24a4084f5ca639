#pragma once

#include <string_view>

namespace Kest::Agent {

/// The service manager that started this process, as systemd does units of type `notify`: it is
/// told of the process's state over the socket that `NOTIFY_SOCKET` names. Without one nothing
/// happens.
class ServiceManager {
 public:
  /// A socket that cannot be used is a line on standard error.
  ServiceManager();
  ServiceManager(ServiceManager const&) = delete;
  ServiceManager& operator=(ServiceManager const&) = delete;
  ~ServiceManager();

  /// Never blocks.
  void isTold(std::string_view state) const noexcept;
  /// This process's signs of life go there from now on, if it watches (`WatchdogSec`).
  void isToldOfLife() const noexcept;

 private:
  int fd_ = -1;
};

}  // namespace Kest::Agent
