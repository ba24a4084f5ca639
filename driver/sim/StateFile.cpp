#include "driver/sim/StateFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "driver/sim/ChangeLine.h"
#include "driver/sim/File.h"
#include "platform/mox/RangeException.h"
#include "text/File.h"

namespace Hardware::Kest::Sim {

namespace {

/// How much larger than their document the changes may get: a small document is not worth replacing
/// all the time.
constexpr std::size_t leeway = 4096;

}  // namespace

StateFile::StateFile(std::string path) : path_(std::move(path)) {
  if (path_.empty())
    Mox::throwRangeException("expected the path of a state file, found an empty one");
}

std::optional<SliceState> StateFile::load() const {
  std::optional<std::string> const text = readFileIfAny(path_);
  if (!text || text->empty()) return std::nullopt;
  return readState(*text, path_);
}

void StateFile::keep(SliceState const& state, Change const& change) {
  if (change.empty() && !failing_) return;
  if (failing_ || !append(change)) replace(state);
}

bool StateFile::append(Change const& change) {
  if (documentBytes_ == 0) return false;
  std::uint32_t check = check_;
  std::string const line = changeLine(changeText(change), check);
  std::size_t const bytes = bytes_ + line.size();
  if (bytes > 2 * documentBytes_ + leeway || bytes > largestFile) return false;
  if (!appendToFile(path_, bytes_, line)) return false;
  bytes_ = bytes;
  check_ = check;
  return true;
}

void StateFile::replace(SliceState const& state) {
  std::string const text = stateText(state);
  std::string const fresh = path_ + ".tmp";
  std::remove(fresh.c_str());  // left by a process that was killed
  int const error = text.size() > largestFile ? EFBIG : Text::replaceFile(path_, text, {fresh});
  if (error != 0 && !failing_) {
    std::fprintf(stderr,
                 "kest-dma-sim: %s: cannot be written: %s; trying again with every operation\n",
                 path_.c_str(), std::strerror(error));
  }
  failing_ = error != 0;
  if (failing_) return;
  documentBytes_ = bytes_ = text.size();
  check_ = checkOf(text);
}

}  // namespace Hardware::Kest::Sim
