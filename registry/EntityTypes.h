#pragma once

#include "model/KestSliceDmaConfig.h"
#include "model/KestSliceDmaStatus.h"
#include "platform/mox/Dir.h"
#include "registry/RecordTypes.h"
#include "registry/detail/EntityAdapter.h"

/// Type objects and adapters of the two entities.
namespace Hardware::Kest::Slice {

class KEST_SLICE_DMA_API KestSliceDmaConfig::GenericIf_ final
    : public detail::EntityAdapter<KestSliceDmaConfig> {
 public:
  using EntityAdapter::EntityAdapter;
  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override;

 private:
  void sliceIdOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                 std::unique_ptr<Mox::GenericIf>& result);
};

class KEST_SLICE_DMA_API KestSliceDmaConfig::_Type final
    : public detail::EntityTypeObject<KestSliceDmaConfig> {
 public:
  /// A new entity of that name. It is not put into a directory: `dir` is not used.
  static Mox::Ptr<KestSliceDmaConfig> newEntity(Mox::Name const& name, Mox::Dir* dir);
  std::unique_ptr<Mox::GenericIf> genericIfNew(Mox::GenericIf const& arguments) const override;
};

class KEST_SLICE_DMA_API KestSliceDmaStatus::GenericIf_ final
    : public detail::EntityAdapter<KestSliceDmaStatus> {
 public:
  using EntityAdapter::EntityAdapter;
};

class KEST_SLICE_DMA_API KestSliceDmaStatus::_Type final
    : public detail::EntityTypeObject<KestSliceDmaStatus> {
 public:
  /// A new entity of that name. It is not put into a directory: `dir` is not used.
  static Mox::Ptr<KestSliceDmaStatus> newEntity(Mox::Name const& name, Mox::Dir* dir);
  std::unique_ptr<Mox::GenericIf> genericIfNew(Mox::GenericIf const& arguments) const override;
};

}  // namespace Hardware::Kest::Slice
