#pragma once

#include <google/protobuf/text_format.h>

#include <cstdint>
#include <string>

#include "bench/Workload.h"
#include "port.pb.h"

/// protobuf: the record as a message that the compiler has generated.
namespace Kest::Bench {

kest::bench::SwitchPort messageOf(Port const& port);

/// Text form on one line.
class ProtobufPrinter {
 public:
  ProtobufPrinter();
  std::string printed(kest::bench::SwitchPort const& message) const;

 private:
  google::protobuf::TextFormat::Printer printer_;
};

/// What generic readers make of a value, whatever its type: the number, 0 or 1, the length.
std::uint64_t readById(google::protobuf::Message const& message, int number);
std::uint64_t readByName(google::protobuf::Message const& message, std::string const& name);

}  // namespace Kest::Bench
