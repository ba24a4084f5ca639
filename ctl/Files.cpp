#include "ctl/Files.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "agent/wire/Protocol.h"
#include "ctl/Failure.h"
#include "text/Escapes.h"
#include "text/File.h"

namespace Kest::Ctl {

namespace {

constexpr std::size_t longestFile = std::size_t{1} << 30;  // bytes: no slice file comes near
constexpr char const* standardInput = "standard input";

/// JSON could not carry other bytes, and what the agent got would not be what the file says.
void requireUtf8(std::string_view content, std::string const& name) {
  std::size_t number = 1;
  while (!content.empty()) {
    std::size_t const end = std::min(content.find('\n'), content.size() - 1);
    if (!Text::isUtf8(content.substr(0, end + 1))) {
      throw usageFailure(name + ":" + std::to_string(number) + ": expected UTF-8");
    }
    content.remove_prefix(end + 1);
    ++number;
  }
}

Text::Descriptor opened(std::string const& file) {
  Text::Descriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened.isOpen()) throw usageFailure(file + " cannot be read: " + std::strerror(errno));
  return opened;
}

std::string allOf(int fd, std::string const& name, std::size_t most) {
  std::string content;
  int const error = Text::readAll(fd, most, content);
  if (error == EFBIG) {
    throw usageFailure(name + " is too long: more than " + std::to_string(most) + " bytes");
  }
  if (error != 0) throw usageFailure(name + " cannot be read: " + std::strerror(error));
  return content;
}

std::string textOf(int fd, std::string const& name) {
  std::string content = allOf(fd, name, Wire::longestTrustedRequest);
  requireUtf8(content, name);
  return content;
}

/// Where symbolic links lead to, for a file that exists.
std::string resolved(std::string const& file) {
  std::unique_ptr<char, void (*)(void*)> const path(realpath(file.c_str(), nullptr), &std::free);
  return path ? path.get() : file;
}

/// 0, or an error number.
int replace(std::string const& file, std::string const& content) {
  struct stat old {};
  if (stat(file.c_str(), &old) == 0 && !S_ISREG(old.st_mode)) {
    Text::Descriptor special(open(file.c_str(), O_WRONLY | O_CLOEXEC));
    if (!special.isOpen()) return errno;
    int const error = Text::writeAll(special.fd(), content);
    int const closing = special.close();
    return error != 0 ? error : closing;
  }
  std::string const target = resolved(file);
  constexpr mode_t modeOfNewFiles = 0666;
  return Text::replaceFile(
      target, content, {target + "." + std::to_string(getpid()) + ".new", modeOfNewFiles, true});
}

}  // namespace

std::string bytesOf(std::string const& file) {
  Text::Descriptor const stream = opened(file);
  struct stat before {};
  struct stat after {};
  bool const isKnown = fstat(stream.fd(), &before) == 0 && S_ISREG(before.st_mode);
  std::string content = allOf(stream.fd(), file, longestFile);
  if (isKnown && fstat(stream.fd(), &after) == 0 && !Text::isSameFile(before, after)) {
    throw usageFailure(file + " changed while it was read");
  }
  return content;
}

std::string bytesOfInput() {
  return allOf(STDIN_FILENO, standardInput, longestFile);
}

std::string contentOf(std::string const& file) {
  return textOf(opened(file).fd(), file);
}

std::string contentOfInput() {
  return textOf(STDIN_FILENO, standardInput);
}

void replaceFile(std::string const& file, std::string const& content) {
  int const error = replace(file, content);
  if (error != 0) throw usageFailure(file + " cannot be written: " + std::strerror(error));
}

bool print(std::string const& text) {
  int const error = Text::writeAll(STDOUT_FILENO, text);
  if (error != 0 && error != EPIPE) {
    throw Failure(Exit::failed, "output",
                  std::string("standard output cannot be written: ") + std::strerror(error));
  }
  return error == 0;
}

}  // namespace Kest::Ctl
