#include <csignal>

/// Part of every program and library of a coverage build: without it, a process that a signal ends
/// would lose its counts. Each library has counts of its own, so each adds a handler before the
/// others'.

/// Hidden, so that each library calls the one that writes its own counts.
extern "C" [[gnu::visibility("hidden")]] void __gcov_dump();

namespace {

constexpr int signals[] = {SIGABRT, SIGBUS, SIGTERM};
struct sigaction before[NSIG];

void writeCounts(int signal) {
  __gcov_dump();
  sigaction(signal, &before[signal], nullptr);
  raise(signal);
}

struct AtDeath {
  AtDeath() {
    struct sigaction action {};
    action.sa_handler = writeCounts;
    action.sa_flags = SA_NODEFER;  // the library before has its turn within this one
    for (int const signal : signals) sigaction(signal, &action, &before[signal]);
  }
} const atDeath;

}  // namespace
