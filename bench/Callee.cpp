#include "bench/Callee.h"

namespace Kest::Bench {

namespace {

class CountingCallee : public Callee {
 public:
  void told(Mox::String8 const& /*key*/) override { ++count_; }
  void toldByValue(Mox::String8 /*key*/) override { ++count_; }

 private:
  std::uint64_t count_ = 0;
};

}  // namespace

std::unique_ptr<Callee> newCallee() {
  return std::make_unique<CountingCallee>();
}

}  // namespace Kest::Bench
