#include "bench/peers/Protobuf.h"

#include <google/protobuf/descriptor.h>

#include <stdexcept>

namespace Kest::Bench {

namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;

std::uint64_t readField(Message const& message, FieldDescriptor const* field) {
  if (field == nullptr) throw std::invalid_argument("no such field");
  google::protobuf::Reflection const& reflection = *message.GetReflection();
  switch (field->cpp_type()) {
    case FieldDescriptor::CPPTYPE_UINT32:
      return reflection.GetUInt32(message, field);
    case FieldDescriptor::CPPTYPE_BOOL:
      return reflection.GetBool(message, field) ? 1 : 0;
    case FieldDescriptor::CPPTYPE_STRING: {
      std::string scratch;
      return reflection.GetStringReference(message, field, &scratch).size();
    }
    default:
      throw std::invalid_argument("no field of a port has this type");
  }
}

}  // namespace

kest::bench::SwitchPort messageOf(Port const& port) {
  kest::bench::SwitchPort message;
  message.set_ifname(port.ifName);
  message.set_destid(port.destId);
  message.set_shadowintfid(port.shadowIntfId);
  message.set_trafficclass(port.trafficClass);
  message.set_devname(port.devName);
  message.set_fapnum(port.fapNum);
  message.set_ctrl(port.ctrl);
  message.set_hwlag(port.hwLag);
  message.set_macaddr(port.macAddr.data(), port.macAddr.size());
  return message;
}

ProtobufPrinter::ProtobufPrinter() {
  printer_.SetSingleLineMode(true);
}

std::string ProtobufPrinter::printed(kest::bench::SwitchPort const& message) const {
  std::string text;
  printer_.PrintToString(message, &text);
  return text;
}

std::uint64_t readById(Message const& message, int number) {
  return readField(message, message.GetDescriptor()->FindFieldByNumber(number));
}

std::uint64_t readByName(Message const& message, std::string const& name) {
  return readField(message, message.GetDescriptor()->FindFieldByName(name));
}

}  // namespace Kest::Bench
