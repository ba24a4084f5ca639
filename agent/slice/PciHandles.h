#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fru/PciHam.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

/// The PCI handles that a slice file declares, and the directories on the way to them.
///
/// A set stands in the entity tree, at the paths of its handles, from `enterTree` on. What it added
/// to the tree it removes when it goes, unless another set has succeeded it. So a file that is
/// being read, or is refused, leaves no trace, and one that is read again finds the same handle
/// objects.
class PciHandles {
 public:
  static constexpr std::size_t longestPath = 255;  // bytes
  static constexpr std::size_t deepestPath = 32;   // steps

  PciHandles() = default;
  PciHandles(PciHandles&& other) noexcept = default;
  PciHandles& operator=(PciHandles other) noexcept {
    taken_.swap(other.taken_);
    return *this;
  }
  ~PciHandles();

  /// Takes the handle at an absolute path such as `/pci/0000:05:00.0`: the one that is in the tree,
  /// or a new one. `Mox::RangeException` for a path that is no path of a handle.
  void declare(Mox::String8 const& path);
  /// Whether a handle in the tree is one of these.
  bool declares(Fru::PciHam const& handle) const;

  /// The paths of the handles.
  std::vector<Mox::String8> paths() const;

  /// Adds to the tree what is not there. `Mox::RangeException` when something else is; then the set
  /// must go.
  void enterTree();

  /// What is at that path alone, in the tree as long as the result lives, so that a text that
  /// refers to it can be read; nothing when the path is not declared. When the tree has come by a
  /// handle of that path meanwhile, this set takes that one.
  PciHandles inTree(Mox::String8 const& path);

  /// Takes over what both sets declare; what only `old` declares leaves the tree with it. Both must
  /// be in the tree.
  void succeed(PciHandles& old);

 private:
  /// A handle, or a directory; that of a set that has not entered the tree may be null.
  struct Taken {
    Mox::Ptr<Mox::Entity> entity;
    bool isHandle;
    bool added = false;
  };

  void take(std::string_view path, bool isHandle);

  std::map<std::string, Taken, std::less<>> taken_;  // by path: a directory before what is in it
};

}  // namespace Kest::Agent
