#include "agent/process/StandardStreams.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <string>

namespace Kest::Agent {

namespace {

/// Makes a pipe or terminal non-blocking for this process alone. Other users' pipes and terminals,
/// which the process may not open, stay as they are.
void doNotBlock(int fd) {
  struct stat file {};
  bool const isPipe = fstat(fd, &file) == 0 && S_ISFIFO(file.st_mode);
  if (!isPipe && isatty(fd) != 1) return;
  std::string const path = "/proc/self/fd/" + std::to_string(fd);
  int const own = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (own < 0) return;
  dup2(own, fd);
  close(own);
}

int notBlocking(int fd) {
  doNotBlock(fd);
  return fd;
}

/// The C library's writer: writes everything to a stream.
ssize_t writeTo(void* stream, char const* text, size_t bytes) {
  static_cast<std::ostream*>(stream)->write(text, static_cast<std::streamsize>(bytes)).flush();
  return static_cast<ssize_t>(bytes);
}

/// Null when there is no memory.
std::FILE* fileOf(std::ostream& stream) {
  std::FILE* const file = fopencookie(&stream, "w", {nullptr, &writeTo, nullptr, nullptr});
  if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

}  // namespace

StandardStreams::StandardStreams()
    : out_(notBlocking(STDOUT_FILENO)),
      err_(notBlocking(STDERR_FILENO)),
      coutBefore_(std::cout.rdbuf(&out_)),
      cerrBefore_(std::cerr.rdbuf(&err_)),
      stderrBefore_(stderr) {
  std::signal(SIGPIPE, SIG_IGN);
  std::FILE* const file = fileOf(std::cerr);
  if (file != nullptr) stderr = file;
}

StandardStreams::~StandardStreams() {
  std::cout.rdbuf(coutBefore_);
  std::cerr.rdbuf(cerrBefore_);
  if (stderr == stderrBefore_) return;
  std::fclose(stderr);
  stderr = stderrBefore_;
}

void StandardStreams::loopIs(ActivityLoop* loop) {
  out_.loopIs(loop);
  err_.loopIs(loop);
}

void StandardStreams::drain(std::chrono::milliseconds most) {
  auto const until = std::chrono::steady_clock::now() + most;
  out_.drain(until);
  err_.drain(until);
}

void StandardStreams::forget() noexcept {
  out_.forget();
  err_.forget();
}

}  // namespace Kest::Agent
