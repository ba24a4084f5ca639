#include "test/simulation/Capture.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Simulation {

namespace {

ssize_t writeTo(void* capture, char const* bytes, std::size_t count) {
  static_cast<Capture*>(capture)->write(bytes, count);
  return static_cast<ssize_t>(count);
}

}  // namespace

Capture::Capture(Support::Journal& journal)
    : journal_(journal),
      before_(stderr),
      stream_(fopencookie(this, "w", {nullptr, writeTo, nullptr, nullptr})) {
  std::setvbuf(stream_, nullptr, _IONBF, 0);
  stderr = stream_;
}

Capture::~Capture() {
  stderr = before_;
  std::fclose(stream_);
}

void Capture::divertTo(char* text, std::size_t size) {
  text_ = text;
  left_ = size - 1;
}

void Capture::write(char const* bytes, std::size_t count) {
  if (text_ != nullptr) {
    std::size_t const fits = std::min(count, left_);
    std::memcpy(text_, bytes, fits);
    text_ += fits;
    *text_ = '\0';
    left_ -= fits;
    return;
  }
  for (char const byte : std::string_view(bytes, count)) {
    if (byte != '\n') {
      line_ += byte;
    } else {
      journal_.add(std::exchange(line_, {}));
    }
  }
}

}  // namespace Simulation
