#include "driver/sim/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "platform/mox/RangeException.h"

namespace Hardware::Kest::Sim {

namespace {

[[noreturn]] void refuse(std::string const& path, char const* what, char const* reason) {
  Mox::throwRangeException(Mox::format("%s: cannot be %s: %s", path.c_str(), what, reason));
}

[[noreturn]] void refuse(std::string const& path, char const* what, int error) {
  refuse(path, what, std::strerror(error));
}

/// An open file.
class Descriptor {
 public:
  explicit Descriptor(std::string const& path, int flags)
      : fd_(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, S_IRUSR | S_IWUSR)) {}
  Descriptor(Descriptor const&) = delete;
  Descriptor& operator=(Descriptor const&) = delete;
  ~Descriptor() {
    if (isOpen()) ::close(fd_);
  }

  bool isOpen() const { return fd_ >= 0; }
  int fd() const { return fd_; }
  /// 0, or an error number. Closed it is in any case.
  int close() { return ::close(std::exchange(fd_, -1)) == 0 ? 0 : errno; }

 private:
  int fd_;
};

void requireRegular(Descriptor const& file, std::string const& path) {
  struct stat found {};
  if (::fstat(file.fd(), &found) != 0) refuse(path, "read", errno);
  if (S_ISDIR(found.st_mode)) refuse(path, "read", EISDIR);
  if (!S_ISREG(found.st_mode)) refuse(path, "read", "it is no regular file");
}

/// 0, or an error number.
int write(Descriptor const& file, std::string_view text) {
  while (!text.empty()) {
    ssize_t const bytes = ::write(file.fd(), text.data(), text.size());
    if (bytes < 0 && errno != EINTR) return errno;
    if (bytes > 0) text.remove_prefix(static_cast<std::size_t>(bytes));
  }
  return 0;
}

/// What may be done with the file at `path` may be done with `fresh`. 0, or an error number.
int takeOwnerAndMode(Descriptor const& fresh, std::string const& path) {
  struct stat old {};
  if (::lstat(path.c_str(), &old) != 0) return errno == ENOENT ? 0 : errno;
  if (!S_ISREG(old.st_mode)) return 0;
  constexpr auto same = static_cast<uid_t>(-1);
  bool const isGroupKept = ::fchown(fresh.fd(), old.st_uid, old.st_gid) == 0 ||
                           ::fchown(fresh.fd(), same, old.st_gid) == 0;
  mode_t const mode = old.st_mode & (S_IRWXU | S_IRWXG | S_IRWXO);
  mode_t const others = mode & S_IRWXO;
  mode_t const allowed = isGroupKept ? mode : mode & (S_IRWXU | S_IRWXO | others << 3);
  return ::fchmod(fresh.fd(), allowed) == 0 ? 0 : errno;
}

/// 0, or an error number.
int writeBeside(std::string const& path, std::string const& fresh, std::string_view text) {
  // O_EXCL: never through a link that someone has put there.
  Descriptor file(fresh, O_WRONLY | O_CREAT | O_EXCL);
  if (!file.isOpen()) return errno;
  int error = takeOwnerAndMode(file, path);
  if (error == 0) error = write(file, text);
  int const closing = file.close();
  return error != 0 ? error : closing;
}

}  // namespace

std::optional<std::string> readFileIfAny(std::string const& path) {
  Descriptor const file(path, O_RDONLY);
  if (!file.isOpen() && errno == ENOENT) return std::nullopt;
  if (!file.isOpen()) refuse(path, "read", errno);
  requireRegular(file, path);
  std::string text;
  std::array<char, 65536> block{};
  while (ssize_t const bytes = ::read(file.fd(), block.data(), block.size())) {
    if (bytes < 0) refuse(path, "read", errno);
    text.append(block.data(), static_cast<std::size_t>(bytes));
    if (text.size() > largestFile) {
      Mox::throwRangeException(
          Mox::format("%s: expected at most %zu MiB, found more", path.c_str(), largestFile >> 20));
    }
  }
  return text;
}

std::string readFile(std::string const& path) {
  std::optional<std::string> text = readFileIfAny(path);
  if (!text) refuse(path, "read", ENOENT);
  return *std::move(text);
}

void replaceFile(std::string const& path, std::string_view text) {
  if (text.size() > largestFile) refuse(path, "written", EFBIG);
  std::string const fresh = path + ".tmp";
  std::remove(fresh.c_str());  // left by a process that was killed
  int error = writeBeside(path, fresh, text);
  if (error == 0 && std::rename(fresh.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) return;
  std::remove(fresh.c_str());
  refuse(path, "written", error);
}

bool appendToFile(std::string const& path, std::size_t bytes, std::string_view text) {
  Descriptor file(path, O_WRONLY | O_APPEND | O_NOFOLLOW);
  struct stat found {};
  if (!file.isOpen() || ::fstat(file.fd(), &found) != 0) return false;
  if (!S_ISREG(found.st_mode) || std::cmp_not_equal(found.st_size, bytes)) return false;
  int const error = write(file, text);
  return file.close() == 0 && error == 0;
}

}  // namespace Hardware::Kest::Sim
