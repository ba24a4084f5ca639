#pragma once

#include <cstdint>
#include <memory>

#include "platform/mox/String8.h"

namespace Kest::Bench {

/// What is called through its table of virtual operations and does as little as an observer that
/// counts. Its one class is defined elsewhere, so that no compiler can tell what is called.
class Callee {
 public:
  virtual ~Callee() = default;
  virtual void told(Mox::String8 const& key) = 0;
  virtual void toldByValue(Mox::String8 key) = 0;
};

std::unique_ptr<Callee> newCallee();

}  // namespace Kest::Bench
