#pragma once

#include <utility>

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

 private:
  String8 string_;
};

}  // namespace Mox
