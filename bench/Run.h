#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

/// How an operation is measured. The same work is timed, or has its instructions counted
/// (`Main.cpp`).
namespace Kest::Bench {

/// Which time counts: that of the process alone, or all that passes, for work that waits for other
/// processes.
enum class Time { own, passing };

/// The compiler takes `value` for used.
template <class T>
void keep(T const& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

/// One run of a benchmark, which does its operation so many times. What it does outside `part` and
/// `repeat` is not measured.
class Run {
 public:
  Run(std::uint64_t iterations, Time time) : iterations_(iterations), time_(time) {}
  std::uint64_t iterations() const { return iterations_; }

  /// Measures `work`. Several parts add up.
  template <class Work>
  void part(Work const& work) {
    start();
    work();
    stop();
  }

  /// Measures `operation`, done so many times as there are iterations.
  template <class Operation>
  void repeat(Operation const& operation) {
    part([&] {
      for (std::uint64_t left = iterations_; left > 0; --left) operation();
    });
  }

  /// An iteration does so many operations, instead of one.
  void operationsAre(std::size_t each) { each_ = each; }
  /// What was measured was not done.
  void fail(std::string why) { failure_ = std::move(why); }
  /// The result is this figure for each operation, and not a time.
  void figureIs(double figure) { figure_ = figure; }

  std::uint64_t operations() const { return iterations_ * each_; }
  std::string const& failure() const { return failure_; }
  double seconds() const { return seconds_; }
  bool isFigure() const { return figure_ > 0; }
  /// Nanoseconds for each operation, or the figure that was given.
  double result() const {
    return isFigure() ? figure_ : seconds_ * 1e9 / static_cast<double>(operations());
  }

 private:
  void start();
  void stop();

  std::uint64_t iterations_;
  Time time_;
  std::uint64_t each_ = 1;
  std::string failure_;
  double startedAt_ = 0;
  double seconds_ = 0;
  double figure_ = 0;
};

/// Registers `work` as ROW/VARIANT/WHO.
void measure(std::string const& row, std::string const& variant, char const* who,
             std::function<void(Run&)> work, Time time = Time::own);

/// Each registers the rows of the table that it measures: what the library does, what is done
/// beside it, and requests of a client to the agent and to a Redis server.
void measureOurs();
void measurePeers();
void measureRequests();

}  // namespace Kest::Bench
