#pragma once

/// How often a random test is run where `runs` are worth their time in the optimised build: a fifth
/// of that in instrumented builds, where each takes ten times as long and tells of its errors by
/// itself.
constexpr int effort(int runs) {
#ifdef KEST_ADDRESS_SANITIZER
  return runs / 5;
#else
  return runs;
#endif
}
