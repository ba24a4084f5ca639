#include "driver/sim/StateText.h"

#include <concepts>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>

#include "platform/mox/RangeException.h"
#include "text/Escapes.h"
#include "text/JsonDocument.h"

namespace Hardware::Kest::Sim {

using Mox::String8;
using Text::Json;
using Text::percentEncoded;

namespace {

/// The name must be new: the object's own ways of adding would look for it, one member after the
/// other.
void append(Json& object, std::string name, Json value) {
  object.get_ref<Json::object_t&>().emplace_back(std::move(name), std::move(value));
}

Json toJson(std::integral auto const& value) {
  return value;
}

Json toJson(String8 const& value) {
  return percentEncoded(value.view());
}

Json toJson(Format const&) {
  return formatName;
}

Json toJson(FapType value) {
  auto const names = Mox::TypeOf<FapType>::type()->enumerators();
  auto const number = static_cast<std::int32_t>(value);
  if (static_cast<std::uint32_t>(number) >= names.size()) return number;
  return names[static_cast<std::uint32_t>(number)].charPtr();
}

template <class Record>
Json toJson(Record const& record);

template <class Value>
Json toJson(std::optional<Value> const& value) {
  return value ? toJson(*value) : Json();
}

template <class Value>
Json toJson(std::map<String8, Value> const& values) {
  Json object = Json::object();
  for (auto const& [key, value] : values) append(object, percentEncoded(key.view()), toJson(value));
  return object;
}

template <class Record>
Json toJson(Record const& record) {
  Json object = Json::object();
  forMembers(record,
             [&](char const* name, auto const& member) { append(object, name, toJson(member)); });
  return object;
}

}  // namespace

std::string stateText(SliceState const& state) {
  return toJson(Document{{}, state.interfaces.all(), state.devices.all()}).dump(2) + "\n";
}

std::string changeText(Change const& change) {
  return toJson(change).dump();
}

std::string entryText(String8 const& ifName, Interface const& interface) {
  return toJson(std::map{std::pair(ifName, interface)}).dump();
}

std::string entryText(String8 const& pciPath, Device const& device) {
  return toJson(std::map{std::pair(pciPath, device)}).dump();
}

}  // namespace Hardware::Kest::Sim
