#include "driver/sim/File.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/mox/RangeException.h"

namespace Hardware::Kest::Sim {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File opened(std::string const& path, char const* mode) {
  return {std::fopen(path.c_str(), mode), &std::fclose};
}

[[noreturn]] void refuse(std::string const& path, char const* what, int error) {
  Mox::throwRangeException(
      Mox::format("%s: cannot be %s: %s", path.c_str(), what, std::strerror(error)));
}

/// 0, or an error number.
int writeNewFile(std::string const& path, std::string_view text) {
  errno = 0;
  File file = opened(path, "wbxe");  // x: never through a link that someone has put there
  if (!file) return errno;
  bool const written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
  bool const closed = std::fclose(file.release()) == 0;
  if (written && closed) return 0;
  return errno != 0 ? errno : EIO;
}

}  // namespace

std::optional<std::string> readFileIfAny(std::string const& path) {
  File const file = opened(path, "rbe");
  if (!file && errno == ENOENT) return std::nullopt;
  if (!file) refuse(path, "read", errno);
  std::string text;
  char block[4096];
  while (std::size_t const bytes = std::fread(block, 1, sizeof block, file.get())) {
    text.append(block, bytes);
  }
  if (std::ferror(file.get()) != 0) refuse(path, "read", errno);
  return text;
}

std::string readFile(std::string const& path) {
  std::optional<std::string> text = readFileIfAny(path);
  if (!text) refuse(path, "read", ENOENT);
  return *std::move(text);
}

void replaceFile(std::string const& path, std::string_view text) {
  std::string const fresh = path + ".tmp";
  std::remove(fresh.c_str());  // left by a process that was killed
  int error = writeNewFile(fresh, text);
  if (error == 0 && std::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) return;
  std::remove(fresh.c_str());
  refuse(path, "written", error);
}

}  // namespace Hardware::Kest::Sim
