#pragma once

#include <valgrind/callgrind.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// What reading a text from outside costs, and how that grows with the text; see complexity.py.
namespace Kest::Complexity {

/// Texts of one kind, of any size.
struct Case {
  std::string name;
  /// Makes one of about so many bytes.
  std::function<std::string(std::size_t bytes)> text;
};

/// Something that takes text from outside. Whether it accepts or refuses does not matter here.
struct Reader {
  std::string name;
  /// Reads the text once, and counts what is to be counted.
  std::function<void(std::string const& text)> read;
  std::vector<Case> cases;
};

/// Callgrind counts as long as this lives.
class Counted {
 public:
  Counted() { CALLGRIND_TOGGLE_COLLECT; }
  Counted(Counted const&) = delete;
  Counted& operator=(Counted const&) = delete;
  ~Counted() { CALLGRIND_TOGGLE_COLLECT; }
};

std::vector<Reader> requestReaders();
std::vector<Reader> sliceReaders();
std::vector<Reader> simFileReaders();
std::vector<Reader> valueReaders();
std::vector<Reader> replyReaders();
std::vector<Reader> keyReaders();
/// Ours, of known cost: they show what the check sees.
std::vector<Reader> plantedReaders();

}  // namespace Kest::Complexity
