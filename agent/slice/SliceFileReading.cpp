#include "agent/slice/SliceFileReading.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "agent/slice/SliceForm.h"
#include "text/FileError.h"

namespace Kest::Agent {

namespace {

constexpr int mostReadings = 5;

}  // namespace

/// Half of a change is no error of the file.
bool SliceFileReading::goOn() {
  try {
    return readOn();
  } catch (Text::FileError const&) {
    if (!reader_ || !hasChanged()) throw;
    return readAgain();
  }
}

bool SliceFileReading::readOn() {
  if (!reader_) open();
  if (isAtEnd_) return reader_->goOn() || (hasChanged() && readAgain());
  std::array<char, sliceBytesAtOnce> block{};
  ssize_t const bytes = read(file_.fd(), block.data(), block.size());
  if (bytes < 0 && errno != EINTR) {
    throw Text::FileError(path_, std::string("cannot be read: ") + std::strerror(errno));
  }
  if (bytes > 0) reader_->take({block.data(), static_cast<std::size_t>(bytes)});
  isAtEnd_ = bytes == 0;
  left_ -= std::max<ssize_t>(bytes, 0);
  return left_ >= 0 || readAgain();  // nobody catches up with a file that grows all the time
}

bool SliceFileReading::readAgain() {
  file_ = Text::Descriptor();
  reader_ = nullptr;
  return true;
}

/// Whether the path leads to what it led to, and that is as it was.
bool SliceFileReading::hasChanged() const {
  struct stat now {};
  return stat(path_.c_str(), &now) != 0 || !Text::isSameFile(before_, now);
}

void SliceFileReading::open() {
  if (++readings_ > mostReadings) {
    throw Text::FileError(
        path_, "changed each of the " + std::to_string(mostReadings) + " times that it was read");
  }
  file_ = Text::openRegular(path_, before_);
  isAtEnd_ = false;
  left_ = before_.st_size;
  reader_ = sliceReader(path_, sliceFormOf(path_), end_);
}

}  // namespace Kest::Agent
