#include <stdexcept>

#include "bench/Operations.h"
#include "bench/Ours.h"
#include "bench/peers/Protobuf.h"
#include "bench/peers/Texts.h"
#include "bench/rows/Rows.h"
#include "platform/mox/Strep.h"

/// Rows g and h: a record is printed, and read.
namespace Kest::Bench {

namespace {

/// What `make` makes of each record, in the visiting order.
template <class Make>
auto visitedAs(Shape shape, Make const& make) {
  std::vector<decltype(make(Port()))> all;
  for (Port const& port : visited(portsOf(shape))) all.push_back(make(port));
  return all;
}

/// Runs `work(input)` over one input of `make` after the other.
template <class Make, class Work>
void measureOver(std::string const& row, Shape shape, char const* who, Make make, Work work) {
  measure(row, std::to_string(shape.nameLength), who, [=](benchmark::State& state) {
    auto inputs = visitedAs(shape, make);
    std::size_t at = 0;
    for (auto _ : state) {
      benchmark::DoNotOptimize(work(inputs[at]));
      if (++at == inputs.size()) at = 0;
    }
  });
}

Port itself(Port const& port) {
  return port;
}

void measurePrinting(Shape shape) {
  measureOver("g", shape, "ours", recordOf,
              [](Ours::Record const& record) { return valueToStrep(record); });
  measureOver("g", shape, "fmt", itself, fmtPrinted);
  measureOver("g", shape, "fmt in place", itself, fmtPrintedInPlace);
  measureOver("g", shape, "protobuf text", messageOf,
              [printer = std::make_shared<ProtobufPrinter>()](
                  kest::bench::SwitchPort const& message) { return printer->printed(message); });
  measureOver("g", shape, "protobuf binary", messageOf,
              [](kest::bench::SwitchPort const& message) { return message.SerializeAsString(); });
}

void measureReading(Shape shape) {
  measureOver(
      "h", shape, "ours", [](Port const& port) { return valueToStrep(recordOf(port)); },
      [](Mox::String8 const& text) { return Mox::strepToValue<Ours::Record>(text); });
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

void measureTexts() {
  expectSameWork(shortNames);
  for (Shape const shape : {shortNames, longNames}) {
    measurePrinting(shape);
    measureReading(shape);
  }
}

}  // namespace Kest::Bench
