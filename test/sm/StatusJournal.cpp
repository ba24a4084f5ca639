#include "test/sm/StatusJournal.h"

#include <map>
#include <sstream>
#include <string>

namespace Hardware::Kest::Slice {

namespace {

std::string text(KestSliceDmaStatus::SwitchPort const& port) {
  return port.created() ? "created" : "not created";
}

std::string text(KestSliceDmaStatus::Device const& device) {
  return device.registered() ? "registered" : "not registered";
}

std::string text(auto const& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

template <class IteratorConst>
std::string line(char const* collection, Mox::String8 const& key, IteratorConst const& it) {
  return std::string("status ") + collection + " " + key.charPtr() + ": " +
         (it ? text(it.value()) : "none");
}

}  // namespace

StatusJournal::StatusJournal(Mox::Ptr<KestSliceDmaStatus> const& status, Support::Journal& journal)
    : journal_(journal) {
  StatusJournal::notifierIs(status);
  StatusJournal::isRegisteredNotifieeIs(true);
}

void StatusJournal::onSwitchPort(Mox::String8 ifName) {
  journal_.add(line("switchPort", ifName, notifier()->switchPortIteratorConst(ifName)));
}

void StatusJournal::onNativeVlan(Mox::String8 ifName) {
  journal_.add(line("nativeVlan", ifName, notifier()->nativeVlanIteratorConst(ifName)));
}

void StatusJournal::onSwitchportMode(Mox::String8 ifName) {
  journal_.add(line("switchportMode", ifName, notifier()->switchportModeIteratorConst(ifName)));
}

void StatusJournal::onDevice(Mox::String8 devName) {
  journal_.add(line("device", devName, notifier()->deviceIteratorConst(devName)));
}

void StatusJournal::onDeviceState(Mox::String8 devName) {
  journal_.add(line("deviceState", devName, notifier()->deviceStateIteratorConst(devName)));
}

Support::Lines content(KestSliceDmaStatus const& status) {
  Support::Lines lines;
  status.forEachCollection([&](auto const& collection) {
    std::map<Mox::String8, std::string> sorted;
    for (auto it = collection.iteratorConst(); it; ++it) {
      sorted.emplace(it.key(), line(collection.name, it.key(), it));
    }
    for (auto const& entry : sorted) lines.push_back(entry.second);
  });
  return lines;
}

}  // namespace Hardware::Kest::Slice
