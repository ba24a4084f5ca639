#pragma once

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// Files, read and replaced as a whole.
namespace Text {

/// An open file descriptor, closed with this.
class Descriptor {
 public:
  explicit Descriptor(int fd = -1) noexcept : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() {
    if (isOpen()) ::close(fd_);
  }

  int fd() const noexcept { return fd_; }
  bool isOpen() const noexcept { return fd_ >= 0; }
  /// @return 0, or an error number; it is closed in any case
  int close() noexcept;

 private:
  int fd_;
};

/// Whether a file that was looked at twice is the same one and has not been written to in between.
bool isSameFile(struct stat const& a, struct stat const& b);

/// A regular file, open for reading. Never waits for the other end of a pipe.
/// @param found what the file was when it was opened
/// @throw FileError "PATH: cannot be read: REASON"
Descriptor openRegular(std::string const& path, struct stat& found);

/// The whole content of a regular file of at most `most` bytes, a number of MiB.
/// @throw FileError when it cannot be read, or is larger
std::string readFile(std::string const& path, std::size_t most);
/// The same; none: there is no such file.
std::optional<std::string> readFileIfAny(std::string const& path, std::size_t most);

/// Appends to `text` all that there is left to read, at most a little more than `most` bytes.
/// @return 0, or an error number; EFBIG: there is more
int readAll(int fd, std::size_t most, std::string& text);
/// Waits where the descriptor does not block.
/// @return 0, or an error number
int writeAll(int fd, std::string_view text);

/// How `replaceFile` goes about it.
struct Replacement {
  std::string fresh;   ///< beside the file: where its new content is written first; must not exist
  mode_t mode = 0600;  ///< of a file that was not there before, less the umask
  bool isSynced = false;  ///< whether the content is on the disk before the old one goes
};

/// Replaces the file, so that whoever reads it meanwhile sees all of the old text or all of the
/// new. When that fails the file stays as it is, and nothing is left beside it.
///
/// A file that was there keeps its mode and, as far as the process may give it away, its owner and
/// group; without its group it lets the group do no more than others.
/// @return 0, or an error number
int replaceFile(std::string const& path, std::string_view text, Replacement const& how);

}  // namespace Text
