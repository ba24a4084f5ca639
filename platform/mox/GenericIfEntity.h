#pragma once

#include <utility>

#include "platform/mox/GenericIfPtrInterface.h"

namespace Mox {

/// Adapter of an entity: what every entity has, read-only.
class MOX_API GenericIfEntity : public GenericIfPtrInterface {
 public:
  using GenericIfPtrInterface::GenericIfPtrInterface;
  ~GenericIfEntity() override;

  void attributeOp(AttributeOp const& op, GenericIf const* arg,
                   std::unique_ptr<GenericIf>& result) override;
};

/// Type object of an entity type; as it is, of one without attributes of its own.
class MOX_API EntityType : public MoxType {
 public:
  explicit EntityType(String8 fullName) noexcept : MoxType(std::move(fullName), Kind::entity) {}
  ~EntityType() override;

  using MoxType::genericIf;
  /// A reference, from its text form.
  std::unique_ptr<GenericIf> genericIf(String8 const& text, bool isConst) const override;
  std::unique_ptr<GenericIf> genericIf_(PtrInterface* object, bool isConst) const override;
};

}  // namespace Mox
