#pragma once

#include "registry/CollectionObserver.h"
#include "registry/DeferredNotification.h"
#include "registry/RecordTypes.h"

/// Templates that the library itself does not use. Instantiated, they show what they use of the
/// platform.
namespace Hardware::Kest::Slice {

template class CollectionObserver<KestSliceDmaConfig>;
template class CollectionObserver<KestSliceDmaStatus>;
template class DeferredNotification<KestSliceDmaConfig>;
template class DeferredNotification<KestSliceDmaStatus>;
template class detail::ValueAdapter<DeviceState>;

}  // namespace Hardware::Kest::Slice
