#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

/// How an operation is measured, whatever it is measured in. The same work is built into programs
/// that take its time (Timed.cpp: kest_bench) or have its instructions counted (Counted.cpp:
/// kest_instructions, and kest_bench_counted with the rivals').
namespace Kest::Bench {

/// The compiler takes `value` for used.
template <class T>
void keep(T const& value) {
  asm volatile("" : : "r,m"(value) : "memory");
}

/// One run of an operation, which iterates over it so often:
///
///     for (auto _ : run) operation();
///
/// That loop is measured, without what comes before and after it, or only the parts of it that the
/// work names by `part`, as it was registered.
class Run {
 public:
  explicit Run(std::uint64_t iterations) : iterations_(iterations) {}
  Run(Run const&) = delete;
  Run& operator=(Run const&) = delete;
  virtual ~Run() = default;

  struct [[maybe_unused]] Iteration {};

  class Iterator {
   public:
    Iterator(Run& run, std::uint64_t left) : run_(run), left_(left) {}
    Iteration operator*() const { return {}; }
    void operator++() { --left_; }
    bool operator!=(Iterator const& /*end*/) const {
      if (left_ > 0) return true;
      run_.loopEnds();
      return false;
    }

   private:
    Run& run_;
    std::uint64_t left_;
  };

  Iterator begin() {
    loopStarts();
    return {*this, iterations_};
  }
  Iterator end() { return {*this, 0}; }

  template <class Work>
  void part(Work const& work) {
    partStarts();
    work();
    partEnds();
  }

  std::uint64_t iterations() const { return iterations_; }

  /// Says that an iteration does so many operations, instead of one.
  virtual void operationsAre(std::size_t operations) = 0;
  /// Says, after the loop, that what was measured was not done.
  virtual void fail(char const* why) = 0;

 private:
  virtual void loopStarts() = 0;
  virtual void loopEnds() = 0;
  virtual void partStarts() = 0;
  virtual void partEnds() = 0;

  std::uint64_t iterations_;
};

/// What of a run is measured. There is at most one part in an iteration.
enum class Measured { loop, part };

/// Registers `work` as ROW/VARIANT/WHO. Each program has its own.
void measure(std::string const& row, std::string const& variant, char const* who,
             std::function<void(Run&)> work, Measured measured = Measured::loop);

}  // namespace Kest::Bench
