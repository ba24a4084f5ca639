#include "agent/slice/PciHandles.h"

#include <algorithm>
#include <utility>

#include "platform/mox/Dir.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"

namespace Kest::Agent {

namespace {

bool isHandlePath(std::string_view path) {
  return path.starts_with('/') && !path.ends_with('/') && path.find("//") == path.npos;
}

/// Where `all` holds the entity, or its end.
auto find(auto& all, Mox::Entity const& entity) {
  return std::find_if(all.begin(), all.end(),
                      [&](auto const& taken) { return taken.entity.ptr() == &entity; });
}

}  // namespace

PciHandles::~PciHandles() {
  for (auto at = taken_.rbegin(); at != taken_.rend(); ++at) {
    Mox::Dir* const dir = at->entity->parent();
    if (at->added && dir != nullptr) dir->entityDel(at->entity->name());
  }
}

void PciHandles::declare(Mox::String8 const& path) {
  std::string_view const chars = path.view();
  if (!isHandlePath(chars)) {
    Mox::throwRangeException(Mox::format("expected a path such as '/pci/0000:05:00.0', found %s",
                                         Mox::valueToStrep(path).charPtr()));
  }
  for (std::size_t slash = chars.find('/', 1); slash != chars.npos;
       slash = chars.find('/', slash + 1)) {
    take<Mox::Dir>(chars.substr(0, slash), "a directory");
  }
  take<Fru::PciHam>(chars, "a PCI handle");
}

bool PciHandles::declares(Fru::PciHam const& handle) const {
  return find(taken_, handle) != taken_.end();
}

std::vector<Mox::String8> PciHandles::paths() const {
  std::vector<Mox::String8> all;
  for (Taken const& taken : taken_) {
    if (Mox::ptrCast<Fru::PciHam>(taken.entity)) all.push_back(taken.entity->fullName());
  }
  return all;
}

void PciHandles::succeed(PciHandles& old) {
  for (Taken& before : old.taken_) {
    auto const mine = find(taken_, *before.entity);
    if (mine != taken_.end()) mine->added = std::exchange(before.added, false);
  }
}

/// Takes the entity at `path`, adding it if nothing is there; the directory it is in is there. What
/// is to be added is taken first: nothing is in the tree that no set would remove.
template <class T>
void PciHandles::take(std::string_view path, char const* expected) {
  Mox::Ptr<Mox::Entity> entity = Mox::entityAt(Mox::String8(path));
  std::size_t const slash = path.rfind('/');
  if (!entity) {
    entity = Mox::Ptr<Mox::Entity>(new T(Mox::Name(Mox::String8(path.substr(slash + 1)))));
    taken_.push_back({entity, true});
    Mox::dirAt(Mox::String8(path.substr(0, slash)))->entityIs(entity);
  } else if (!Mox::ptrCast<T>(entity)) {
    Mox::throwRangeException(Mox::format("expected %s at %s, found something else", expected,
                                         Mox::valueToStrep(Mox::String8(path)).charPtr()));
  } else if (find(taken_, *entity) == taken_.end()) {
    taken_.push_back({entity, false});
  }
}

}  // namespace Kest::Agent
