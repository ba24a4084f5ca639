#include "test/fuzz/MachineByName.h"

#include <algorithm>
#include <string>

#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "registry/EntityTypes.h"
#include "registry/SmType.h"
#include "test/fuzz/Fuzz.h"
#include "test/model/RecordNames.h"

namespace Fuzz {

using namespace Hardware::Kest::Slice;
using Mox::AttributeOpCode;
using Mox::GenericIf;
using Mox::String8;

namespace {

/// Lets the driver's devices be up or down as it was last told, by the lines of its calls.
void follow(Support::Journal& journal, Hardware::Kest::RecordingDriver& driver) {
  for (std::string const& line : journal.taken()) {
    std::size_t const name = line.find("('") + 2;
    bool const isUp = line.starts_with("kestDmaDeviceUp(");
    if (isUp || line.starts_with("kestDmaDeviceDown(")) {
      driver.upIs(line.substr(name, line.rfind('\'') - name), isUp);
    }
  }
}

template <class T>
std::vector<Mox::Ptr<T>> objectsOf(std::vector<Generic> const& all) {
  std::vector<Mox::Ptr<T>> objects;
  for (Generic const& generic : all) {
    bool isReference = false;
    auto const object = Mox::genericRef<T>(generic.get(), isReference);
    if (object) objects.push_back(object);
  }
  return objects;
}

bool isState(DeviceState state) {
  return state == DeviceState::deviceStateUp_ || state == DeviceState::deviceStateDown_;
}

/// All that machines may work on.
struct World {
  explicit World(std::vector<Generic> const& all)
      : machines(objectsOf<KestSliceDmaSm const>(all)),
        configs(objectsOf<KestSliceDmaConfig const>(all)),
        statuses(objectsOf<KestSliceDmaStatus const>(all)) {
    for (auto const& machine : machines) {
      if (machine->config()) configs.push_back(machine->config());
      statuses.push_back(machine->status());
    }
  }

  bool isRegistered(String8 const& devName) const {
    return std::any_of(statuses.begin(), statuses.end(),
                       [&](auto const& status) { return status->device(devName).registered(); });
  }
  bool hasState(String8 const& devName) const {
    return std::all_of(configs.begin(), configs.end(),
                       [&](auto const& config) { return isState(config->deviceState(devName)); });
  }
  /// Whether the driver's answers agree with what is recorded.
  bool survivesPoll() const {
    return std::all_of(statuses.begin(), statuses.end(), [](auto const& status) {
      for (auto it = status->deviceStateIteratorConst(); it; ++it) {
        bool up = false;
        Hardware::Kest::RecordingDriver::current().storeUp(it.key().charPtr(), &up);
        bool const isUp = it.value() == DeviceState::deviceStateUp_;
        bool const agrees = isState(it.value()) && isUp == up;
        if (!agrees && it.value() != DeviceState::deviceStateUnknown_) return false;
      }
      return true;
    });
  }
  bool survivesVerify() const {
    return std::all_of(machines.begin(), machines.end(), [](auto const& machine) {
      auto const config = machine->config();
      if (!config) return true;
      auto const& status = machine->status();
      bool same = true;
      for (auto it = config->switchPortIteratorConst(); it; ++it) {
        same = same && status->switchPort(it.key()).created();
      }
      for (auto it = config->deviceIteratorConst(); it; ++it) {
        same = same && status->device(it.key()).registered() &&
               status->deviceState(it.key()) == config->deviceState(it.key());
      }
      return same;
    });
  }

  std::vector<Mox::Ptr<KestSliceDmaSm const>> machines;
  std::vector<Mox::Ptr<KestSliceDmaConfig const>> configs;
  std::vector<Mox::Ptr<KestSliceDmaStatus const>> statuses;
};

/// The key that an operation is about: its index, or the key in a record.
String8 keyOf(Mox::AttributeOp const& op, GenericIf const* arg) {
  if (auto const* const port = Mox::genericVal<ConfigSwitchPort>(arg)) return port->ifName();
  if (auto const* const device = Mox::genericVal<ConfigDevice>(arg)) return device->devName();
  auto const* const key = Mox::genericVal<String8>(op.index);
  return key == nullptr ? String8() : *key;
}

bool isPortName(String8 const& key) {
  return key.pos("et") != String8::npos;
}

bool changeMayEnd(World const& world, Mox::AttributeOp const& op, GenericIf const* arg) {
  using Config = KestSliceDmaConfig;
  String8 const key = keyOf(op, arg);
  switch (op.attribute) {
    case Config::SwitchPorts::attributeId:
    case Config::NativeVlans::attributeId:
    case Config::SwitchportModes::attributeId:
      return !isPortName(key);
    case Config::DeviceStates::attributeId: {
      if (!world.isRegistered(key)) return false;
      auto const* const stored = Mox::genericVal<DeviceState>(arg);
      bool const stays = op.code == AttributeOpCode::store ? stored != nullptr && isState(*stored)
                                                           : world.hasState(key);
      return !stays || op.code == AttributeOpCode::remove;
    }
    default:
      return false;
  }
}

bool machineMayEnd(World const& world, GenericIf const& on, Mox::AttributeOp const& op,
                   GenericIf const* arg) {
  Mox::Attribute const* const attribute = on.type()->typeNode()->attribute(op.attribute);
  if (attribute == nullptr) return false;
  String8 const& name = attribute->name;
  String8 key;
  if (arg != nullptr && arg->type() == GenericIf::List_::_fwkType()) {
    auto const& items = static_cast<GenericIf::List_ const&>(*arg).items();
    auto const* const first = items.empty() ? nullptr : Mox::genericVal<String8>(items[0].get());
    if (first != nullptr) key = *first;
  }
  if (name == "handleSwitchPort" || name == "handleNativeVlan") return !isPortName(key);
  if (name == "handleDeviceState") return world.isRegistered(key) && !world.hasState(key);
  if (name == "doVerify") return !world.survivesVerify();
  bool const polls =
      name == "handleTimerExpired" || name == "handleInitialized" || name == "stateTimer";
  return polls && !world.survivesPoll();
}

template <class Entity>
void requireWholeEntity(Mox::Ptr<Entity> const& entity) {
  Generic const byName = Mox::genericOf(entity);
  entity->forEachCollection([&]<class Collection>(Collection& collection) {
    std::size_t walked = 0;
    auto other = byName->attributeIteratorConst(Collection::attributeId);
    for (auto it = collection.iteratorConst(); it; ++it, ++*other) {
      ++walked;
      require(collection.has(it.key()), "what is walked is found", it.key().view());
      require(static_cast<bool>(*other), "both walks go as far");
      require(*Mox::genericVal<String8>(other->key().get()) == it.key(),
              "both walks meet the same");
      if constexpr (detail::IsRecord<typename Collection::Value>) {
        require(Collection::keyOf(it.value()) == it.key(), "a record is under its own key");
      }
    }
    require(!*other, "both walks go as far");
    require(walked == collection.count(), "a walk meets every entry, once");
  });
}

}  // namespace

MachineByName::MachineByName() {
  driver.reaction = [this] { follow(journal, driver); };
  sm = kestSliceDmaSmFactory(config, status);
}

void MachineByName::requireWhole() const {
  requireWholeEntity(config);
  requireWholeEntity(status);
}

bool mayEnd(std::vector<Generic> const& all, GenericIf const& on, Mox::AttributeOp const& op,
            GenericIf const* arg) {
  if (on.isConst() || op.code < Mox::AttributeOpCode::store) return false;
  if (on.type() == KestSliceDmaConfig::_fwkType()) return changeMayEnd(World(all), op, arg);
  if (on.type() == KestSliceDmaSm::_fwkType()) return machineMayEnd(World(all), on, op, arg);
  return false;
}

}  // namespace Fuzz
