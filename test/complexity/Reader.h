#pragma once

#include <valgrind/callgrind.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// How the cost of reading texts from outside grows with the text; see complexity.py.
namespace Kest::Complexity {

/// Texts of one kind, of any size.
struct Case {
  std::string name;
  /// Makes one of about so many bytes.
  std::function<std::string(std::size_t bytes)> text;
};

/// Takes text from outside. Whether it accepts or refuses a text does not matter here.
struct Reader {
  std::string name;
  /// Reads the text once; `Counted` marks the work that counts.
  std::function<void(std::string const& text)> read;
  std::vector<Case> cases;
};

/// While it lives, callgrind counts instructions.
class Counted {
 public:
  Counted() { CALLGRIND_TOGGLE_COLLECT; }
  Counted(Counted const&) = delete;
  Counted& operator=(Counted const&) = delete;
  ~Counted() { CALLGRIND_TOGGLE_COLLECT; }
};

/// A reader all of whose work is counted.
inline std::function<void(std::string const&)> counting(void (*read)(std::string_view)) {
  return [read](std::string const& text) {
    Counted const counted;
    try {
      read(text);
    } catch (std::exception const&) {  // NOLINT(bugprone-empty-catch): refused is fine
    }
  };
}

std::vector<Reader> requestReaders();
std::vector<Reader> sliceReaders();
std::vector<Reader> simFileReaders();
std::vector<Reader> valueReaders();
std::vector<Reader> replyReaders();
std::vector<Reader> keyReaders();
/// Readers of known cost, which show what the check sees.
std::vector<Reader> plantedReaders();

}  // namespace Kest::Complexity
