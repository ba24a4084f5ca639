#define RAPIDJSON_SSE2  // every x86-64 has it
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <charconv>
#include <stdexcept>

#include "bench/peers/Texts.h"

namespace Kest::Bench {

namespace {

std::string macText(std::array<std::uint8_t, 6> const& octets) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (auto const octet : octets) {
    if (!text.empty()) text += ':';
    text += digits[octet / 16];
    text += digits[octet % 16];
  }
  return text;
}

using Allocator = rapidjson::MemoryPoolAllocator<>;
using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, Allocator, Allocator>;
using Value = Document::ValueType;

Value const& member(Value const& object, char const* name) {
  auto const found = object.FindMember(name);
  if (found == object.MemberEnd()) throw std::invalid_argument("a field is missing");
  return found->value;
}

std::uint32_t number(Value const& object, char const* name) {
  Value const& value = member(object, name);
  if (!value.IsUint()) throw std::invalid_argument("no number");
  return value.GetUint();
}

bool flag(Value const& object, char const* name) {
  Value const& value = member(object, name);
  if (!value.IsBool()) throw std::invalid_argument("no flag");
  return value.GetBool();
}

std::string_view text(Value const& object, char const* name) {
  Value const& value = member(object, name);
  if (!value.IsString()) throw std::invalid_argument("no text");
  return {value.GetString(), value.GetStringLength()};
}

}  // namespace

std::array<std::uint8_t, 6> macAddrOf(std::string_view text) {
  std::array<std::uint8_t, 6> octets{};
  if (text.size() != 17) throw std::invalid_argument("no MAC address");
  for (std::size_t i = 0; i < octets.size(); ++i) {
    char const* const at = text.data() + 3 * i;
    if (i > 0 && at[-1] != ':') throw std::invalid_argument("no MAC address");
    if (std::from_chars(at, at + 2, octets[i], 16).ptr != at + 2) {
      throw std::invalid_argument("no MAC address");
    }
  }
  return octets;
}

std::string jsonOf(Port const& port) {
  rapidjson::StringBuffer buffer;
  rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
  auto const string = [&](char const* name, std::string const& value) {
    writer.Key(name);
    writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
  };
  auto const uint = [&](char const* name, std::uint32_t value) {
    writer.Key(name);
    writer.Uint(value);
  };
  auto const boolean = [&](char const* name, bool value) {
    writer.Key(name);
    writer.Bool(value);
  };
  writer.StartObject();
  string("ifName", port.ifName);
  uint("destId", port.destId);
  uint("shadowIntfId", port.shadowIntfId);
  uint("trafficClass", port.trafficClass);
  string("devName", port.devName);
  uint("fapNum", port.fapNum);
  boolean("ctrl", port.ctrl);
  boolean("hwLag", port.hwLag);
  string("macAddr", macText(port.macAddr));
  writer.EndObject();
  return {buffer.GetString(), buffer.GetSize()};
}

Port rapidJsonRead(std::string const& json) {
  static char values[4096];
  static char stack[4096];
  Allocator valueAllocator(values, sizeof values);
  Allocator stackAllocator(stack, sizeof stack);
  Document document(&valueAllocator, sizeof stack / 2, &stackAllocator);
  document.Parse(json.data(), json.size());
  if (document.HasParseError() || !document.IsObject()) throw std::invalid_argument("no object");
  Port port;
  port.ifName = text(document, "ifName");
  port.destId = number(document, "destId");
  port.shadowIntfId = number(document, "shadowIntfId");
  port.trafficClass = number(document, "trafficClass");
  port.devName = text(document, "devName");
  port.fapNum = number(document, "fapNum");
  port.ctrl = flag(document, "ctrl");
  port.hwLag = flag(document, "hwLag");
  port.macAddr = macAddrOf(text(document, "macAddr"));
  return port;
}

}  // namespace Kest::Bench
