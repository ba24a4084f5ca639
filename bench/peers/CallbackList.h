#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Kest::Bench {

/// Observers as a copy-on-write list of callbacks: whoever tells them holds the list as it was, and
/// whoever joins replaces it.
class CallbackList {
 public:
  using Told = std::function<void(std::string const& key)>;
  using Failed = std::function<void()>;

  void add(Told told, Failed failed) {
    auto grown = std::make_shared<Callbacks>(*callbacks_);
    grown->push_back({std::move(told), std::move(failed)});
    callbacks_ = std::move(grown);
  }
  void clear() { callbacks_ = std::make_shared<Callbacks const>(); }

  void tell(std::string const& key) const {
    std::shared_ptr<Callbacks const> const snapshot = callbacks_;
    for (Callback const& callback : *snapshot) {
      try {
        callback.told(key);
      } catch (...) {
        report(callback);
      }
    }
  }

 private:
  struct Callback {
    Told told;
    Failed failed;
  };
  using Callbacks = std::vector<Callback>;

  static void report(Callback const& callback) noexcept {
    try {
      callback.failed();
    } catch (...) {  // NOLINT(bugprone-empty-catch): nobody is left to tell
    }
  }

  std::shared_ptr<Callbacks const> callbacks_ = std::make_shared<Callbacks const>();
};

}  // namespace Kest::Bench
