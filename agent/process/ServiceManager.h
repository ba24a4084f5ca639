#pragma once

#include <string_view>

namespace Kest::Agent {

/// The service manager that started this process, as systemd starts units of type `notify`. The
/// process tells it its state over the socket that `NOTIFY_SOCKET` names; without one, nothing
/// happens.
class ServiceManager {
 public:
  /// Writes a line to standard error if the socket cannot be used.
  ServiceManager();
  ServiceManager(ServiceManager const&) = delete;
  ServiceManager& operator=(ServiceManager const&) = delete;
  ~ServiceManager();

  /// Never blocks.
  void isTold(std::string_view state) const noexcept;
  /// If the manager has a watchdog (`WatchdogSec`), signs of life go to it from now on.
  void isToldOfLife() const noexcept;

 private:
  int fd_ = -1;
};

}  // namespace Kest::Agent
