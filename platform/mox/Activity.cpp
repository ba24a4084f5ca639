#include "platform/mox/Activity.h"

namespace Mox {

ActivityConfig::~ActivityConfig() = default;

ActivityManagerConfig::ActivityManagerConfig() : clock_(new Clock("clock")) {}

ActivityManagerConfig::~ActivityManagerConfig() = default;

Ptr<ActivityManagerConfig> activityManager() {
  static Ptr<ActivityManagerConfig> const manager(new ActivityManagerConfig);
  return manager;
}

}  // namespace Mox
