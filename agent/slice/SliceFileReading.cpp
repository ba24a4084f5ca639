#include "agent/slice/SliceFileReading.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "agent/slice/FileError.h"
#include "agent/slice/SliceForm.h"

namespace Kest::Agent {

namespace {

constexpr int mostReadings = 5;

/// With the reason in `errno`.
[[noreturn]] void refuseUnreadable(std::string const& path) {
  throw FileError(path, std::string("cannot be read: ") + std::strerror(errno));
}

bool isSameTime(timespec const& a, timespec const& b) {
  return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool isSame(struct stat const& a, struct stat const& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
         isSameTime(a.st_mtim, b.st_mtim);
}

}  // namespace

/// Half of a change is no error of the file.
bool SliceFileReading::goOn() {
  try {
    return readOn();
  } catch (FileError const&) {
    if (!reader_ || !hasChanged()) throw;
    return readAgain();
  }
}

bool SliceFileReading::readOn() {
  if (!reader_) open();
  if (isAtEnd_) return reader_->goOn() || (hasChanged() && readAgain());
  std::array<char, sliceBytesAtOnce> block{};
  ssize_t const bytes = read(fd_, block.data(), block.size());
  if (bytes < 0 && errno != EINTR) refuseUnreadable(path_);
  if (bytes > 0) reader_->take({block.data(), static_cast<std::size_t>(bytes)});
  isAtEnd_ = bytes == 0;
  left_ -= std::max<ssize_t>(bytes, 0);
  return left_ >= 0 || readAgain();  // nobody catches up with a file that grows all the time
}

bool SliceFileReading::readAgain() {
  close();
  reader_ = nullptr;
  return true;
}

/// Whether the path leads to what it led to, and that is as it was.
bool SliceFileReading::hasChanged() const {
  struct stat now {};
  return stat(path_.c_str(), &now) != 0 || !isSame(before_, now);
}

/// Without waiting for the other end of a pipe, which is refused then.
void SliceFileReading::open() {
  if (++readings_ > mostReadings) {
    throw FileError(
        path_, "changed each of the " + std::to_string(mostReadings) + " times that it was read");
  }
  do {
    fd_ = ::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  } while (fd_ < 0 && errno == EINTR);
  if (fd_ < 0 || fstat(fd_, &before_) != 0) refuseUnreadable(path_);
  if (!S_ISREG(before_.st_mode)) throw FileError(path_, "cannot be read: it is no regular file");
  isAtEnd_ = false;
  left_ = before_.st_size;
  reader_ = sliceReader(path_, sliceFormOf(path_), end_);
}

void SliceFileReading::close() noexcept {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

}  // namespace Kest::Agent
