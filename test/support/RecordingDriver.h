#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include "test/support/Journal.h"

namespace Hardware::Kest {

/// A driver that writes down each call (see `Support::driverLine`) and answers as it was told to.
///
/// One at a time: the nine operations of the program reach it. Without one they end the program.
class RecordingDriver {
 public:
  using Answers = std::deque<int>;

  explicit RecordingDriver(Support::Journal& journal);
  ~RecordingDriver();
  RecordingDriver(RecordingDriver const&) = delete;
  RecordingDriver& operator=(RecordingDriver const&) = delete;

  /// The next answers of `operation` for the interface or device `name`, in order; 0 after them.
  void answersIs(std::string const& operation, std::string const& name, Answers answers);
  void answersDelAll() { answers_.clear(); }

  /// Sets what `kestDmaIsDeviceUp` stores for a device, whatever it answers. Before that it stores
  /// nothing.
  void upIs(std::string const& devName, bool up) { up_[devName] = up; }

  /// Runs in every call, after it was written down.
  std::function<void()> reaction;

  // For the nine operations.
  static RecordingDriver& current();
  int call(std::string const& operation, std::string const& name, std::string line);
  void storeUp(std::string const& devName, bool* up) const;

 private:
  Support::Journal& journal_;
  std::map<std::pair<std::string, std::string>, Answers> answers_;
  std::map<std::string, bool> up_;
};

}  // namespace Hardware::Kest
