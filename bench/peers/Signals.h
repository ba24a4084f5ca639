#pragma once

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal_type.hpp>
#include <functional>
#include <string>
#include <utility>

/// Observers as slots of a signal. A signal takes its snapshot itself; an exception would end the
/// emission, so each slot contains its own.
namespace Kest::Bench {

/// What a slot calls.
struct ContainedSlot {
  std::function<void(std::string const& key)> told;
  std::function<void()> failed;

  void operator()(std::string const& key) const {
    try {
      told(key);
    } catch (...) {
      report();
    }
  }

 private:
  void report() const noexcept {
    try {
      failed();
    } catch (...) {  // NOLINT(bugprone-empty-catch): nobody is left to tell
    }
  }
};

/// boost::signals2, without its mutex, as its documentation recommends for a single thread.
class BoostSignal {
 public:
  template <class Told, class Failed>
  void add(Told told, Failed failed) {
    signal_.connect(ContainedSlot{std::move(told), std::move(failed)});
  }
  void clear() { signal_.disconnect_all_slots(); }
  void tell(std::string const& key) { signal_(key); }

 private:
  using Mutex = boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>;
  boost::signals2::signal_type<void(std::string const&), Mutex>::type signal_;
};

}  // namespace Kest::Bench
