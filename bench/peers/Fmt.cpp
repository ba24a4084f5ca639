#include <fmt/compile.h>
#include <fmt/format.h>

#include "bench/peers/Texts.h"

namespace Kest::Bench {

namespace {

template <class Format>
std::string printed(Format const& format, Port const& port, char const* falseText,
                    char const* trueText) {
  auto const& mac = port.macAddr;
  fmt::memory_buffer text;
  fmt::format_to(fmt::appender(text), format, port.ifName, port.destId, port.shadowIntfId,
                 port.trafficClass, port.devName, port.fapNum, port.ctrl ? trueText : falseText,
                 port.hwLag ? trueText : falseText, mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
  return fmt::to_string(text);
}

}  // namespace

std::string fmtPrinted(Port const& port) {
  return printed(
      FMT_COMPILE("Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {{"
                  "'ifName': '{}', 'destId': {}, 'shadowIntfId': {}, 'trafficClass': {}, "
                  "'devName': '{}', 'fapNum': {}, 'ctrl': {}, 'hwLag': {}, "
                  "'macAddr': '{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}'}})"),
      port, "False", "True");
}

std::string jsonOf(Port const& port) {
  return printed(FMT_COMPILE(R"({{"ifName":"{}","destId":{},"shadowIntfId":{},"trafficClass":{},)"
                             R"("devName":"{}","fapNum":{},"ctrl":{},"hwLag":{},)"
                             R"("macAddr":"{:02x}:{:02x}:{:02x}:{:02x}:{:02x}:{:02x}"}})"),
                 port, "false", "true");
}

}  // namespace Kest::Bench
