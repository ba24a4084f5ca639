#include "text/File.h"

#include <fcntl.h>
#include <poll.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "text/FileError.h"

namespace Text {

namespace {

[[noreturn]] void refuseUnreadable(std::string const& path, char const* reason) {
  throw FileError(path, std::string("cannot be read: ") + reason);
}

int openAnyhow(std::string const& path, int flags, mode_t mode = 0) {
  int fd = -1;
  do {
    fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  } while (fd < 0 && errno == EINTR);
  return fd;
}

/// Not open when there is no such file.
Descriptor openRegularIfAny(std::string const& path, struct stat& found) {
  Descriptor file(openAnyhow(path, O_RDONLY | O_NONBLOCK | O_NOCTTY));
  if (!file.isOpen() && errno == ENOENT) return file;
  if (!file.isOpen() || ::fstat(file.fd(), &found) != 0) {
    refuseUnreadable(path, std::strerror(errno));
  }
  if (!S_ISREG(found.st_mode)) refuseUnreadable(path, "it is no regular file");
  return file;
}

/// Whoever may do something with the file at `path` may do the same with `fresh`. 0, or an error
/// number.
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

int sync(Descriptor const& file) {
  return ::fsync(file.fd()) == 0 ? 0 : errno;
}

int writeFresh(std::string const& path, std::string_view text, Replacement const& how) {
  // O_EXCL: never through a link that someone has put there.
  Descriptor file(openAnyhow(how.fresh, O_WRONLY | O_CREAT | O_EXCL, how.mode));
  if (!file.isOpen()) return errno;
  int error = takeOwnerAndMode(file, path);
  if (error == 0) error = writeAll(file.fd(), text);
  if (error == 0 && how.isSynced) error = sync(file);
  int const closing = file.close();
  return error != 0 ? error : closing;
}

/// The name of a file is on the disk once its folder is.
int syncFolderOf(std::string const& path) {
  std::size_t const slash = path.rfind('/');
  std::string const folder = slash == path.npos ? "." : path.substr(0, slash + 1);
  Descriptor const opened(openAnyhow(folder, O_RDONLY | O_DIRECTORY));
  return opened.isOpen() ? sync(opened) : errno;
}

}  // namespace

int Descriptor::close() noexcept {
  return ::close(std::exchange(fd_, -1)) == 0 ? 0 : errno;
}

bool isSameFile(struct stat const& a, struct stat const& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

Descriptor openRegular(std::string const& path, struct stat& found) {
  Descriptor file = openRegularIfAny(path, found);
  if (!file.isOpen()) refuseUnreadable(path, std::strerror(ENOENT));
  return file;
}

std::optional<std::string> readFileIfAny(std::string const& path, std::size_t most) {
  struct stat found {};
  Descriptor const file = openRegularIfAny(path, found);
  if (!file.isOpen()) return std::nullopt;
  std::string text;
  int const error = readAll(file.fd(), most, text);
  if (error == EFBIG) {
    throw FileError(path, "expected at most " + std::to_string(most >> 20) + " MiB, found more");
  }
  if (error != 0) refuseUnreadable(path, std::strerror(error));
  return text;
}

std::string readFile(std::string const& path, std::size_t most) {
  std::optional<std::string> text = readFileIfAny(path, most);
  if (!text) refuseUnreadable(path, std::strerror(ENOENT));
  return *std::move(text);
}

int readAll(int fd, std::size_t most, std::string& text) {
  std::array<char, 65536> block{};
  while (true) {
    ssize_t const bytes = ::read(fd, block.data(), block.size());
    if (bytes == 0) return 0;
    if (bytes < 0 && errno != EINTR) return errno;
    if (bytes > 0) text.append(block.data(), static_cast<std::size_t>(bytes));
    if (text.size() > most) return EFBIG;
  }
}

int writeAll(int fd, std::string_view text) {
  while (!text.empty()) {
    ssize_t const bytes = ::write(fd, text.data(), text.size());
    if (bytes >= 0) {
      text.remove_prefix(static_cast<std::size_t>(bytes));
    } else if (errno == EAGAIN) {
      pollfd waiting{fd, POLLOUT, 0};
      ::poll(&waiting, 1, -1);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int replaceFile(std::string const& path, std::string_view text, Replacement const& how) {
  int error = writeFresh(path, text, how);
  if (error == EEXIST) return error;  // it is somebody else's
  if (error == 0 && std::rename(how.fresh.c_str(), path.c_str()) != 0) error = errno;
  if (error != 0) {
    std::remove(how.fresh.c_str());
    return error;
  }
  return how.isSynced ? syncFolderOf(path) : 0;
}

}  // namespace Text
