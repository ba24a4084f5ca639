#include "bench/Ours.h"

#include <iterator>
#include <memory>

#include "bench/GenericReads.h"
#include "bench/Operations.h"
#include "platform/bridging/SwitchportMode.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/MoxType.h"
#include "platform/mox/Strep.h"
#include "sm/KestSliceDmaSm.h"

namespace Kest::Bench {

namespace {

using Hardware::Kest::Slice::DeviceState;
using Hardware::Kest::Slice::KestSliceDmaConfig;
using Hardware::Kest::Slice::KestSliceDmaSm;
using Hardware::Kest::Slice::KestSliceDmaStatus;

using Adapter = std::unique_ptr<Mox::GenericIf>;

std::vector<Adapter> adapters() {
  std::vector<Adapter> all;
  for (Ours::Record const& record : visitedRecords<Ours>(shortNames)) {
    all.push_back(Mox::genericOf(record));
  }
  return all;
}

std::uint64_t numberOf(Mox::GenericIf const& value) {
  if (auto const* number = Mox::genericVal<std::uint32_t>(&value)) return *number;
  if (auto const* text = Mox::genericVal<Mox::String8>(&value)) return text->bytes();
  if (auto const* flag = Mox::genericVal<bool>(&value)) return *flag ? 1 : 0;
  return Mox::genericVal<Pelk::EthAddr>(&value)->octets().size();
}

std::uint64_t readAdapter(Adapter const& record, Mox::AttributeId id) {
  Adapter result;
  record->attributeOp({id, Mox::AttributeOpCode::read, nullptr}, nullptr, result);
  return numberOf(*result);
}

void readById(Run& run) {
  auto const records = adapters();
  std::vector<Mox::AttributeId> ids;
  for (char const* name : attributeNames) ids.push_back(records[0]->attributeId(name));
  readAttributes(run, records, ids, readAdapter);
}

void readByName(Run& run) {
  auto const records = adapters();
  std::vector<Mox::String8> const strings(std::begin(attributeNames), std::end(attributeNames));
  readAttributes(run, records, strings, [](Adapter const& record, Mox::String8 const& name) {
    return readAdapter(record, record->attributeId(name));
  });
}

/// The state machine between its entities.
struct Machine {
  Mox::Ptr<KestSliceDmaConfig> config{new KestSliceDmaConfig("config")};
  Mox::Ptr<KestSliceDmaStatus> status{new KestSliceDmaStatus("status")};
  Mox::Ptr<KestSliceDmaSm> sm{kestSliceDmaSmFactory(config, status)};
};

/// A change of a port's configuration, to the status that says what the driver did. Of every three
/// ports one has no native VLAN, one has one, one tunnels.
void changeConfiguration(Run& run, Shape shape) {
  using Bridging::SwitchportMode;
  auto const vlanOf = [](std::size_t i) {
    return static_cast<std::uint16_t>(i % 3 == 0 ? 0 : 1 + i % 4094);
  };
  Machine machine;
  auto const ports = portsOf(shape);
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (vlanOf(i) > 0) {
      Mox::String8 const ifName(ports[i].ifName);
      machine.config->nativeVlanIs(ifName, vlanOf(i));
      machine.config->switchportModeIs(ifName, i % 3 == 1
                                                   ? SwitchportMode::switchportModeAccess_
                                                   : SwitchportMode::switchportModeDot1qTunnel_);
    }
    machine.config->switchPortIs(recordOf(ports[i]));
  }
  auto const* to = &visitedChangedRecords<Ours>(shape);
  auto const* from = &visitedRecords<Ours>(shape);
  std::size_t at = 0;
  run.repeat([&] {
    machine.config->switchPortIs((*to)[at]);
    if (++at == to->size()) {
      at = 0;
      std::swap(to, from);
    }
  });
  for (std::size_t i = 0; i < ports.size(); ++i) {
    Mox::String8 const ifName(ports[i].ifName);
    bool const isDone = machine.status->switchPort(ifName).created() &&
                        machine.status->nativeVlan(ifName) == vlanOf(i);
    if (!isDone) run.fail("a port is not as it was configured");
  }
}

void pollDevices(Run& run) {
  Machine machine;
  for (Port const& port : portsOf(shortNames)) {
    machine.status->deviceStateIs(Mox::String8(port.devName), DeviceState::deviceStateUp_);
  }
  run.repeat([&] { machine.sm->handleTimerExpired(); });
  run.operationsAre(shortNames.keys);
}

}  // namespace

void measureOurs() {
  measureMap<Ours>();
  measureUpdates<Ours>();
  measureOver("g", "ours", recordOf,
              [](Ours::Record const& record) { return valueToStrep(record); });
  measureOver(
      "h", "ours", [](Port const& port) { return valueToStrep(recordOf(port)); },
      [](Mox::String8 const& text) { return Mox::strepToValue<Ours::Record>(text); });
  measure("i", "by id", "ours", readById);
  measure("i", "by name", "ours", readByName);
  for (Shape const shape : {shortNames, longNames}) {
    measure("j", shape.text(), "ours", [=](Run& run) { changeConfiguration(run, shape); });
  }
  measure("l", "1000 devices", "ours", pollDevices);
}

}  // namespace Kest::Bench
