#pragma once

#include "platform/mox/Entity.h"

namespace Fru {

/// PCI hardware-access handle of a chip: it gives access to the chip at one PCI address. Handles
/// are told apart by identity; the name, such as `0000:05:00.0`, is the address.
class MOX_API PciHam : public Mox::Entity {
 public:
  explicit PciHam(Mox::Name name) noexcept;
  ~PciHam() override;

  Mox::MoxType const* fwkType() const override;
  static Mox::MoxType const* _fwkType();
};

}  // namespace Fru
