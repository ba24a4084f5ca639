#include "agent/show/StatusReport.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "agent/access/Collections.h"
#include "agent/access/ValueText.h"
#include "text/Table.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::DeviceState;

using Text::Cell;
using Text::Mark;
using Text::Row;

struct Report {
  std::string subject;  // of each row, as in "port"
  std::vector<std::string> columns;
  std::vector<Row> rows;
};

constexpr char const* dash = "-";

Cell yesNo(bool yes) {
  return {yes ? "yes" : "no", yes ? Mark::good : Mark::bad};
}

std::string orNothing(std::string const& text) {
  return text.empty() ? dash : text;
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
          {vlan ? valueText(vlan.value()) : dash},
          {mode ? valueText(mode.value()) : dash}};
}

Cell stateCell(DeviceState state, DeviceState wanted) {
  return {valueText(state), state == wanted ? Mark::good : Mark::bad};
}

Row deviceRow(Mox::String8 const& devName, Config const& config, Status const& status) {
  Config::Device const device = config.device(devName);
  return {{nameText(devName)},
          {device.pciHam() ? device.pciHam()->fullName().charPtr() : dash},
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

Report portReport(Config const& config, Status const& status) {
  Report report{
      "port", {"interface", "device", "destination", "MAC", "created", "native VLAN", "mode"}, {}};
  for (Mox::String8 const& ifName :
       allKeys(keysOf<Config::SwitchPorts>(config), keysOf<Status::SwitchPorts>(status))) {
    report.rows.push_back(portRow(ifName, config, status));
  }
  return report;
}

Report deviceReport(Config const& config, Status const& status) {
  Report report{"device", {"device", "handle", "chip type", "registered", "state"}, {}};
  for (Mox::String8 const& devName :
       allKeys(keysOf<Config::Devices>(config), keysOf<Status::Devices>(status))) {
    report.rows.push_back(deviceRow(devName, config, status));
  }
  return report;
}

void showTable(Console& console, Report const& report) {
  Text::Table table(report.columns);
  for (Row const& row : report.rows) table.add(row);
  std::string text = table.text(console.colour());
  text.pop_back();  // the last line's end
  console.line("\n" + text);
}

void showLines(Console& console, Report const& report) {
  for (Row const& row : report.rows) {
    std::string line = report.subject + " " + row[0].text;
    for (std::size_t column = 1; column < row.size(); ++column) {
      std::string name = report.columns[column];
      std::replace(name.begin(), name.end(), ' ', '-');
      line.append(" ").append(name).append("=").append(row[column].text);
    }
    console.line(line);
  }
}

}  // namespace

void showStatus(Console& console, Config const& config, Status const& status) {
  for (Report const& report : {deviceReport(config, status), portReport(config, status)}) {
    if (report.rows.empty()) continue;
    console.terminal() ? showTable(console, report) : showLines(console, report);
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
