#pragma once

#include <sys/stat.h>

#include <memory>
#include <string>
#include <utility>

#include "agent/slice/SliceReader.h"
#include "text/File.h"

namespace Kest::Agent {

/// Reads a slice file in pieces. A file that changes while it is read, or is replaced, is read
/// again from its beginning, a few times. What is refused is refused with a `Text::FileError`.
class SliceFileReading {
 public:
  SliceFileReading(std::string path, SliceEnd end) : path_(std::move(path)), end_(end) {}

  /// Goes on for a millisecond at most; false when the slice is whole.
  bool goOn();
  /// The slice, once.
  Slice slice() { return reader_->slice(); }

 private:
  bool readOn();
  bool readAgain();
  bool hasChanged() const;
  void open();

  std::string path_;
  SliceEnd end_;
  std::unique_ptr<SliceReader> reader_;  // null before a reading
  Text::Descriptor file_;
  struct stat before_ {};  // of the file, when this reading began
  off_t left_ = 0;         // bytes, of those that there were then
  bool isAtEnd_ = false;   // of the file
  int readings_ = 0;       // that have begun
};

}  // namespace Kest::Agent
