#include "platform/mox/String8.h"

#include <cstring>
#include <new>
#include <ostream>

namespace Mox {

namespace {

/// FNV-1a with a final mix, so that the high bits, which choose a hash map's bucket, depend on
/// every character.
std::uint32_t hashOf(std::string_view chars) noexcept {
  std::uint32_t h = 2166136261U;
  for (char const c : chars) h = (h ^ static_cast<unsigned char>(c)) * 16777619U;
  h = (h ^ (h >> 16)) * 0x85ebca6bU;
  h = (h ^ (h >> 13)) * 0xc2b2ae35U;
  return h ^ (h >> 16);
}

}  // namespace

char const String8::noChars = '\0';

String8::String8(std::string_view chars) {
  if (chars.empty()) return;
  void* const memory = ::operator new(sizeof(Rep) + chars.size() + 1);
  rep_ = new (memory) Rep{detail::ReferenceCount<std::uint32_t>(1), hashOf(chars), chars.size()};
  std::memcpy(rep_->chars(), chars.data(), chars.size());
  rep_->chars()[chars.size()] = '\0';
}

void String8::freeRep(Rep* rep) noexcept {
  rep->~Rep();
  ::operator delete(rep);
}

std::ostream& operator<<(std::ostream& out, String8 const& s) {
  return out << s.view();
}

}  // namespace Mox
