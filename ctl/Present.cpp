#include "ctl/Present.h"

#include "ctl/Failure.h"
#include "ctl/Text.h"
#include "text/Escapes.h"
#include "text/Table.h"

namespace Kest::Ctl {

namespace {

using Text::Cell;
using Text::Row;
using Text::Table;

/// "3 changes", "1 change".
std::string counted(std::size_t count, std::string const& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string joined(Json const& list, char const* separator) {
  std::string all;
  for (Json const& item : list) all.append(all.empty() ? "" : separator).append(shown(item));
  return all;
}

/// "(name: type, ...)"
std::string signature(Json const& arguments) {
  std::string all;
  for (Json const& argument : arguments) {
    all +=
        (all.empty() ? "" : ", ") + shown(argument.at("name")) + ": " + shown(argument.at("type"));
  }
  return "(" + all + ")";
}

std::string keyText(Json const& attribute) {
  if (!attribute.contains("key")) return "";
  return shown(attribute.at("key").at("name")) + ": " + shown(attribute.at("key").at("type"));
}

/// An enumerator's name without its prefix, in lower case: `deviceStateUp` becomes `up`.
std::string enumerator(Json const& value, std::string const& prefix) {
  std::string text = value.is_null() ? "-" : shown(value);
  if (text.starts_with(prefix)) text.erase(0, prefix.size());
  if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') text[0] = static_cast<char>(text[0] + 32);
  return text;
}

Json const& member(Json const& side, char const* name) {
  static Json const nothing = nullptr;
  auto const found = side.is_object() ? side.find(name) : side.end();
  return side.is_object() && found != side.end() ? *found : nothing;
}

std::string yesNo(Json const& flag) {
  return flag == true ? "yes" : "no";
}

/// What the sides say, only once if they agree.
Cell beside(std::vector<std::string> const& sides) {
  std::string text;
  bool agree = true;
  for (std::string const& side : sides) {
    agree = agree && side == sides.front();
    text.append(text.empty() ? "" : " / ").append(side);
  }
  return agree ? Cell{sides.front()} : Cell{text, Text::Mark::bad};
}

std::string text(Json const& value) {
  return value.is_null() || value == Json("") ? "-" : shown(value);
}

Row deviceRow(Json const& device) {
  Json const& config = device.at("config");
  Json const& status = device.at("status");
  Json const& driver = device.at("driver");
  Json const& up = member(driver, "up");
  return {
      {shown(device.at("name"))},
      {text(member(config, "pciHam"))},
      {enumerator(member(config, "fapType"), "fapType")},
      beside({yesNo(!member(config, "devName").is_null()), yesNo(member(status, "registered"))}),
      beside({enumerator(member(config, "deviceState"), "deviceState"),
              enumerator(member(status, "deviceState"), "deviceState"),
              up.is_null() ? "-"
              : up == true ? "up"
                           : "down"})};
}

std::string vlanText(Json const& vlan) {
  constexpr int none = 4096;
  return vlan.is_null() || vlan == none || vlan == 0 ? "-" : shown(vlan);
}

Row portRow(Json const& port, bool driverTells) {
  Json const& config = port.at("config");
  Json const& status = port.at("status");
  Json const& driver = port.at("driver");
  Json const& exists = member(config, "ifName");
  std::vector<std::string> created{yesNo(!exists.is_null()), yesNo(member(status, "created"))};
  std::vector<std::string> vlans{vlanText(member(config, "nativeVlan")),
                                 vlanText(member(status, "nativeVlan"))};
  if (driverTells) {
    created.push_back(yesNo(!driver.is_null()));
    vlans.push_back(vlanText(member(driver, "nativeVlan")));
  }
  // Without a native VLAN the mode has no effect.
  bool const hasVlan = vlans.front() != "-";
  std::string const mode = enumerator(member(config, "switchportMode"), "switchportMode");
  return {{shown(port.at("name"))},
          {text(member(config, "devName"))},
          {text(member(config, "destId"))},
          {text(member(config, "macAddr"))},
          beside(created),
          beside(vlans),
          hasVlan && mode != "-"
              ? beside({mode, enumerator(member(status, "switchportMode"), "switchportMode")})
              : Cell{mode}};
}

}  // namespace

Shown presentTypes(Json const& result, Options const&, bool colour) {
  Table table({"type", "kind"});
  for (Json const& type : result) table.add({{shown(type.at("name"))}, {shown(type.at("kind"))}});
  return {table.text(colour)};
}

Shown presentType(Json const& result, Options const&, bool colour) {
  std::string text = shown(result.at("name")) + ": " + shown(result.at("kind")) + "\n";
  if (!result.at("constructor").empty()) {
    text += "made from " + signature(result.at("constructor")) + "\n";
  }
  if (result.at("attributes").empty()) return {text};
  Table table({"attribute", "id", "class", "type", "key", "arguments", "flags"});
  for (Json const& attribute : result.at("attributes")) {
    table.add({{shown(attribute.at("name"))},
               {shown(attribute.at("id"))},
               {shown(attribute.at("class"))},
               {shown(attribute.at("type"))},
               {keyText(attribute)},
               {attribute.contains("arguments") ? signature(attribute.at("arguments")) : ""},
               {joined(attribute.at("flags"), " ")}});
  }
  return {text + table.text(colour)};
}

Shown presentValue(Json const& result, Options const&, bool) {
  return {page(result.at("value"))};
}

Shown presentSet(Json const& result, Options const&, bool) {
  bool const changed = result.at("changed").get<bool>();
  return {shown(result.at("path")) + ": " + shown(result.at("value")) +
          (changed ? "" : " (unchanged)") + "\n"};
}

Shown presentRemoved(Json const& result, Options const&, bool) {
  bool const removed = result.at("removed").get<bool>();
  std::string const path = shown(result.at("path"));
  return {removed ? path + ": removed, was " + shown(result.at("value")) + "\n"
                  : path + ": was not there\n"};
}

Shown presentNotified(Json const& result, Options const&, bool) {
  return {shown(result.at("path")) + ": announced again\n"};
}

Shown presentCalled(Json const& result, Options const&, bool) {
  return {shown(result.at("handler")) + ": done\n"};
}

Shown presentDifferences(Json const& result, Options const&, bool) {
  std::string text;
  for (Json const& difference : result.at("differences")) {
    text += shown(difference.at("message")) + "\n";
  }
  std::size_t const count = result.at("differences").size();
  bool const clean = result.at("clean").get<bool>();
  text += clean ? "clean" : counted(count, "difference");
  if (auto const left = result.find("notCompared"); left != result.end()) {
    text += "; this driver does not tell of " + joined(*left, ", ");
  }
  return {text + "\n", clean};
}

Shown presentSlice(Json const& result, Options const&, bool colour) {
  std::string text;
  bool driverTells = false;
  for (Json const& port : result.at("ports")) {
    driverTells = driverTells || !port.at("driver").is_null();
  }
  Table devices({"device", "handle", "chip type", "registered", "state"});
  for (Json const& device : result.at("devices")) devices.add(deviceRow(device));
  Table ports({"port", "device", "destination", "MAC", "created", "native VLAN", "mode"});
  for (Json const& port : result.at("ports")) ports.add(portRow(port, driverTells));
  if (!result.at("devices").empty()) text += devices.text(colour);
  if (!result.at("devices").empty() && !result.at("ports").empty()) text += "\n";
  if (!result.at("ports").empty()) text += ports.text(colour);
  return {text.empty() ? "no devices, no ports\n" : text};
}

Shown presentApplied(Json const& result, Options const&, bool) {
  std::string text = "announced " + counted(result.at("announced").get<std::size_t>(), "change") +
                     ", " + shown(result.at("unchanged")) + " unchanged\n";
  for (Json const& missing : result.at("notUp")) text += "not up: " + shown(missing) + "\n";
  return {text, result.at("notUp").empty()};
}

Shown presentSteps(Json const& result, Options const&, bool) {
  std::string text;
  for (Json const& step : result.at("steps")) text += shown(step) + "\n";
  return {text + counted(result.at("steps").size(), "change") + ", " +
              shown(result.at("unchanged")) + " unchanged\n",
          result.at("steps").empty()};
}

/// Unchanged: it may go to a file or a pipe.
Shown presentContent(Json const& result, Options const&, bool) {
  if (result.value("changed", false)) {
    throw Failure(Exit::failed, "busy",
                  "the configuration changed while it was written: try again");
  }
  return {result.at("content").get<std::string>()};
}

Shown presentNothing(Json const&, Options const&, bool) {
  return {""};
}

Shown presentSetting(Json const& result, Options const&, bool) {
  std::string const setting = shown(result.at("setting"));
  return {(setting.empty() ? "no facility is traced" : setting) + "\n"};
}

Shown presentDriver(Json const& result, Options const& options, bool) {
  std::string const& action = options.arguments.at(0);
  if (action == "log" || action == "dump") {
    return {Text::visibleLines(result.at("text").get_ref<std::string const&>())};
  }
  if (action == "state") return {Text::visibleLines(result.at("state").dump(2)) + "\n"};
  return {action == "flip" ? Text::visible(options.arguments.at(1)) + ": flipped\n"
                           : std::string("faults replaced\n")};
}

Shown presentMode(Json const& result, Options const&, bool) {
  return {shown(result.at("mode")) + " (" + shown(result.at("number")) + ")\n"};
}

std::string eventLine(Json const& event) {
  if (event.value("event", "") == "lost") {
    return "(" + counted(event.at("count").get<std::size_t>(), "change") + " not shown)\n";
  }
  Json const& value = event.at("value");
  return shown(event.at("path")) + (value.is_null() ? " removed" : ": " + shown(value)) + "\n";
}

}  // namespace Kest::Ctl
