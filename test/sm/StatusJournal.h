#pragma once

#include "model/KestSliceDmaStatus.h"
#include "test/support/Journal.h"

namespace Hardware::Kest::Slice {

/// Observer that writes down every change of a status with the new value, or "none" for an entry
/// that is gone: "status switchPort et1: created", "status deviceState fap0: none".
class StatusJournal : public KestSliceDmaStatus::NotifieeConst {
 public:
  /// Registers with the status.
  StatusJournal(Mox::Ptr<KestSliceDmaStatus> const& status, Support::Journal& journal);

  void onSwitchPort(Mox::String8 ifName) override;
  void onNativeVlan(Mox::String8 ifName) override;
  void onSwitchportMode(Mox::String8 ifName) override;
  void onDevice(Mox::String8 devName) override;
  void onDeviceState(Mox::String8 devName) override;

 private:
  Support::Journal& journal_;
};

/// The whole content of a status, as the lines that its journal would write; collection by
/// collection, each in order of its keys.
Support::Lines content(KestSliceDmaStatus const& status);

}  // namespace Hardware::Kest::Slice
