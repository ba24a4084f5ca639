#include "agent/slice/PciHandles.h"

#include <algorithm>
#include <utility>

#include "agent/access/ValueText.h"
#include "platform/mox/Dir.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"
#include "text/Escapes.h"

namespace Kest::Agent {

namespace {

void expect(bool isExpected, std::string const& what, std::string const& found) {
  if (!isExpected) {
    Mox::throwRangeException(Mox::String8("expected " + what + ", found " + found));
  }
}

void checkPath(std::string_view path) {
  bool const isPath = path.starts_with('/') && !path.ends_with('/') && path.find("//") == path.npos;
  expect(isPath, "a path such as '/pci/0000:05:00.0'",
         "'" + Text::shortened(nameText(Mox::String8(path))) + "'");
  auto const steps = static_cast<std::size_t>(std::count(path.begin(), path.end(), '/'));
  expect(steps <= PciHandles::deepestPath,
         "a path of at most " + std::to_string(PciHandles::deepestPath) + " steps",
         "one of " + std::to_string(steps));
  expect(path.size() <= PciHandles::longestPath,
         "a path of at most " + std::to_string(PciHandles::longestPath) + " bytes",
         "one of " + std::to_string(path.size()));
}

/// Calls `visit` with each directory on the way to an absolute path, the outermost first.
template <class Visit>
void forEachDirectory(std::string_view path, Visit const& visit) {
  for (std::size_t slash = path.find('/', 1); slash != path.npos;
       slash = path.find('/', slash + 1)) {
    visit(path.substr(0, slash));
  }
}

Mox::Name lastStep(std::string_view path) {
  return Mox::Name(Mox::String8(path.substr(path.rfind('/') + 1)));
}

void expectKind(bool isExpected, std::string_view path, bool isHandle) {
  expect(isExpected,
         std::string(isHandle ? "a PCI handle" : "a directory") + " at " +
             Mox::valueToStrep(Mox::String8(path)).charPtr(),
         "something else");
}

/// What is in the tree at that path, if anything: of no other kind.
Mox::Ptr<Mox::Entity> entityThere(std::string_view path, bool isHandle) {
  Mox::Ptr<Mox::Entity> there = Mox::entityAt(Mox::String8(path));
  bool const isOfKind = isHandle ? static_cast<bool>(Mox::ptrCast<Fru::PciHam>(there))
                                 : static_cast<bool>(Mox::ptrCast<Mox::Dir>(there));
  expectKind(!there || isOfKind, path, isHandle);
  return there;
}

}  // namespace

PciHandles::~PciHandles() {
  for (auto at = taken_.rbegin(); at != taken_.rend(); ++at) {
    if (!at->second.added) continue;
    Mox::Entity const& entity = *at->second.entity;
    if (Mox::Dir* const dir = entity.parent()) dir->entityDel(entity.name());
  }
}

void PciHandles::declare(Mox::String8 const& path) {
  checkPath(path.view());
  forEachDirectory(path.view(), [&](std::string_view directory) { take(directory, false); });
  take(path.view(), true);
}

void PciHandles::take(std::string_view path, bool isHandle) {
  auto const mine = taken_.find(path);
  if (mine != taken_.end()) return expectKind(mine->second.isHandle == isHandle, path, isHandle);
  Mox::Ptr<Mox::Entity> entity = entityThere(path, isHandle);
  if (!entity && isHandle) entity = Mox::Ptr<Mox::Entity>(new Fru::PciHam(lastStep(path)));
  taken_.emplace(path, Taken{std::move(entity), isHandle});
}

bool PciHandles::declares(Fru::PciHam const& handle) const {
  auto const mine = taken_.find(handle.fullName().view());
  return mine != taken_.end() && mine->second.entity.ptr() == &handle;
}

std::vector<Mox::String8> PciHandles::paths() const {
  std::vector<Mox::String8> all;
  for (auto const& [path, taken] : taken_) {
    if (taken.isHandle) all.emplace_back(path);
  }
  return all;
}

/// What is to be added is noted first: nothing is in the tree that no set would remove.
void PciHandles::enterTree() {
  for (auto& [path, taken] : taken_) {
    if (Mox::Ptr<Mox::Entity> const there = entityThere(path, taken.isHandle)) {
      expect(!taken.isHandle || there == taken.entity, "the PCI handle of this slice at " + path,
             "that of another one");
      taken.entity = there;
      continue;
    }
    if (!taken.isHandle) taken.entity = Mox::Ptr<Mox::Entity>(new Mox::Dir(lastStep(path)));
    taken.added = true;
    Mox::dirAt(Mox::String8(path.substr(0, path.rfind('/'))))->entityIs(taken.entity);
  }
}

PciHandles PciHandles::inTree(Mox::String8 const& path) {
  PciHandles alone;
  auto const mine = taken_.find(path.view());
  if (mine == taken_.end()) return alone;
  if (auto const there = Mox::ptrCast<Fru::PciHam>(Mox::entityAt(path))) {
    mine->second.entity = there;
    return alone;
  }
  forEachDirectory(path.view(), [&](std::string_view directory) {
    alone.taken_.emplace(directory, Taken{nullptr, false});
  });
  alone.taken_.emplace(path.view(), Taken{mine->second.entity, mine->second.isHandle});
  alone.enterTree();
  return alone;
}

void PciHandles::succeed(PciHandles& old) {
  for (auto& [path, before] : old.taken_) {
    auto const mine = taken_.find(path);
    if (mine == taken_.end() || mine->second.entity != before.entity) continue;
    if (std::exchange(before.added, false)) mine->second.added = true;
  }
}

}  // namespace Kest::Agent
