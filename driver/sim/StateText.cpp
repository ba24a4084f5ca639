#include "driver/sim/StateText.h"

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "driver/sim/JsonString.h"
#include "platform/mox/RangeException.h"
#include "platform/pelk/EthAddr.h"

namespace Hardware::Kest::Sim {

using Mox::String8;
using nlohmann::json;
using nlohmann::ordered_json;

namespace {

constexpr char const* formatName = "kest-dma-sim-state/1";

/// Stands for `formatName` in the document.
struct Format {};

struct Document {
  Format format;
  std::map<String8, Interface> interfaces;
  std::map<String8, Device> devices;
};

// What the document holds, for the writer and the reader: each value's members, named in order.

template <class T, class Plain>
concept Like = std::same_as<std::remove_const_t<T>, Plain>;

template <class Visit>
void forMembers(Like<Document> auto& document, Visit const& visit) {
  visit("format", document.format);
  visit("interfaces", document.interfaces);
  visit("devices", document.devices);
}

template <class Visit>
void forMembers(Like<Interface> auto& interface, Visit const& visit) {
  auto& param = interface.param;
  visit("destId", param.destId);
  visit("shadowIntfId", param.shadowIntfId);
  visit("trafficClass", param.trafficClass);
  visit("devName", param.devName);
  visit("fapNum", param.fapNum);
  visit("ctrl", param.ctrl);
  visit("hwLag", param.hwLag);
  visit("macAddr", param.macAddr);
  visit("nativeVlan", interface.nativeVlan);
  visit("mode", interface.mode);
}

template <class Visit>
void forMembers(Like<Device> auto& device, Visit const& visit) {
  visit("name", device.name);
  visit("param", device.param);
  visit("up", device.up);
  visit("flips", device.flips);
}

template <class Visit>
void forMembers(Like<DeviceParam> auto& param, Visit const& visit) {
  visit("numFaps", param.numFaps);
  visit("fapType", param.fapType);
  visit("cpuTmSysPort", param.cpuTmSysPort);
  visit("cpuEthSysPort", param.cpuEthSysPort);
  visit("cpuRawSysPort", param.cpuRawSysPort);
  visit("sflowPort", param.sflowPort);
  visit("cpuAradSysPort", param.cpuAradSysPort);
  visit("cpuArad", param.cpuArad);
  visit("cpuAradBridge", param.cpuAradBridge);
}

// The writer.

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
  for (auto const& [key, value] : values) object[escaped(key.view())] = toJson(value);
  return object;
}

template <class Record>
ordered_json toJson(Record const& record) {
  ordered_json object;
  forMembers(record, [&](char const* name, auto const& member) { object[name] = toJson(member); });
  return object;
}

// The reader.

std::string placed(json::json_pointer const& pointer, std::string const& text) {
  std::string const where = json(pointer.to_string()).dump();  // escapes control bytes
  return where == R"("")" ? text : where.substr(1, where.size() - 2) + ": " + text;
}

[[noreturn]] void throwAt(json::json_pointer const& pointer, std::string const& text) {
  Mox::throwRangeException(String8(placed(pointer, text)));
}

/// A value of the document, or the lack of one. Must not outlive the one that it is a member of.
class Node {
 public:
  explicit Node(json const& document) : value_(&document) {}

  /// Null: the document has no such value.
  json const* value() const { return value_; }

  Node member(std::string const& key) const {
    auto const at = value_->find(key);
    return {this, key, at == value_->end() ? nullptr : &*at};
  }

  [[noreturn]] void fail(std::string const& text) const { throwAt(pointer(), text); }
  [[noreturn]] void refuse(std::string const& expected) const {
    fail("expected " + expected + ", found " + found());
  }
  void needObject() const {
    if (value_ == nullptr || !value_->is_object()) refuse("an object");
  }

 private:
  Node(Node const* parent, std::string key, json const* value)
      : parent_(parent), key_(std::move(key)), value_(value) {}

  json::json_pointer pointer() const {
    return parent_ == nullptr ? json::json_pointer() : parent_->pointer() / key_;
  }

  std::string found() const {
    if (value_ == nullptr) return "nothing";
    return value_->is_object() ? "an object" : value_->dump();
  }

  Node const* parent_ = nullptr;
  std::string key_;
  json const* value_;
};

std::string list(std::vector<std::string> const& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 < names.size() ? ", " : " or ";
    text += names[i];
  }
  return text;
}

// What the members' types leave open: the rules that the operations keep.

template <class Record>
void checkRules(Node const&, Record const&) {}

void checkRules(Node const& node, DeviceParam const& param) {
  if (param.numFaps < 1 || param.numFaps > Devices::maxFaps) {
    node.member("numFaps").refuse("1 to " + std::to_string(Devices::maxFaps));
  }
}

void checkRules(Node const& node, Interface const& interface) {
  // A device may be registered with fewer FAPs once it carries interfaces.
  constexpr int maxFaps = Devices::maxFaps;
  int const fapNum = interface.param.fapNum;
  if (!interface.param.devName.empty() && (fapNum < 0 || fapNum >= maxFaps)) {
    node.member("fapNum").refuse("0 to " + std::to_string(maxFaps - 1));
  }
  try {
    Pelk::EthAddr const addr(interface.param.macAddr);
  } catch (Mox::RangeException const& exception) {
    node.member("macAddr").fail(std::string(exception.text().view()));
  }
  if (!Interface::isNativeVlan(interface.nativeVlan)) {
    node.member("nativeVlan")
        .refuse("1 to " + std::to_string(Interface::lastVlan) + ", or " +
                std::to_string(Interface::noVlan) + " for none");
  }
  if (interface.mode && interface.nativeVlan == Interface::noVlan) {
    node.member("mode").refuse("false where there is no native VLAN");
  }
}

void checkRules(Node const& node, Document const& document) {
  Node const devices = node.member("devices");
  std::set<String8> names;
  for (auto const& [pciPath, device] : document.devices) {
    if (!device.name.empty() && !names.insert(device.name).second) {
      Node const entry = devices.member(escaped(pciPath.view()));
      entry.member("name").refuse("a name that no other device has");
    }
  }
  Node const interfaces = node.member("interfaces");
  for (auto const& [ifName, interface] : document.interfaces) {
    Node const entry = interfaces.member(escaped(ifName.view()));
    if (ifName.empty()) entry.fail("expected an interface's name, found an empty one");
    String8 const& devName = interface.param.devName;
    if (!devName.empty() && !names.contains(devName)) {
      entry.member("devName").refuse("the name of a device that there is, or an empty one");
    }
  }
}

template <std::integral Number>
void read(Node const& node, Number& number) {
  using Limits = std::numeric_limits<Number>;
  json const* const value = node.value();
  bool const fits =
      value != nullptr && value->is_number_integer() &&
      (value->is_number_unsigned() ? std::in_range<Number>(value->get<std::uint64_t>())
                                   : std::in_range<Number>(value->get<std::int64_t>()));
  if (!fits) {
    node.refuse("an integer from " + std::to_string(Limits::min()) + " to " +
                std::to_string(Limits::max()));
  }
  number = value->get<Number>();
}

void read(Node const& node, bool& flag) {
  if (node.value() == nullptr || !node.value()->is_boolean()) node.refuse("true or false");
  flag = node.value()->get<bool>();
}

String8 readName(Node const& node, std::string const& text) {
  std::string const name = unescaped(text);
  if (std::string const form = escaped(name); form != text) {
    node.fail("expected the string's form " + json(form).dump() + ", found " + json(text).dump());
  }
  return String8(name);
}

void read(Node const& node, String8& string) {
  if (node.value() == nullptr || !node.value()->is_string()) node.refuse("a string");
  string = readName(node, node.value()->get_ref<std::string const&>());
}

void read(Node const& node, Format&) {
  if (node.value() == nullptr || *node.value() != formatName) {
    node.refuse(json(formatName).dump());
  }
}

void read(Node const& node, FapType& fapType) {
  json const* const value = node.value();
  if (value == nullptr || !(value->is_string() || value->is_number_integer())) {
    node.refuse("a FAP type's name or number");
  }
  if (value->is_number()) {
    std::int32_t number = 0;
    read(node, number);
    fapType = static_cast<FapType>(number);
    return;
  }
  String8 name;
  read(node, name);
  try {
    fapType = FapTypeInstance(name);
  } catch (Mox::RangeException const& exception) {
    node.fail(std::string(exception.text().view()));
  }
}

template <class Value>
void read(Node const& node, std::optional<Value>& value) {
  json const* const found = node.value();
  if (found == nullptr || !(found->is_object() || found->is_null())) {
    node.refuse("an object or null");
  }
  if (found->is_object()) read(node, value.emplace());
}

template <class Value>
void read(Node const& node, std::map<String8, Value>& values) {
  node.needObject();
  for (auto const& entry : node.value()->items()) {
    Node const member = node.member(entry.key());
    read(member, values[readName(member, entry.key())]);
  }
}

template <class Record>
void read(Node const& node, Record& record) {
  node.needObject();
  std::vector<std::string> names;
  forMembers(record, [&](char const* name, auto& member) {
    names.emplace_back(name);
    read(node.member(name), member);
  });
  for (auto const& entry : node.value()->items()) {
    if (std::find(names.begin(), names.end(), entry.key()) == names.end()) {
      node.member(entry.key()).fail("expected " + list(names) + ", found another member");
    }
  }
  checkRules(node, record);
}

/// Refuses what cannot be seen, or has no place, in the document once it has been parsed.
class ParseCheck {
 public:
  bool operator()(int /*depth*/, json::parse_event_t event, json const& parsed) {
    using Event = json::parse_event_t;
    if (event == Event::object_start) {
      at_.push_back("");
      members_.emplace_back();
    } else if (event == Event::object_end) {
      at_.pop_back();
      members_.pop_back();
    } else if (event == Event::array_start) {
      throwAt(at_, "expected no array in a state, found one");
    } else if (event == Event::key) {
      at_.pop_back();
      at_.push_back(parsed.get_ref<std::string const&>());
      if (!members_.back().insert(at_.back()).second) {
        throwAt(at_, "expected a member once, found it twice");
      }
    }
    return true;
  }

  /// Where the parser is.
  json::json_pointer const& at() const { return at_; }

 private:
  json::json_pointer at_;
  std::vector<std::set<std::string>> members_;  ///< of each object on the way to `at_`
};

/// What the parser says, without the numbers that it begins with.
std::string said(json::exception const& exception, std::string_view lastOfPrefix) {
  std::string_view const text = exception.what();
  return std::string(text.substr(text.find(lastOfPrefix) + lastOfPrefix.size()));
}

/// "LINE:COLUMN" of the text's byte at `offset`, or of its end.
std::string position(std::string_view text, std::size_t offset) {
  std::string_view const before = text.substr(0, offset);
  auto const line = 1 + std::count(before.begin(), before.end(), '\n');
  auto const column = before.size() - (before.rfind('\n') + 1) + 1;
  return std::to_string(line) + ":" + std::to_string(column);
}

}  // namespace

std::string stateText(SliceState const& state) {
  return toJson(Document{{}, state.interfaces.all(), state.devices.all()}).dump(2) + "\n";
}

SliceState readState(std::string_view text, std::string const& source) {
  ParseCheck check;
  Document document;
  std::string error;
  try {
    json const parsed = json::parse(text, std::ref(check));
    read(Node(parsed), document);
    return {Interfaces(std::move(document.interfaces)), Devices(std::move(document.devices))};
  } catch (json::parse_error const& exception) {
    error = ":" + position(text, exception.byte - 1) + ": " + said(exception, ": ");
  } catch (json::out_of_range const& exception) {
    error = ": " + placed(check.at(), said(exception, "] "));
  } catch (Mox::RangeException const& exception) {
    error = ": " + std::string(exception.text().view());
  }
  Mox::throwRangeException(String8(source + error));
}

}  // namespace Hardware::Kest::Sim
