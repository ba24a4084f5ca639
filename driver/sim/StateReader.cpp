#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "driver/sim/ChangeLine.h"
#include "driver/sim/Names.h"
#include "driver/sim/StateText.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"
#include "platform/pelk/EthAddr.h"
#include "text/Escapes.h"
#include "text/FileError.h"
#include "text/JsonValue.h"
#include "text/Words.h"

namespace Hardware::Kest::Sim {

using Mox::String8;
using Text::inMember;
using Text::Json;
using Text::JsonMisfit;
using Text::needObject;
using Text::refuseJson;

namespace {

using Text::readJson;

/// The values' own types throw, too.
template <class Work>
void inTypedMember(char const* name, Work const& work) {
  inMember(name, [&] {
    try {
      work();
    } catch (Mox::RangeException const& refused) {
      refuseJson(std::string(refused.text().view()));
    }
  });
}

// What the members' types leave open: the rules that the operations keep.

void require(bool isKept, char const* member, std::string const& expected, Json const& found) {
  if (!isKept) inMember(member, [&] { refuseJson(&found, expected); });
}

void checkRules(Document const&) {}

void checkRules(DeviceParam const& param) {
  require(param.numFaps >= 1 && param.numFaps <= Devices::maxFaps, "numFaps",
          "1 to " + std::to_string(Devices::maxFaps), param.numFaps);
}

void checkRules(Interface const& interface) {
  // A device may be registered with fewer FAPs once it carries interfaces.
  constexpr int maxFaps = Devices::maxFaps;
  int const fapNum = interface.param.fapNum;
  require(interface.param.devName.empty() || (fapNum >= 0 && fapNum < maxFaps), "fapNum",
          "0 to " + std::to_string(maxFaps - 1), fapNum);
  inTypedMember("macAddr", [&] { Pelk::EthAddr const addr(interface.param.macAddr); });
  require(Interface::isNativeVlan(interface.nativeVlan), "nativeVlan",
          "1 to " + std::to_string(Interface::lastVlan) + ", or " +
              std::to_string(Interface::noVlan) + " for none",
          interface.nativeVlan);
  require(!interface.mode || interface.nativeVlan != Interface::noVlan, "mode",
          "false where there is no native VLAN", interface.mode);
}

void checkName(String8 const& name) {
  if (isDeviceOrInterfaceName(name.view())) return;
  refuseJson("expected a name of at most " + std::to_string(longestName) +
             " bytes, found a longer one");
}

void checkRules(Device const& device) {
  if (!device.name.empty()) inMember("name", [&] { checkName(device.name); });
}

void checkKey(String8 const& ifName, Interface const&) {
  if (ifName.empty()) refuseJson("expected an interface's name, found an empty one");
  checkName(ifName);
}

void checkKey(String8 const& pciPath, Device const&) {
  if (isPciPath(pciPath.view())) return;
  refuseJson("expected a PCI path of at most " + std::to_string(longestName) + " bytes and " +
             std::to_string(deepestPath) + " levels, found a longer or deeper one");
}

// Values. A null pointer: there is none.

template <class Record>
void readJson(Json const* object, Record& record);

String8 readName(std::string const& text) {
  std::string const name = Text::percentDecoded(text);
  if (std::string const form = Text::percentEncoded(name); form != text) {
    refuseJson("expected the string's form " + Json(form).dump() + ", found " + Json(text).dump());
  }
  return String8(name);
}

void readJson(Json const* value, String8& string) {
  if (value == nullptr || !value->is_string()) refuseJson(value, "a string");
  string = readName(value->get_ref<std::string const&>());
}

void readJson(Json const* value, Format&) {
  if (value == nullptr || *value != formatName) refuseJson(value, Json(formatName).dump());
}

void readJson(Json const* value, FapType& fapType) {
  if (value == nullptr || !(value->is_string() || value->is_number_integer())) {
    refuseJson(value, "a FAP type's name or number");
  }
  if (value->is_number()) {
    std::int32_t number = 0;
    readJson(value, number);
    fapType = static_cast<FapType>(number);
    return;
  }
  String8 name;
  readJson(value, name);
  fapType = Mox::strepToValue<FapType>(Mox::valueToStrep(name));
}

template <class Value>
void readJson(Json const* found, std::optional<Value>& value) {
  if (found == nullptr || !(found->is_object() || found->is_null())) {
    refuseJson(found, "an object or null");
  }
  if (found->is_object()) readJson(found, value.emplace());
}

/// @param isChange null stands for an entry that has gone
template <class Value>
void readEntries(Json const* entries, std::map<String8, Value>& values, bool isChange) {
  needObject(entries);
  for (auto const& entry : entries->items()) {
    inMember(entry.key(), [&] {
      String8 const key = readName(entry.key());
      if (isChange && entry.value().is_null()) {
        values.erase(key);
        return;
      }
      Value value;
      readJson(&entry.value(), value);
      checkKey(key, value);
      values[key] = std::move(value);
    });
  }
}

template <class Value>
void readJson(Json const* entries, std::map<String8, Value>& values) {
  readEntries(entries, values, false);
}

template <class Record>
void readJson(Json const* object, Record& record) {
  needObject(object);
  std::vector<std::string> names;
  forMembers(record, [&](char const* name, auto& member) {
    auto const found = object->find(name);
    inTypedMember(name, [&] { readJson(found == object->end() ? nullptr : &*found, member); });
    names.emplace_back(name);
  });
  for (auto const& member : object->items()) {
    if (std::find(names.begin(), names.end(), member.key()) != names.end()) continue;
    inMember(member.key(),
             [&] { refuseJson("expected " + Text::listed(names) + ", found another member"); });
  }
  checkRules(record);
}

void readChange(Json const* change, Document& document) {
  needObject(change);
  for (auto const& entries : change->items()) {
    bool isCollection = false;
    forCollections(document, [&](char const* name, auto& values) {
      if (entries.key() != name) return;
      isCollection = true;
      inMember(name, [&] { readEntries(&entries.value(), values, true); });
    });
    if (isCollection) continue;
    inMember(entries.key(),
             [] { refuseJson("expected a collection of the document, found another member"); });
  }
}

/// What entries must not say beside each other.
void checkNames(Document const& document) {
  auto const refuseName = [](char const* collection, String8 const& key, char const* member,
                             std::string const& expected, String8 const& found) {
    inMember(collection, [&] {
      inMember(Text::percentEncoded(key.view()),
               [&] { require(false, member, expected, Text::percentEncoded(found.view())); });
    });
  };
  std::set<String8> names;
  for (auto const& [pciPath, device] : document.devices) {
    if (device.name.empty() || names.insert(device.name).second) continue;
    refuseName("devices", pciPath, "name", "a name that no other device has", device.name);
  }
  for (auto const& [ifName, interface] : document.interfaces) {
    String8 const& devName = interface.param.devName;
    if (devName.empty() || names.contains(devName)) continue;
    refuseName("interfaces", ifName, "devName",
               "the name of a device that there is, or an empty one", devName);
  }
}

/// The text of a state: a document, and changes.
struct Source {
  std::string_view text;
  std::string const& name;

  /// @param at from 0, in bytes of the text
  [[noreturn]] void refuse(std::size_t at, std::string_view message) const {
    Mox::throwRangeException(String8(Text::Place::inText(text, at).headline(name, message)));
  }

  /// @param visit called with the JSON text from `begin` to `end`, and with `begin`
  template <class Visit>
  void visitJson(std::size_t begin, std::size_t end, Visit const& visit) const {
    try {
      Text::JsonDocument const json(text.substr(begin, end - begin));
      try {
        visit(json, begin);
      } catch (JsonMisfit const& misfit) {
        throw json.refusal(misfit.pointer, misfit.message);
      }
    } catch (Text::JsonError const& refused) {
      refuse(begin + refused.at(), refused.what());
    }
  }

  /// The document, then the changes. A last line without an end is one that a process was writing
  /// when it was killed.
  template <class VisitDocument, class VisitChange>
  void visitAll(VisitDocument const& visitDocument, VisitChange const& visitChange) const {
    std::size_t const newline = text.find("\n+");  // in no JSON
    std::size_t at = newline == text.npos ? text.size() : newline + 1;
    visitJson(0, at, visitDocument);
    std::uint32_t check = checkOf(text.substr(0, at));
    for (std::size_t end = 0; (end = text.find('\n', at)) != text.npos; at = end + 1) {
      std::string_view const line = text.substr(at, end - at);
      std::string_view const given = line.substr(std::min(line.size(), changePrefixBytes));
      std::string const prefix = changeLine(given, check).substr(0, changePrefixBytes);
      if (!line.starts_with(prefix)) {
        std::string_view const found = line.substr(0, changePrefixBytes);
        refuse(at, "expected '" + prefix + "', the check of all so far, found " +
                       Mox::valueToStrep(String8(found)).charPtr());
      }
      visitJson(at + changePrefixBytes, end, visitChange);
    }
  }

  /// Refuses a value where the text says it last.
  [[noreturn]] void refuse(JsonMisfit const& misfit) const {
    std::size_t last = 0;
    auto const find = [&](Text::JsonDocument const& json, std::size_t begin) {
      if (json.has(misfit.pointer)) last = begin + json.refusal(misfit.pointer, "").at();
    };
    visitAll(find, find);
    refuse(last, Text::JsonError(last, misfit.pointer, misfit.message).what());
  }
};

}  // namespace

SliceState readState(std::string_view text, std::string const& name) {
  Source const source{text, name};
  Document document;
  source.visitAll([&](auto const& json, std::size_t) { readJson(&json.value(), document); },
                  [&](auto const& json, std::size_t) { readChange(&json.value(), document); });
  try {
    checkNames(document);
  } catch (JsonMisfit const& misfit) {
    source.refuse(misfit);
  }
  return {Interfaces(std::move(document.interfaces)), Devices(std::move(document.devices))};
}

}  // namespace Hardware::Kest::Sim
