#include "driver/sim/StateText.h"

#include <concepts>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "driver/sim/JsonString.h"
#include "driver/sim/StateMembers.h"
#include "platform/mox/RangeException.h"

namespace Hardware::Kest::Sim {

using Mox::String8;
using nlohmann::ordered_json;

namespace {

/// The name must be new: the object's own ways of adding would look for it, one member after the
/// other.
void append(ordered_json& object, std::string name, ordered_json value) {
  object.get_ref<ordered_json::object_t&>().emplace_back(std::move(name), std::move(value));
}

ordered_json toJson(std::integral auto const& value) {
  return value;
}

ordered_json toJson(String8 const& value) {
  return escaped(value.view());
}

ordered_json toJson(Format const&) {
  return formatName;
}

ordered_json toJson(FapType value) {
  auto const number = static_cast<std::int32_t>(value);
  try {
    return stringValue(FapTypeInstance(static_cast<unsigned>(number))).charPtr();
  } catch (Mox::RangeException const&) {
    return number;
  }
}

template <class Record>
ordered_json toJson(Record const& record);

template <class Value>
ordered_json toJson(std::optional<Value> const& value) {
  return value ? toJson(*value) : ordered_json();
}

template <class Value>
ordered_json toJson(std::map<String8, Value> const& values) {
  ordered_json object = ordered_json::object();
  for (auto const& [key, value] : values) append(object, escaped(key.view()), toJson(value));
  return object;
}

template <class Record>
ordered_json toJson(Record const& record) {
  ordered_json object = ordered_json::object();
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
