#pragma once

#include <string_view>
#include <vector>

#include "platform/fru/PciHam.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// The PCI handles that a slice file declares, kept in the entity tree at their paths, and the
/// directories on the way to them.
///
/// A set removes from the tree, when it goes, what it added to the tree, unless another set has
/// succeeded it. So a file that is refused leaves no trace, and one that is read again finds the
/// same handle objects.
class PciHandles {
 public:
  PciHandles() = default;
  PciHandles(PciHandles&& other) noexcept = default;
  PciHandles& operator=(PciHandles other) noexcept {
    taken_.swap(other.taken_);
    return *this;
  }
  ~PciHandles();

  /// Takes the handle at an absolute path such as `/pci/0000:05:00.0`, adding it if nothing is
  /// there. `Mox::RangeException` for a path that is no path of a handle.
  void declare(Mox::String8 const& path);
  bool declares(Fru::PciHam const& handle) const;

  /// The paths of the handles, in order of declaration.
  std::vector<Mox::String8> paths() const;

  /// Takes over what both sets declare; what only `old` declares leaves the tree.
  void succeed(PciHandles& old);

 private:
  struct Taken {
    Mox::Ptr<Mox::Entity> entity;
    bool added;
  };
  template <class T>
  void take(std::string_view path, char const* expected);

  std::vector<Taken> taken_;  // a directory before what is in it
};

}  // namespace Kest::Agent
