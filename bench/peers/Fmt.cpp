#include <fmt/compile.h>
#include <fmt/format.h>

#include "bench/peers/Texts.h"

namespace Kest::Bench {

namespace {

template <class Out>
void print(Out out, Port const& port) {
  auto const& mac = port.macAddr;
  char const* const flag[] = {"False", "True"};
  fmt::format_to(
      out,
      FMT_COMPILE("Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {{"
                  "'ifName': '{}', 'destId': {}, 'shadowIntfId': {}, 'trafficClass': {}, "
                  "'devName': '{}', 'fapNum': {}, 'ctrl': {}, 'hwLag': {}, "
                  "'macAddr': '{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}'}})"),
      port.ifName, port.destId, port.shadowIntfId, port.trafficClass, port.devName, port.fapNum,
      flag[port.ctrl], flag[port.hwLag], mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}

}  // namespace

std::string fmtPrinted(Port const& port) {
  fmt::memory_buffer text;
  print(fmt::appender(text), port);
  return fmt::to_string(text);
}

std::string_view fmtPrintedInPlace(Port const& port) {
  static fmt::memory_buffer text;
  text.clear();
  print(fmt::appender(text), port);
  return {text.data(), text.size()};
}

}  // namespace Kest::Bench
