#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "platform/mox/Activity.h"

/// How long the library takes to be loaded by a program that has the platform already, as the
/// agent does, in seconds. A process loads it once: whoever wants a median runs more of them.
int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s LIBRARY\n", argv[0]);
    return 2;
  }
  Mox::activityManager();
  auto const start = std::chrono::steady_clock::now();
  void const* const library = dlopen(argv[1], RTLD_LAZY | RTLD_LOCAL);
  auto const end = std::chrono::steady_clock::now();
  if (library == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  std::printf("%.9f\n", std::chrono::duration<double>(end - start).count());
}
