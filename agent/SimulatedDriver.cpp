#include "agent/SimulatedDriver.h"

#include <array>

namespace Kest::Agent {

namespace {

/// Calls an entry with room for an error; throws what it puts there.
template <class Entry, class... Arguments>
void call(Entry entry, Arguments... arguments) {
  std::array<char, 1024> error{};
  if (entry(arguments..., error.data(), static_cast<unsigned>(error.size())) != 0) {
    throw DriverError(error.data());
  }
}

void append(void* text, char const* chars, unsigned bytes) {
  static_cast<std::string*>(text)->append(chars, bytes);
}

}  // namespace

template <class Entry>
Entry SimulatedDriver::entry(char const* name) const {
  void* const symbol = library_.symbol(name);
  if (symbol == nullptr) {
    throw DriverError("driver " + library_.path() + " is not the simulated one: it has no " + name);
  }
  return reinterpret_cast<Entry>(symbol);
}

void SimulatedDriver::callWithText(char const* entryName, std::string const& text) const {
  call(entry<int (*)(char const*, char*, unsigned)>(entryName), text.c_str());
}

void SimulatedDriver::flip(Mox::String8 const& devName) const {
  call(entry<int (*)(char const*, unsigned, char*, unsigned)>("kestDmaSimDeviceFlip"),
       devName.charPtr(), static_cast<unsigned>(devName.bytes()));
}

std::string SimulatedDriver::text(char const* what) const {
  using Sink = void (*)(void* context, char const* text, unsigned bytes);
  std::string text;
  call(entry<int (*)(char const*, Sink, void*, char*, unsigned)>("kestDmaSimText"), what, &append,
       static_cast<void*>(&text));
  return text;
}

}  // namespace Kest::Agent
