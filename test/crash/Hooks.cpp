// A library that is the agent's driver, and is preloaded too: it kills its process at a chosen
// moment of its driver calls. It stands in front of the simulated driver's operations and of the C
// library's functions with which that writes its state file. The moments are counted through all
// calls:
//
//   a call begins; half of what changes is written, or half of a new file; all of it is; the new
//   file is in its place; the call ends.
//
// SIGKILL leaves the process no way to tidy up. What the kernel has been told is not lost, as it
// would be if the machine went down: that is not what is tested.

#include <dlfcn.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "test/crash/Hooks.h"

namespace {

unsigned moments = 0;
bool isInCall = false;

/// The function that this library's `function` stands in front of. It has the same name.
template <class Function>
Function* behind(Function* function) {
  Dl_info ours{};
  void* const address = reinterpret_cast<void*>(function);
  void* const next = dladdr(address, &ours) != 0 ? dlsym(RTLD_NEXT, ours.dli_sname) : nullptr;
  if (next == nullptr || next == address) std::abort();
  return reinterpret_cast<Function*>(next);
}

void store(void* path, char const* text, unsigned bytes) {
  std::FILE* const file = std::fopen(static_cast<char const*>(path), "w");
  if (file == nullptr || std::fwrite(text, 1, bytes, file) != bytes) std::abort();
  if (std::fclose(file) != 0) std::abort();
}

void storeDriverState() {
  using Sink = void (*)(void* context, char const* text, unsigned bytes);
  using Text = int (*)(char const* what, Sink, void* context, char* error, unsigned errorBytes);
  auto const text = reinterpret_cast<Text>(dlsym(RTLD_DEFAULT, "kestDmaSimText"));
  char error[256];
  char* const path = std::getenv(Kest::Crash::driverStateVariable);
  if (text == nullptr || text("state", &store, path, error, sizeof error) != 0) std::abort();
}

void moment() {
  static char const* const told = std::getenv(Kest::Crash::killAtVariable);
  static unsigned long const chosen = told == nullptr ? 0 : std::strtoul(told, nullptr, 10);
  if (++moments != chosen) return;
  if (!isInCall) storeDriverState();
  kill(getpid(), SIGKILL);
}

}  // namespace

namespace Hardware::Kest {

static int driven(char const*, auto* operation, auto const&... arguments) {
  moment();
  isInCall = true;
  int const answer = behind(operation)(arguments...);
  isInCall = false;
  moment();
  return answer;
}

static int driven(char const*, void (*dump)()) {
  behind(dump)();
  return 0;
}

}  // namespace Hardware::Kest

#include "test/support/DriverOperations.h"

#pragma GCC visibility push(default)
extern "C" {

/// Every other write is cut in half; the caller writes the rest next.
ssize_t write(int fd, void const* data, size_t bytes) {
  static bool isHalfWritten = false;
  auto const carryOut = behind(&write);
  if (!isInCall) return carryOut(fd, data, bytes);
  isHalfWritten = !isHalfWritten && bytes > 1;
  ssize_t const written = carryOut(fd, data, isHalfWritten ? bytes / 2 : bytes);
  moment();
  return written;
}

int rename(char const* from, char const* to) noexcept {
  int const result = behind(static_cast<int (*)(char const*, char const*)>(&rename))(from, to);
  moment();
  return result;
}

/// The port handler pauses 100 ms after each interface, hundreds of times in a test. There is no
/// kernel here that needs the time.
int usleep(useconds_t) {
  return 0;
}
}
#pragma GCC visibility pop
