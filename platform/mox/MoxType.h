#pragma once

#include <utility>

#include "platform/mox/String8.h"

namespace Mox {

/// Type object: one per named type, compared by identity, alive for the life of the process.
class MOX_API MoxType {
 public:
  explicit MoxType(String8 fullName) noexcept : fullName_(std::move(fullName)) {}
  MoxType(MoxType const&) = delete;
  MoxType& operator=(MoxType const&) = delete;
  virtual ~MoxType();

  /// With all its namespaces, as in `Fru::PciHam`.
  String8 const& fullName() const noexcept { return fullName_; }

 private:
  String8 fullName_;
};

}  // namespace Mox
