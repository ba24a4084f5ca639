#include "test/support/VirtualTime.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>

namespace Support {

namespace {

constexpr std::int64_t perSecond = 1000000;

VirtualTime* current = nullptr;

}  // namespace

VirtualTime::VirtualTime(Journal& journal) : journal_(journal) {
  current = this;
  Mox::timeSourceIs(&source_);
}

VirtualTime::~VirtualTime() {
  Mox::timeSourceIs(nullptr);
  current = nullptr;
}

void VirtualTime::advance(std::int64_t microseconds) noexcept {
  microseconds_ += microseconds;
  source_.nowIs(static_cast<double>(microseconds_) / static_cast<double>(perSecond));
}

std::time_t VirtualTime::time() const noexcept {
  return wallClock_ + static_cast<std::time_t>(microseconds_ / perSecond);
}

void VirtualTime::pause(unsigned microseconds) {
  journal_.add("usleep(" + std::to_string(microseconds) + ")");
  advance(microseconds);
}

}  // namespace Support

// Visible to the libraries of the program, in the place of the system's.

extern "C" __attribute__((visibility("default"))) std::time_t time(std::time_t* result) noexcept {
  std::time_t const now =
      Support::current != nullptr
          ? Support::current->time()
          : std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  if (result != nullptr) *result = now;
  return now;
}

extern "C" __attribute__((visibility("default"))) int usleep(useconds_t microseconds) {
  if (Support::current == nullptr) std::abort();
  Support::current->pause(microseconds);
  return 0;
}
