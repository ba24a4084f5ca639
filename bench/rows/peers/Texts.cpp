#include "bench/rows/Texts.h"

#include <stdexcept>

#include "bench/Ours.h"
#include "bench/peers/Protobuf.h"
#include "bench/peers/Texts.h"
#include "bench/rows/Rows.h"
#include "platform/mox/Strep.h"

namespace Kest::Bench {

namespace {

Port itself(Port const& port) {
  return port;
}

void measurePrinting(Shape shape) {
  measureOver("g", shape, "fmt", itself, fmtPrinted);
  measureOver("g", shape, "fmt in place", itself, fmtPrintedInPlace);
  measureOver("g", shape, "protobuf text", messageOf,
              [printer = std::make_shared<ProtobufPrinter>()](
                  kest::bench::SwitchPort const& message) { return printer->printed(message); });
  measureOver("g", shape, "protobuf binary", messageOf,
              [](kest::bench::SwitchPort const& message) { return message.SerializeAsString(); });
}

void measureReading(Shape shape) {
  measureOver("h", shape, "RapidJSON", jsonOf, rapidJsonRead);
  measureOver(
      "h", shape, "simdjson",
      [](Port const& port) {
        std::string json = jsonOf(port);
        json.reserve(json.size() + SimdJsonReader::padding());
        return json;
      },
      [reader = std::make_shared<SimdJsonReader>()](std::string const& json) {
        return reader->read(json);
      });
  measureOver(
      "h", shape, "protobuf text",
      [](Port const& port) { return ProtobufPrinter().printed(messageOf(port)); },
      [message = std::make_shared<kest::bench::SwitchPort>()](std::string const& text) {
        return google::protobuf::TextFormat::ParseFromString(text, message.get());
      });
  measureOver(
      "h", shape, "protobuf binary",
      [](Port const& port) { return messageOf(port).SerializeAsString(); },
      [message = std::make_shared<kest::bench::SwitchPort>()](std::string const& bytes) {
        return message->ParseFromString(bytes);
      });
}

/// Rivals that print or read something else would be measured in vain.
void expectSameWork(Shape shape) {
  SimdJsonReader simdJson;
  for (Port const& port : portsOf(shape)) {
    std::string json = jsonOf(port);
    json.reserve(json.size() + SimdJsonReader::padding());
    auto const text = valueToStrep(recordOf(port));
    auto const message = messageOf(port);
    kest::bench::SwitchPort fromText;
    kest::bench::SwitchPort fromBytes;
    bool const same = fmtPrinted(port) == text.view() && fmtPrintedInPlace(port) == text.view() &&
                      Mox::strepToValue<Ours::Record>(text) == recordOf(port) &&
                      rapidJsonRead(json) == port && simdJson.read(json) == port &&
                      google::protobuf::TextFormat::ParseFromString(
                          ProtobufPrinter().printed(message), &fromText) &&
                      fromText.SerializeAsString() == message.SerializeAsString() &&
                      fromBytes.ParseFromString(message.SerializeAsString()) &&
                      fromBytes.macaddr() == message.macaddr();
    if (!same) throw std::logic_error("not the same record: " + json);
  }
}

}  // namespace

void measureTheirTexts() {
  expectSameWork(shortNames);
  for (Shape const shape : {shortNames, longNames}) {
    measurePrinting(shape);
    measureReading(shape);
  }
}

}  // namespace Kest::Bench
