#include "driver/sim/SimControl.h"

#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "driver/sim/SimDriver.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"
#include "text/Words.h"

namespace {

using Hardware::Kest::Sim::SimDriver;
using Hardware::Kest::Sim::simDriver;
using Mox::String8;

/// An entry's result for the work that it does.
template <class Work>
int answered(char* error, unsigned errorBytes, Work work) noexcept {
  try {
    work();
    return 0;
  } catch (std::exception const& exception) {
    std::snprintf(error, errorBytes, "%s", exception.what());
  } catch (...) {  // out of a caller's sink
    std::snprintf(error, errorBytes, "unknown exception");
  }
  return -1;
}

std::string string(char const* chars) {
  return chars == nullptr ? "" : chars;
}

struct Answer {
  std::string what;
  std::string (SimDriver::*text)() const;
};

std::string textOf(std::string const& what) {
  static Answer const answers[] = {
      {"dump", &SimDriver::dumpText},
      {"log", &SimDriver::logText},
      {"faults", &SimDriver::faultsText},
      {"state", &SimDriver::stateText},
  };
  std::vector<std::string> known;
  for (Answer const& answer : answers) {
    if (answer.what == what) return (simDriver().*answer.text)();
    known.push_back(answer.what);
  }
  Mox::throwRangeException(String8("expected " + Text::listed(known) + ", found " +
                                   Mox::valueToStrep(String8(what)).charPtr()));
}

using Sink = void (*)(void* context, char const* text, unsigned bytes);

void hand(std::string_view text, Sink sink, void* context) {
  sink(context, text.data(), static_cast<unsigned>(text.size()));
}

}  // namespace

int kestDmaSimFaultFileIs(char const* path, char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] { simDriver().faultFileIs(string(path)); });
}

int kestDmaSimFaultsAre(char const* text, char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] { simDriver().faultsAre(string(text)); });
}

int kestDmaSimStateFileIs(char const* path, char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] { simDriver().stateFileIs(string(path)); });
}

int kestDmaSimDeviceFlip(char const* devName, unsigned devNameBytes, char* error,
                         unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] {
    String8 const name(std::string_view(devName, devNameBytes));
    if (simDriver().deviceFlip(name) != 0) {
      Mox::throwRangeException(
          Mox::format("there is no device %s to flip", Mox::valueToStrep(name).charPtr()));
    }
  });
}

int kestDmaSimText(char const* what, void (*sink)(void* context, char const* text, unsigned bytes),
                   void* context, char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] { hand(textOf(string(what)), sink, context); });
}

int kestDmaSimInterface(char const* name, unsigned nameBytes,
                        void (*sink)(void* context, char const* text, unsigned bytes),
                        void* context, char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] {
    String8 const ifName(std::string_view(name, nameBytes));
    if (auto const* const interface = simDriver().interface(ifName)) {
      hand(entryText(ifName, *interface), sink, context);
    }
  });
}

int kestDmaSimDevice(char const* name, unsigned nameBytes,
                     void (*sink)(void* context, char const* text, unsigned bytes), void* context,
                     char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] {
    String8 const devName(std::string_view(name, nameBytes));
    if (String8 const* const pciPath = simDriver().pathOf(devName)) {
      hand(entryText(*pciPath, *simDriver().device(devName)), sink, context);
    }
  });
}

int kestDmaSimNextInterface(char const* name, unsigned nameBytes,
                            void (*sink)(void* context, char const* text, unsigned bytes),
                            void* context, char* error, unsigned errorBytes) noexcept {
  return answered(error, errorBytes, [&] {
    auto const& all = simDriver().interfaces();
    auto const next = all.upper_bound(String8(std::string_view(name, nameBytes)));
    if (next != all.end()) hand(next->first.view(), sink, context);
  });
}
