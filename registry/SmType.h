#pragma once

#include "platform/mox/GenericIfPtrInterface.h"
#include "registry/EntityTypes.h"
#include "sm/KestSliceDmaSm.h"

namespace Hardware::Kest::Slice {

/// Adapter of the state machine. Handlers are invoked with a list of their arguments; one that
/// would work on a configuration, status or timer that is not bound is refused.
class KEST_SLICE_DMA_API KestSliceDmaSm::GenericIf_ final : public Mox::GenericIfPtrInterface {
 public:
  GenericIf_(Mox::PtrInterface* object, bool isConst);
  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override;
};

/// Type object of the state machine.
class KEST_SLICE_DMA_API KestSliceDmaSm::_Type final : public Mox::MoxType {
 public:
  _Type() noexcept;
  std::unique_ptr<Mox::GenericIf> genericIf_(Mox::PtrInterface* object,
                                             bool isConst) const override;
  /// From `config`, which may be a null reference, and `status`; calls the factory.
  std::unique_ptr<Mox::GenericIf> genericIfNew(Mox::GenericIf const& arguments) const override;
};

}  // namespace Hardware::Kest::Slice
