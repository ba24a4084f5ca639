#include "platform/mox/Activity.h"

#include "platform/mox/GenericIfEntity.h"

namespace Mox {

ActivityConfig::~ActivityConfig() = default;

MoxType const* ActivityConfig::_fwkType() {
  static EntityType const type("Mox::ActivityConfig");
  return &type;
}

MoxType const* ActivityConfig::fwkType() const {
  return _fwkType();
}

ActivityManagerConfig::ActivityManagerConfig() : clock_(new Clock("clock")) {}

ActivityManagerConfig::~ActivityManagerConfig() = default;

Ptr<ActivityManagerConfig> activityManager() {
  static Ptr<ActivityManagerConfig> const manager(new ActivityManagerConfig);
  return manager;
}

}  // namespace Mox
