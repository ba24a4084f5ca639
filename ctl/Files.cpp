#include "ctl/Files.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "agent/wire/Protocol.h"
#include "ctl/Failure.h"
#include "ctl/Text.h"

namespace Kest::Ctl {

namespace {

constexpr std::size_t longestFile = std::size_t{1} << 30;  // bytes: no slice file comes near
constexpr char const* standardInput = "standard input";
constexpr mode_t permissions = 0777;
constexpr mode_t modeOfNewFiles = 0666;  // less the umask

/// JSON could not carry other bytes, and what the agent got would not be what the file says.
void requireUtf8(std::string_view content, std::string const& name) {
  std::size_t number = 1;
  while (!content.empty()) {
    std::size_t const end = std::min(content.find('\n'), content.size() - 1);
    if (!isUtf8(content.substr(0, end + 1))) {
      throw usageFailure(name + ":" + std::to_string(number) + ": expected UTF-8");
    }
    content.remove_prefix(end + 1);
    ++number;
  }
}

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File opened(std::string const& file) {
  File stream(std::fopen(file.c_str(), "rb"));
  if (!stream) throw usageFailure(file + " cannot be read: " + std::strerror(errno));
  return stream;
}

std::string streamBytes(std::FILE* stream, std::string const& name, std::size_t most) {
  std::string content;
  std::array<char, 65536> block{};
  while (std::size_t const bytes = std::fread(block.data(), 1, block.size(), stream)) {
    content.append(block.data(), bytes);
    if (content.size() > most) {
      throw usageFailure(name + " is too long: more than " + std::to_string(most) + " bytes");
    }
  }
  if (std::ferror(stream) != 0) {
    throw usageFailure(name + " cannot be read: " + std::strerror(errno));
  }
  return content;
}

std::string streamContent(std::FILE* stream, std::string const& name) {
  std::string content = streamBytes(stream, name, Wire::longestTrustedRequest);
  requireUtf8(content, name);
  return content;
}

bool isSame(struct stat const& a, struct stat const& b) {
  return a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
         a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// Waits where the descriptor does not block. False, with `errno`, when it cannot be written.
bool writeAll(int fd, std::string_view text) {
  while (!text.empty()) {
    ssize_t const written = write(fd, text.data(), text.size());
    if (written >= 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      pollfd waiting{fd, POLLOUT, 0};
      poll(&waiting, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

/// Closes the descriptor whatever happens. `errno` is that of the first step that failed.
bool writeAndClose(int fd, std::string const& content, bool toDisk) {
  bool const good = writeAll(fd, content) && (!toDisk || fsync(fd) == 0);
  int const why = errno;
  bool const closed = close(fd) == 0;
  if (!good) errno = why;
  return good && closed;
}

/// Where symbolic links lead to, for a file that exists.
std::string resolved(std::string const& file) {
  std::unique_ptr<char, void (*)(void*)> const path(realpath(file.c_str(), nullptr), &std::free);
  return path ? path.get() : file;
}

bool replace(std::string const& file, std::string const& content) {
  struct stat old {};
  bool const exists = stat(file.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) {
    int const fd = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    return fd >= 0 && writeAndClose(fd, content, false);
  }
  std::string const target = resolved(file);
  std::string const fresh = target + "." + std::to_string(getpid()) + ".new";
  int const fd = open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, modeOfNewFiles);
  if (fd < 0) return false;
  bool const hasMode = !exists || fchmod(fd, old.st_mode & permissions) == 0;
  if (writeAndClose(fd, content, true) && hasMode && rename(fresh.c_str(), target.c_str()) == 0) {
    return true;
  }
  int const why = errno;
  unlink(fresh.c_str());
  errno = why;
  return false;
}

}  // namespace

std::string bytesOf(std::string const& file) {
  File const stream = opened(file);
  struct stat before {};
  struct stat after {};
  bool const isKnown = fstat(fileno(stream.get()), &before) == 0;
  std::string content = streamBytes(stream.get(), file, longestFile);
  if (isKnown && S_ISREG(before.st_mode) && fstat(fileno(stream.get()), &after) == 0 &&
      !isSame(before, after)) {
    throw usageFailure(file + " changed while it was read");
  }
  return content;
}

std::string bytesOfInput() {
  return streamBytes(stdin, standardInput, longestFile);
}

std::string contentOf(std::string const& file) {
  return streamContent(opened(file).get(), file);
}

std::string contentOfInput() {
  return streamContent(stdin, standardInput);
}

void replaceFile(std::string const& file, std::string const& content) {
  if (replace(file, content)) return;
  throw usageFailure(file + " cannot be written: " + std::strerror(errno));
}

bool print(std::string const& text) {
  if (writeAll(STDOUT_FILENO, text)) return true;
  if (errno == EPIPE) return false;
  throw Failure(Exit::failed, "output",
                std::string("standard output cannot be written: ") + std::strerror(errno));
}

}  // namespace Kest::Ctl
