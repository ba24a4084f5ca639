#include "driver/sim/File.h"

#include <fcntl.h>

#include <utility>

#include "platform/mox/RangeException.h"
#include "text/File.h"
#include "text/FileError.h"

namespace Hardware::Kest::Sim {

std::string readFile(std::string const& path) {
  try {
    return Text::readFile(path, largestFile);
  } catch (Text::FileError const& refused) {
    Mox::throwRangeException(refused.what());
  }
}

std::optional<std::string> readFileIfAny(std::string const& path) {
  try {
    return Text::readFileIfAny(path, largestFile);
  } catch (Text::FileError const& refused) {
    Mox::throwRangeException(refused.what());
  }
}

bool appendToFile(std::string const& path, std::size_t bytes, std::string_view text) {
  Text::Descriptor file(::open(path.c_str(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC));
  struct stat found {};
  if (!file.isOpen() || ::fstat(file.fd(), &found) != 0) return false;
  if (!S_ISREG(found.st_mode) || std::cmp_not_equal(found.st_size, bytes)) return false;
  int const error = Text::writeAll(file.fd(), text);
  return file.close() == 0 && error == 0;
}

}  // namespace Hardware::Kest::Sim
