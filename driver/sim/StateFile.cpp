#include "driver/sim/StateFile.h"

#include <cstdio>
#include <utility>

#include "driver/sim/File.h"
#include "platform/mox/RangeException.h"

namespace Hardware::Kest::Sim {

StateFile::StateFile(std::string path) : path_(std::move(path)) {
  if (path_.empty())
    Mox::throwRangeException("expected the path of a state file, found an empty one");
}

std::optional<SliceState> StateFile::load() {
  std::optional<std::string> const text = readFileIfAny(path_);
  if (!text || text->empty()) return std::nullopt;
  held_ = readState(*text, path_);
  return held_;
}

void StateFile::keep(SliceState const& state) {
  if (state == held_) return;
  try {
    replaceFile(path_, stateText(state));
    held_ = state;
    failing_ = false;
  } catch (Mox::RangeException const& exception) {
    if (!failing_) {
      std::fprintf(stderr, "kest-dma-sim: %s; trying again with every operation\n",
                   exception.what());
    }
    failing_ = true;
  }
}

}  // namespace Hardware::Kest::Sim
