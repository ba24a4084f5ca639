#include "test/fuzz/Cost.h"

#include <cstddef>

namespace Fuzz {

std::uint64_t cost = 0;

namespace {

constexpr std::size_t bytesPerEdge = 64;

}  // namespace
}  // namespace Fuzz

// The functions stand in front of libFuzzer's and of the C library's, for shared libraries too.
#define KEST_COUNTS __attribute__((no_sanitize("coverage"), visibility("default")))

extern "C" {

KEST_COUNTS void __sanitizer_cov_trace_pc() {
  ++Fuzz::cost;
}

KEST_COUNTS void* memmove(void* to, void const* from, std::size_t bytes) {
  Fuzz::cost += bytes / Fuzz::bytesPerEdge;
  void* at = to;
  if (to <= from || to >= static_cast<char const*>(from) + bytes) {
    asm volatile("rep movsb" : "+D"(at), "+S"(from), "+c"(bytes) : : "memory");
  } else {
    at = static_cast<char*>(to) + bytes - 1;
    from = static_cast<char const*>(from) + bytes - 1;
    asm volatile("std; rep movsb; cld" : "+D"(at), "+S"(from), "+c"(bytes) : : "memory");
  }
  return to;
}

KEST_COUNTS void* memcpy(void* to, void const* from, std::size_t bytes) {
  return memmove(to, from, bytes);
}

KEST_COUNTS void* memchr(void const* in, int wanted, std::size_t bytes) {
  auto const* const start = static_cast<unsigned char const*>(in);
  auto const sought = static_cast<unsigned char>(wanted);
  std::size_t at = 0;
  while (at < bytes && start[at] != sought) ++at;
  Fuzz::cost += at / Fuzz::bytesPerEdge;
  return at == bytes ? nullptr : const_cast<unsigned char*>(start + at);
}

KEST_COUNTS int memcmp(void const* a, void const* b, std::size_t bytes) {
  auto const* const left = static_cast<unsigned char const*>(a);
  auto const* const right = static_cast<unsigned char const*>(b);
  std::size_t at = 0;
  while (at < bytes && left[at] == right[at]) ++at;
  Fuzz::cost += at / Fuzz::bytesPerEdge;
  return at == bytes ? 0 : left[at] - right[at];
}
}
