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

std::string streamContent(std::FILE* stream, std::string const& name) {
  std::string content;
  std::array<char, 65536> block{};
  while (std::size_t const bytes = std::fread(block.data(), 1, block.size(), stream)) {
    content.append(block.data(), bytes);
    if (content.size() > Wire::longestRequest) {
      throw usageFailure(name + " is too long: more than " + std::to_string(Wire::longestRequest) +
                         " bytes");
    }
  }
  if (std::ferror(stream) != 0) {
    throw usageFailure(name + " cannot be read: " + std::strerror(errno));
  }
  requireUtf8(content, name);
  return content;
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

std::string contentOf(std::string const& file) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> const stream(std::fopen(file.c_str(), "rb"),
                                                               &std::fclose);
  if (!stream) throw usageFailure(file + " cannot be read: " + std::strerror(errno));
  return streamContent(stream.get(), file);
}

std::string contentOfInput() {
  return streamContent(stdin, "standard input");
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
