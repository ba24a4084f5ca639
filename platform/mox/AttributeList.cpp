#include "platform/mox/AttributeList.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Mox {

namespace {

constexpr unsigned maxShift = 24;  // leaves bits enough for the first place

}  // namespace

Attribute const* AttributeList::find(String8 const& name) const noexcept {
  if (all_.empty()) return nullptr;
  for (std::size_t at = firstPlace(name); places_[at] != none; at = nextPlace(at)) {
    Attribute const& attribute = all_[places_[at]];
    // Not as strings compare, which branches by length: a read by name would take 1.2 times as
    // long.
    if (attribute.name.view() == name.view()) return &attribute;
  }
  return nullptr;
}

Attribute const* AttributeList::find(AttributeId id) const noexcept {
  auto const found = std::find_if(all_.begin(), all_.end(),
                                  [&](Attribute const& attribute) { return attribute.id == id; });
  return found == all_.end() ? nullptr : &*found;
}

void AttributeList::add(Attribute attribute) {
  std::vector<Place> places(std::bit_ceil(2 * (all_.size() + 1)), none);
  all_.push_back(std::move(attribute));
  places_.swap(places);
  placesAreFilled();
}

void AttributeList::inheritedDel(String8 const& name) noexcept {
  std::erase_if(all_, [&](Attribute const& attribute) {
    return attribute.inheritedFrom != nullptr && attribute.name == name;
  });
  placesAreFilled();
}

void AttributeList::placesAreFilled() noexcept {
  unsigned shift = 0;
  while (!placesAreFilled(shift) && shift < maxShift) ++shift;
}

bool AttributeList::placesAreFilled(unsigned shift) noexcept {
  shift_ = shift;
  std::fill(places_.begin(), places_.end(), none);
  bool apart = true;
  for (Place place = 0; place < all_.size(); ++place) {
    std::size_t at = firstPlace(all_[place].name);
    apart = apart && places_[at] == none;
    while (places_[at] != none) at = nextPlace(at);
    places_[at] = place;
  }
  return apart;
}

}  // namespace Mox
