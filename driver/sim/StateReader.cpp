#include <algorithm>
#include <concepts>
#include <cstdint>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "driver/sim/ChangeLine.h"
#include "driver/sim/JsonString.h"
#include "driver/sim/JsonTree.h"
#include "driver/sim/Names.h"
#include "driver/sim/StateMembers.h"
#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"
#include "platform/pelk/EthAddr.h"

namespace Hardware::Kest::Sim {

using Mox::String8;
using nlohmann::json;

namespace {

/// A value of the document, or the lack of one. Must not outlive the one that it is a member of.
class Node {
 public:
  Node(SourceText const& source, JsonNode const& document) : source_(source), node_(&document) {}

  /// Null: the document has no such value.
  json const* value() const { return node_ == nullptr ? nullptr : &node_->value; }
  /// Of an object.
  std::map<std::string, JsonNode> const& members() const { return node_->members; }

  Node member(std::string const& name) const {
    auto const at = node_->members.find(name);
    return {this, name, at == node_->members.end() ? nullptr : &at->second};
  }

  [[noreturn]] void fail(std::string const& text) const { source_.refuse(at(), pointer(), text); }
  [[noreturn]] void refuse(std::string const& expected) const {
    fail("expected " + expected + ", found " + found());
  }
  void needObject() const {
    if (node_ == nullptr || !node_->value.is_object()) refuse("an object");
  }

 private:
  Node(Node const* parent, std::string name, JsonNode const* node)
      : source_(parent->source_), parent_(parent), name_(std::move(name)), node_(node) {}

  /// Where the value would have to be, if there is none.
  std::size_t at() const { return node_ == nullptr ? parent_->at() : node_->at; }

  json::json_pointer pointer() const {
    return parent_ == nullptr ? json::json_pointer() : parent_->pointer() / name_;
  }

  std::string found() const {
    if (node_ == nullptr) return "nothing";
    return node_->value.is_object() ? "an object" : node_->value.dump();
  }

  SourceText const& source_;
  Node const* parent_ = nullptr;
  std::string name_;
  JsonNode const* node_;
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

void checkName(Node const& node, String8 const& name) {
  if (isDeviceOrInterfaceName(name.view())) return;
  node.fail("expected a name of at most " + std::to_string(longestName) +
            " bytes, found a longer one");
}

void checkRules(Node const& node, Document const& document) {
  Node const devices = node.member("devices");
  std::set<String8> names;
  for (auto const& [pciPath, device] : document.devices) {
    Node const entry = devices.member(escaped(pciPath.view()));
    if (!isPciPath(pciPath.view())) {
      entry.fail("expected a PCI path of at most " + std::to_string(longestName) + " bytes and " +
                 std::to_string(deepestPath) + " levels, found a longer or deeper one");
    }
    if (device.name.empty()) continue;
    checkName(entry.member("name"), device.name);
    if (!names.insert(device.name).second) {
      entry.member("name").refuse("a name that no other device has");
    }
  }
  Node const interfaces = node.member("interfaces");
  for (auto const& [ifName, interface] : document.interfaces) {
    Node const entry = interfaces.member(escaped(ifName.view()));
    if (ifName.empty()) entry.fail("expected an interface's name, found an empty one");
    checkName(entry, ifName);
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
  for (auto const& [key, entry] : node.members()) {
    Node const member = node.member(key);
    read(member, values[readName(member, key)]);
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
  for (auto const& [name, entry] : node.members()) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
      node.member(name).fail("expected " + list(names) + ", found another member");
    }
  }
  checkRules(node, record);
}

// The lines of changes.

/// Moves the entries of `change` into the place of those that the document has.
void merge(SourceText const& source, JsonNode& document, JsonNode& change) {
  Node const changed(source, change);
  changed.needObject();
  for (auto& [name, entries] : change.members) {
    changed.member(name).needObject();
    auto const collection = document.members.find(name);
    if (collection == document.members.end()) {
      changed.member(name).fail("expected a collection of the document, found another member");
    }
    Node(source, document).member(name).needObject();
    for (auto& [key, entry] : entries.members) {
      if (entry.value.is_null()) {
        collection->second.members.erase(key);
      } else {
        collection->second.members.insert_or_assign(key, std::move(entry));
      }
    }
  }
}

/// The document as the changes after it have left it. A last line without an end is one that a
/// process was writing when it was killed.
JsonNode readMerged(SourceText const& source) {
  std::string_view const text = source.text();
  std::size_t const newline = text.find("\n+");  // in no JSON
  std::size_t at = newline == text.npos ? text.size() : newline + 1;
  JsonNode document = readJson(source, 0, at);
  std::uint32_t check = checkOf(text.substr(0, at));
  for (std::size_t end = 0; (end = text.find('\n', at)) != text.npos; at = end + 1) {
    std::string_view const line = text.substr(at, end - at);
    std::string_view const given = line.substr(std::min(line.size(), changePrefixBytes));
    std::string const prefix = changeLine(given, check).substr(0, changePrefixBytes);
    if (!line.starts_with(prefix)) {
      std::string_view const found = line.substr(0, changePrefixBytes);
      source.refuse(at, json::json_pointer(),
                    "expected '" + prefix + "', the check of all so far, found " +
                        Mox::valueToStrep(String8(found)).charPtr());
    }
    JsonNode changed = readJson(source, at + changePrefixBytes, end);
    merge(source, document, changed);
  }
  return document;
}

}  // namespace

SliceState readState(std::string_view text, std::string const& name) {
  SourceText const source(text, name);
  JsonNode const merged = readMerged(source);
  Document document;
  read(Node(source, merged), document);
  return {Interfaces(std::move(document.interfaces)), Devices(std::move(document.devices))};
}

}  // namespace Hardware::Kest::Sim
