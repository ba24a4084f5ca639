#include "test/simulation/Capture.h"

#include <string_view>
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

void Capture::end() {
  stderr = before_;
}

Capture::~Capture() {
  end();
  std::fclose(stream_);
}

void Capture::write(char const* bytes, std::size_t count) {
  for (char const byte : std::string_view(bytes, count)) {
    if (byte != '\n') {
      line_ += byte;
    } else {
      journal_.add(std::exchange(line_, {}));
    }
  }
}

}  // namespace Simulation
