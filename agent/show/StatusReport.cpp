#include "agent/show/StatusReport.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "agent/access/Collections.h"
#include "agent/access/ValueText.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::DeviceState;

enum class Mark { none, good, bad };

struct Cell {
  std::string text;
  Mark mark = Mark::none;
};

using Row = std::vector<Cell>;

struct Table {
  std::string subject;  // of each row, as in "port"
  std::vector<std::string> columns;
  std::vector<Row> rows;
};

constexpr char const* nothing = "-";

Cell yesNo(bool yes) {
  return {yes ? "yes" : "no", yes ? Mark::good : Mark::bad};
}

std::string orNothing(std::string const& text) {
  return text.empty() ? nothing : text;
}

Row portRow(Mox::String8 const& ifName, Config const& config, Status const& status) {
  Config::SwitchPort const port = config.switchPort(ifName);
  auto const vlan = status.nativeVlanIteratorConst(ifName);
  auto const mode = status.switchportModeIteratorConst(ifName);
  return {{nameText(ifName)},
          {orNothing(nameText(port.devName()))},
          {std::to_string(port.destId())},
          {port.macAddr().stringValue().charPtr()},
          yesNo(status.switchPort(ifName).created()),
          {vlan ? valueText(vlan.value()) : nothing},
          {mode ? valueText(mode.value()) : nothing}};
}

Cell stateCell(DeviceState state, DeviceState wanted) {
  return {valueText(state), state == wanted ? Mark::good : Mark::bad};
}

Row deviceRow(Mox::String8 const& devName, Config const& config, Status const& status) {
  Config::Device const device = config.device(devName);
  return {{nameText(devName)},
          {device.pciHam() ? device.pciHam()->fullName().charPtr() : nothing},
          {valueText(device.fapType())},
          yesNo(status.device(devName).registered()),
          stateCell(status.deviceState(devName), config.deviceState(devName))};
}

/// The keys of both collections, in natural order.
std::vector<Mox::String8> allKeys(std::vector<Mox::String8> const& keys,
                                  std::vector<Mox::String8> const& more) {
  std::vector<Mox::String8> all;
  std::set_union(keys.begin(), keys.end(), more.begin(), more.end(), std::back_inserter(all),
                 NaturalOrder());
  return all;
}

Table portTable(Config const& config, Status const& status) {
  Table table{
      "port", {"interface", "device", "destination", "MAC", "created", "native VLAN", "mode"}, {}};
  for (Mox::String8 const& ifName :
       allKeys(keysOf<Config::SwitchPorts>(config), keysOf<Status::SwitchPorts>(status))) {
    table.rows.push_back(portRow(ifName, config, status));
  }
  return table;
}

Table deviceTable(Config const& config, Status const& status) {
  Table table{"device", {"device", "handle", "chip type", "registered", "state"}, {}};
  for (Mox::String8 const& devName :
       allKeys(keysOf<Config::Devices>(config), keysOf<Status::Devices>(status))) {
    table.rows.push_back(deviceRow(devName, config, status));
  }
  return table;
}

std::string marked(Console const& console, Cell const& cell, std::string const& text) {
  switch (cell.mark) {
    case Mark::good:
      return console.good(text);
    case Mark::bad:
      return console.bad(text);
    case Mark::none:
      break;
  }
  return text;
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

void showTable(Console& console, Table const& table) {
  std::vector<std::size_t> widths;
  for (std::size_t column = 0; column < table.columns.size(); ++column) {
    std::size_t width = table.columns[column].size();
    for (Row const& row : table.rows) width = std::max(width, row[column].text.size());
    widths.push_back(width);
  }
  widths.back() = 0;  // nothing follows it
  auto const showRow = [&](auto const& text) {
    std::string line;
    for (std::size_t column = 0; column < widths.size(); ++column) {
      line += (column == 0 ? "" : "  ") + text(column);
    }
    console.line(line);
  };
  showRow([&](std::size_t c) { return console.heading(padded(table.columns[c], widths[c])); });
  for (Row const& row : table.rows) {
    showRow([&](std::size_t c) { return marked(console, row[c], padded(row[c].text, widths[c])); });
  }
}

void showLines(Console& console, Table const& table) {
  for (Row const& row : table.rows) {
    std::string line = table.subject + " " + row[0].text;
    for (std::size_t column = 1; column < row.size(); ++column) {
      std::string name = table.columns[column];
      std::replace(name.begin(), name.end(), ' ', '-');
      line.append(" ").append(name).append("=").append(row[column].text);
    }
    console.line(line);
  }
}

}  // namespace

void showStatus(Console& console, Config const& config, Status const& status) {
  for (Table const& table : {deviceTable(config, status), portTable(config, status)}) {
    if (table.rows.empty()) continue;
    if (console.terminal()) {
      console.line("");
      showTable(console, table);
    } else {
      showLines(console, table);
    }
  }
}

std::vector<std::string> notUp(Config const& config, Status const& status) {
  std::vector<std::string> missing;
  for (Mox::String8 const& devName : keysOf<Config::Devices>(config)) {
    bool const up = status.device(devName).registered() &&
                    status.deviceState(devName) == config.deviceState(devName);
    if (!up) missing.push_back("device " + nameText(devName));
  }
  for (Mox::String8 const& ifName : keysOf<Config::SwitchPorts>(config)) {
    if (!status.switchPort(ifName).created()) {
      missing.push_back("port " + nameText(ifName));
    }
  }
  return missing;
}

}  // namespace Kest::Agent
