#pragma once

#include <utility>

#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Mox {

/// Name of an entity within its directory.
class Name {
 public:
  Name() = default;
  Name(char const* name) : string_(name) {}
  explicit Name(String8 name) noexcept : string_(std::move(name)) {}

  String8 const& string() const noexcept { return string_; }
  friend bool operator==(Name const&, Name const&) = default;

  MOX_API static MoxType const* _fwkType();

 private:
  String8 string_;
};

/// As a string.
MOX_API String8 valueToStrep(Name const& value);
MOX_API Name sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end, Name*);

}  // namespace Mox
