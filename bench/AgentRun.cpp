#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

/// Runs a command to its end, its output thrown away, and prints what it took: processor seconds,
/// seconds, and the most KiB that were resident. A program of its own, smaller than what it runs:
/// a process counts the memory of the one that started it as its own.

namespace {

double secondsOf(timeval const& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

[[noreturn]] void become(char** command) {
  int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (dup2(nowhere, STDOUT_FILENO) >= 0) execv(command[0], command);
  _exit(127);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s PROGRAM [ARGUMENT...]\n", argv[0]);
    return 2;
  }
  auto const start = std::chrono::steady_clock::now();
  pid_t const pid = fork();
  if (pid == 0) become(argv + 1);
  int status = 0;
  rusage used{};
  if (pid < 0 || wait4(pid, &status, 0, &used) != pid || status != 0) {
    std::fprintf(stderr, "%s did not run to its end: status %d\n", argv[1], status);
    return 1;
  }
  auto const end = std::chrono::steady_clock::now();
  std::printf("%.6f %.6f %ld\n", secondsOf(used.ru_utime) + secondsOf(used.ru_stime),
              std::chrono::duration<double>(end - start).count(), used.ru_maxrss);
}
