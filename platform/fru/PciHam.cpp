#include "platform/fru/PciHam.h"

#include "platform/mox/GenericIfEntity.h"

namespace Fru {

PciHam::PciHam(Mox::Name name) noexcept : Entity(std::move(name)) {}

PciHam::~PciHam() = default;

Mox::MoxType const* PciHam::_fwkType() {
  static Mox::EntityType const type("Fru::PciHam");
  return &type;
}

Mox::MoxType const* PciHam::fwkType() const {
  return _fwkType();
}

}  // namespace Fru
