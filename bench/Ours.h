#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "bench/Workload.h"
#include "model/KestSliceDmaConfig.h"

namespace Kest::Bench {

/// The record that the library keeps of `port`.
inline Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort recordOf(Port const& port) {
  return Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort(
      {Mox::String8(port.ifName), port.destId, port.shadowIntfId, port.trafficClass,
       Mox::String8(port.devName), port.fapNum, port.ctrl, port.hwLag,
       Pelk::EthAddr(port.macAddr)});
}

/// Observer that counts what it is told.
class CountingObserver : public Hardware::Kest::Slice::KestSliceDmaConfig::NotifieeConst {
 public:
  explicit CountingObserver(std::uint64_t& told) : told_(told) {}

  using NotifieeConst::onSwitchPort;
  void onSwitchPort(Mox::String8 /*ifName*/) override { ++told_; }

 private:
  std::uint64_t& told_;
};

/// The library's own collection: the switch ports of a configuration.
class Ours {
 public:
  using Key = Mox::String8;
  using Record = Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort;

  static constexpr char const* name = "ours";

  static Key key(std::string const& text) { return Key(text); }
  static Record record(Port const& port) { return recordOf(port); }

  Record lookup(Key const& key) const { return config_->switchPort(key); }
  void put(Record const& record) { config_->switchPortIs(record); }
  Record del(Key const& key) { return config_->switchPortDel(key); }
  void delAll() { config_->switchPortDelAll(); }

  std::uint64_t changeCount() const { return config_->changeCount(); }
  std::uint64_t lookupCount() const { return config_->lookupCount(); }

  /// Replaces the observers by `count` that count what they are told.
  void observersAre(std::size_t count) {
    observers_.clear();
    told_.assign(count, 0);
    for (std::size_t i = 0; i < count; ++i) {
      observers_.emplace_back(new CountingObserver(told_[i]));
      observers_.back()->notifierIs(config_);
      observers_.back()->isRegisteredNotifieeIs(true);
    }
  }
  std::vector<std::uint64_t> const& told() const { return told_; }

 private:
  Mox::Ptr<Hardware::Kest::Slice::KestSliceDmaConfig> config_{
      new Hardware::Kest::Slice::KestSliceDmaConfig("slice")};
  std::vector<std::uint64_t> told_;
  std::vector<Mox::Ptr<CountingObserver>> observers_;
};

}  // namespace Kest::Bench
