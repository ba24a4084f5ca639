#include "test/exhaustion/Calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <iterator>

namespace Exhaustion {

namespace {

constexpr int half = -1;  // no error: only a part of the bytes is transferred

struct Function {
  char const* name;
  int ways[6];  // error numbers, ended by 0
};

constexpr Function functions[] = {
    {"accept4", {EAGAIN, ECONNABORTED, EINTR, EMFILE, ENFILE, ENOMEM}},
    {"bind", {EACCES, EADDRINUSE, ENOSPC}},
    {"close", {EINTR, EIO}},
    {"connect", {EACCES, EAGAIN, ECONNREFUSED, EINTR}},
    {"fchmod", {EIO, EPERM}},
    {"fchown", {EIO, EPERM}},
    {"fclose", {EIO, ENOSPC}},
    {"flock", {EINTR, ENOLCK, EWOULDBLOCK}},
    {"fopen", {EACCES, EINTR, EMFILE, ENOMEM}},
    {"fork", {EAGAIN, ENOMEM}},
    {"fread", {EINTR, EIO}},
    {"fstat", {EIO}},
    {"fwrite", {EIO, ENOSPC}},
    {"getrlimit", {EPERM}},
    {"getsockopt", {ENOBUFS}},
    {"kill", {EPERM, ESRCH}},
    {"listen", {EADDRINUSE}},
    {"lstat", {EACCES, EIO, ENOENT}},
    {"open", {EACCES, EINTR, EMFILE, ENOSPC}},
    {"pipe2", {EMFILE, ENFILE, ENOMEM}},
    {"poll", {EINTR, ENOMEM}},
    {"prctl", {EINVAL}},
    {"read", {EAGAIN, EINTR, EIO}},
    {"recv", {EAGAIN, ECONNRESET, EINTR, ENOMEM, half}},
    {"remove", {EACCES, ENOENT}},
    {"rename", {EACCES, EIO, ENOSPC}},
    {"send", {EAGAIN, ECONNRESET, EINTR, ENOBUFS, EPIPE, half}},
    {"setenv", {ENOMEM}},
    {"setrlimit", {EPERM}},
    {"signalfd", {EMFILE, ENOMEM}},
    {"sigprocmask", {EINVAL}},
    {"sigtimedwait", {EINTR, EINVAL}},
    {"sigwaitinfo", {EAGAIN, EINTR}},
    {"socket", {EMFILE, ENFILE, ENOMEM}},
    {"unlink", {EACCES, EBUSY}},
    {"waitpid", {ECHILD}},
    {"write", {EINTR, EIO, ENOSPC}},
};

/// Whether the error does not last, so that the product may try again without end.
bool passes(int error) {
  return error == EINTR || error == ECONNABORTED || error == half;
}

struct Plan {
  std::size_t left = 0;  // calls up to the one that goes wrong; 0: it has
  std::size_t way = 0;
  Lasting lasting = Lasting::once;
  Function const* failing = nullptr;
  int error = 0;
  bool isOutOfWays = false;
};

Plan plan;
bool isPlanned = false;
bool isTestsOwn = true;  // false only while there is a plan
std::FILE* brokenFile = nullptr;
unsigned interruptionsLeft = 0;
bool isWaitVirtual = false;
std::int64_t virtualNanoseconds = 0;

Function const& functionNamed(char const* name) {
  for (Function const& function : functions) {
    if (std::strcmp(function.name, name) == 0) return function;
  }
  std::abort();
}

/// Whether the function needs a new descriptor: they run out for all such functions.
bool takesDescriptor(Function const& function) {
  return std::find(std::begin(function.ways), std::end(function.ways), EMFILE) !=
         std::end(function.ways);
}

/// Whether a child has ended; waiting for that takes real time.
bool hasChild() {
  siginfo_t info;
  return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

bool isRunningOn(Function const& function) {
  bool const isOutOfDescriptors = plan.error == EMFILE || plan.error == ENFILE;
  return plan.failing == &function || (isOutOfDescriptors && takesDescriptor(function));
}

/// The way of that number in which the function goes wrong; 0: there is none.
int wayOf(Function const& function, std::size_t number, Lasting lasting) {
  for (int const error : function.ways) {
    bool const counts = lasting == Lasting::once || !passes(error);
    if (counts && number-- == 0) return error;
  }
  return 0;
}

/// How this call of that function goes wrong: an error number or `half`; 0: it works.
int errorOf(char const* name) {
  if (!isPlanned || isTestsOwn) return 0;
  Function const& function = functionNamed(name);
  if (plan.left == 0) {
    bool const again = plan.lasting == Lasting::forGood && plan.failing != nullptr;
    return again && isRunningOn(function) ? plan.error : 0;
  }
  if (--plan.left > 0) return 0;
  plan.error = wayOf(function, plan.way, plan.lasting);
  plan.isOutOfWays = plan.error == 0;
  if (plan.error != 0) plan.failing = &function;
  return plan.error;
}

/// The C library's function of that name.
template <class Function>
Function* real(char const* name, Function*) {
  void* const found = dlsym(RTLD_NEXT, name);
  if (found == nullptr) std::abort();
  return reinterpret_cast<Function*>(found);
}

/// Calls the C library's function, unless it is to go wrong: then the result is -1.
template <class Function, class... Given>
auto call(char const* name, Function* function, Given... given) {
  int const error = errorOf(name);
  if (error == 0) return real(name, function)(given...);
  errno = error;
  return static_cast<decltype(function(given...))>(-1);
}

/// The same for a transfer of up to that many bytes, which can be cut short.
template <class Transfer>
ssize_t transfer(char const* name, std::size_t bytes, std::size_t cut, Transfer const& carryOut) {
  int const error = errorOf(name);
  if (error == 0) return carryOut(bytes);
  if (error == half) return carryOut(cut);
  errno = error;
  return -1;
}

}  // namespace

FailingCall::FailingCall(std::size_t at, std::size_t way, Lasting lasting) noexcept {
  plan = {at, way, lasting, nullptr, 0, false};
  isPlanned = true;
  isTestsOwn = false;
}

FailingCall::~FailingCall() {
  isPlanned = false;
  isTestsOwn = true;
}

bool FailingCall::hasCome() const noexcept {
  return plan.failing != nullptr;
}

bool FailingCall::isOutOfWays() const noexcept {
  return plan.isOutOfWays;
}

std::string FailingCall::what() const {
  if (plan.failing == nullptr) return "";
  std::string const how = plan.error == half ? "half" : strerrorname_np(plan.error);
  return std::string(plan.failing->name) + " " + how;
}

TestsOwnCalls::TestsOwnCalls() noexcept : wereOwn_(isTestsOwn) {
  isTestsOwn = true;
}

TestsOwnCalls::~TestsOwnCalls() {
  isTestsOwn = wereOwn_;
}

std::size_t openDescriptors() {
  TestsOwnCalls const own;
  std::filesystem::directory_iterator const all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

void waitsAreVirtual(unsigned interruptions) noexcept {
  isWaitVirtual = true;
  interruptionsLeft = interruptions;
}

std::chrono::nanoseconds virtualWait() noexcept {
  return std::chrono::nanoseconds(virtualNanoseconds);
}

}  // namespace Exhaustion

/// Defines the function so that it is handed on, unless it is to go wrong.
#define KEST_HAND_ON(Result, name, parameters, ...)       \
  Result name parameters {                                \
    return call(#name, &name __VA_OPT__(, ) __VA_ARGS__); \
  }

// Visible to the libraries of the program, in the place of the system's.
#pragma GCC visibility push(default)
extern "C" {

using Exhaustion::call;
using Exhaustion::errorOf;
using Exhaustion::real;
using Exhaustion::transfer;

KEST_HAND_ON(int, accept4, (int fd, sockaddr* address, socklen_t* bytes, int flags), fd, address,
             bytes, flags)
KEST_HAND_ON(int, bind, (int fd, sockaddr const* address, socklen_t bytes) noexcept, fd, address,
             bytes)
KEST_HAND_ON(int, connect, (int fd, sockaddr const* address, socklen_t bytes), fd, address, bytes)
KEST_HAND_ON(int, fchmod, (int fd, mode_t mode) noexcept, fd, mode)
KEST_HAND_ON(int, flock, (int fd, int operation) noexcept, fd, operation)
KEST_HAND_ON(int, fchown, (int fd, uid_t user, gid_t group) noexcept, fd, user, group)
KEST_HAND_ON(pid_t, fork, () noexcept)
KEST_HAND_ON(int, fstat, (int fd, struct stat* file) noexcept, fd, file)
KEST_HAND_ON(int, getrlimit, (__rlimit_resource_t resource, rlimit* limit) noexcept, resource,
             limit)
KEST_HAND_ON(int, getsockopt,
             (int fd, int level, int option, void* value, socklen_t* bytes) noexcept, fd, level,
             option, value, bytes)
KEST_HAND_ON(int, kill, (pid_t pid, int signal) noexcept, pid, signal)
KEST_HAND_ON(int, listen, (int fd, int backlog) noexcept, fd, backlog)
KEST_HAND_ON(int, lstat, (char const* path, struct stat* file) noexcept, path, file)
KEST_HAND_ON(int, pipe2, (int* ends, int flags) noexcept, ends, flags)
KEST_HAND_ON(int, poll, (pollfd * fds, nfds_t count, int timeout), fds, count, timeout)
KEST_HAND_ON(ssize_t, read, (int fd, void* data, size_t bytes), fd, data, bytes)
KEST_HAND_ON(int, remove, (char const* path) noexcept, path)
KEST_HAND_ON(int, rename, (char const* from, char const* to) noexcept, from, to)
KEST_HAND_ON(int, setenv, (char const* name, char const* value, int replace) noexcept, name, value,
             replace)
KEST_HAND_ON(int, setrlimit, (__rlimit_resource_t resource, rlimit const* limit) noexcept, resource,
             limit)
KEST_HAND_ON(int, signalfd, (int fd, sigset_t const* signals, int flags) noexcept, fd, signals,
             flags)
KEST_HAND_ON(int, sigprocmask, (int how, sigset_t const* set, sigset_t* old) noexcept, how, set,
             old)
KEST_HAND_ON(int, sigwaitinfo, (sigset_t const* signals, siginfo_t* info), signals, info)
KEST_HAND_ON(int, socket, (int domain, int type, int protocol) noexcept, domain, type, protocol)
KEST_HAND_ON(int, unlink, (char const* path) noexcept, path)
KEST_HAND_ON(pid_t, waitpid, (pid_t pid, int* status, int options), pid, status, options)
KEST_HAND_ON(ssize_t, write, (int fd, void const* data, size_t bytes), fd, data, bytes)

/// The descriptor is gone, whatever is answered.
int close(int fd) {
  int const error = errorOf("close");
  int const result = real("close", &close)(fd);
  if (error == 0) return result;
  errno = error;
  return -1;
}

int fclose(FILE* file) {
  int const error = errorOf("fclose");
  if (file == Exhaustion::brokenFile) Exhaustion::brokenFile = nullptr;
  int const result = real("fclose", &fclose)(file);
  if (error == 0) return result;
  errno = error;
  return EOF;
}

int ferror(FILE* file) noexcept {
  return file == Exhaustion::brokenFile ? 1 : real("ferror", &ferror)(file);
}

FILE* fopen(char const* path, char const* mode) {
  int const error = errorOf("fopen");
  if (error == 0) return real("fopen", &fopen)(path, mode);
  errno = error;
  return nullptr;
}

size_t fread(void* data, size_t size, size_t count, FILE* file) {
  int const error = errorOf("fread");
  if (error == 0) return real("fread", &fread)(data, size, count, file);
  Exhaustion::brokenFile = file;
  errno = error;
  return 0;
}

size_t fwrite(void const* data, size_t size, size_t count, FILE* file) {
  int const error = errorOf("fwrite");
  if (error == 0) return real("fwrite", &fwrite)(data, size, count, file);
  size_t const written = real("fwrite", &fwrite)(data, size, count / 2, file);
  errno = error;
  return written;
}

int open(char const* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  mode_t const mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  return call("open", &open, path, flags, mode);
}

int prctl(int option, ...) noexcept {
  va_list arguments;
  va_start(arguments, option);
  unsigned long const argument = va_arg(arguments, unsigned long);
  va_end(arguments);
  return call("prctl", &prctl, option, argument);
}

ssize_t recv(int fd, void* data, size_t bytes, int flags) {
  return transfer("recv", bytes, 1,
                  [&](size_t now) { return real("recv", &recv)(fd, data, now, flags); });
}

ssize_t send(int fd, void const* data, size_t bytes, int flags) {
  return transfer("send", bytes, (bytes + 1) / 2,
                  [&](size_t now) { return real("send", &send)(fd, data, now, flags); });
}

int sigtimedwait(sigset_t const* signals, siginfo_t* info, timespec const* timeout) {
  using Exhaustion::interruptionsLeft;
  if (!Exhaustion::isWaitVirtual || Exhaustion::hasChild()) {
    return call("sigtimedwait", &sigtimedwait, signals, info, timeout);
  }
  bool const isInterrupted = interruptionsLeft > 0;
  if (isInterrupted) --interruptionsLeft;
  timespec const atOnce{};
  int const result = call("sigtimedwait", &sigtimedwait, signals, info, &atOnce);
  if (result >= 0 || errno != EAGAIN) return result;
  std::int64_t const wait = std::int64_t{timeout->tv_sec} * 1000000000 + timeout->tv_nsec;
  Exhaustion::virtualNanoseconds += isInterrupted ? wait / 2 : wait;
  if (Exhaustion::virtualWait() > Exhaustion::longestVirtualWait) return SIGTERM;
  errno = isInterrupted ? EINTR : EAGAIN;
  return -1;
}

int clock_gettime(clockid_t clock, timespec* now) noexcept {
  int const result = real("clock_gettime", &clock_gettime)(clock, now);
  if (clock == CLOCK_MONOTONIC && Exhaustion::virtualNanoseconds != 0) {
    std::int64_t const nanoseconds = now->tv_nsec + Exhaustion::virtualNanoseconds;
    now->tv_sec += static_cast<time_t>(nanoseconds / 1000000000);
    now->tv_nsec = static_cast<decltype(now->tv_nsec)>(nanoseconds % 1000000000);
  }
  return result;
}
}
#pragma GCC visibility pop
