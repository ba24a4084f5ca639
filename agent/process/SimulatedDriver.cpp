#include "agent/process/SimulatedDriver.h"

#include <array>

namespace Kest::Agent {

namespace {

/// Calls a driver function with room for an error message, and throws that message.
template <class Entry, class... Arguments>
void call(Entry entry, Arguments... arguments) {
  std::array<char, 1024> error{};
  if (entry(arguments..., error.data(), static_cast<unsigned>(error.size())) != 0) {
    throw DriverError(error.data());
  }
}

using Sink = void (*)(void* context, char const* text, unsigned bytes);

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
  std::string text;
  call(entry<int (*)(char const*, Sink, void*, char*, unsigned)>("kestDmaSimText"), what, &append,
       static_cast<void*>(&text));
  return text;
}

std::string SimulatedDriver::textOf(char const* entryName, Mox::String8 const& name) const {
  std::string text;
  call(entry<int (*)(char const*, unsigned, Sink, void*, char*, unsigned)>(entryName),
       name.charPtr(), static_cast<unsigned>(name.bytes()), &append, static_cast<void*>(&text));
  return text;
}

std::string SimulatedDriver::interface(Mox::String8 const& ifName) const {
  return textOf("kestDmaSimInterface", ifName);
}

std::string SimulatedDriver::device(Mox::String8 const& devName) const {
  return textOf("kestDmaSimDevice", devName);
}

std::optional<Mox::String8> SimulatedDriver::nextInterface(Mox::String8 const& ifName) const {
  std::string const next = textOf("kestDmaSimNextInterface", ifName);
  if (next.empty()) return std::nullopt;  // no interface has an empty name
  return Mox::String8(next);
}

}  // namespace Kest::Agent
