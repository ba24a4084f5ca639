#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace Kest::Ctl {

/// An object's members in the order in which they came. Many are found through an index: an object
/// may be a collection of tens of thousands of entries.
template <class Key, class T, class IgnoredLess, class Allocator>
class Members : public nlohmann::ordered_map<Key, T, IgnoredLess, Allocator> {
  using Base = nlohmann::ordered_map<Key, T, IgnoredLess, Allocator>;

 public:
  using iterator = typename Base::iterator;
  using const_iterator = typename Base::const_iterator;
  using Base::Base;

  template <class Name>
  std::pair<iterator, bool> emplace(Name const& name, T value) {
    if (auto const at = find(name); at != this->end()) return {at, false};
    this->emplace_back(name, std::move(value));
    if (this->size() > few) {
      while (places_.size() < this->size()) {
        std::size_t const place = places_.size();
        places_.emplace((*(this->begin() + static_cast<std::ptrdiff_t>(place))).first, place);
      }
    }
    return {this->end() - 1, true};
  }
  template <class Name>
  T& operator[](Name const& name) {
    return emplace(name, T()).first->second;
  }

  template <class Name>
  const_iterator find(Name const& name) const {
    if (places_.size() < this->size()) return Base::find(name);
    auto const found = places_.find(name);
    if (found == places_.end()) return this->end();
    return this->begin() + static_cast<std::ptrdiff_t>(found->second);
  }
  template <class Name>
  iterator find(Name const& name) {
    auto const at = std::as_const(*this).find(name);
    return this->begin() + (at - this->cbegin());
  }

  template <class Which>
  auto erase(Which&& which) {
    places_.clear();
    return Base::erase(std::forward<Which>(which));
  }

 private:
  static constexpr std::size_t few = 32;

  std::map<Key, std::size_t, std::less<>> places_;  // of all members, or not used
};

using Json = nlohmann::basic_json<Members>;

}  // namespace Kest::Ctl
