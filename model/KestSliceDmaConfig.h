#pragma once

#include <cstdint>
#include <iosfwd>
#include <tuple>
#include <type_traits>
#include <utility>

#include "model/DeviceState.h"
#include "model/Export.h"
#include "model/detail/Collection.h"
#include "model/detail/FieldTable.h"
#include "model/detail/ObservedEntity.h"
#include "model/detail/SliceCollections.h"
#include "platform/bridging/SwitchportMode.h"
#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"
#include "platform/pelk/EthAddr.h"

namespace Hardware::Kest::Slice {

/// What a slice's DMA driver is to hold: written by the agents that own the slice, read and
/// observed by the state machine. Attributes `sliceId` 258, then the collections from 259.
/// `model/detail/Collections.inc` says what the operations on collections do.
class KEST_SLICE_DMA_API KestSliceDmaConfig : public detail::ObservedEntity {
 public:
  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaConfig";

  class NotifieeConst;
  class Notifiee;

  class _Type;  // type object and generic access: registry/EntityTypes.h
  class GenericIf_;
  static Mox::MoxType const* _fwkType();

  /// Configuration of one front-panel switch port, whose kernel interface the state machine
  /// creates.
  class KEST_SLICE_DMA_API SwitchPort {
   public:
    static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort";

    class _Type;  // type object and generic access: registry/RecordTypes.h
    class GenericIf_;
    static Mox::MoxType const* _fwkType();

    SwitchPort() = default;
    /// Reads the text form at `it` and leaves `it` just after it; `Mox::RangeException` otherwise.
    SwitchPort(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end);

    Mox::String8 const& ifName() const { return fields_.ifName; }
    void ifNameIs(Mox::String8 ifName) { fields_.ifName = std::move(ifName); }
    std::uint32_t destId() const { return fields_.destId; }
    void destIdIs(std::uint32_t destId) { fields_.destId = destId; }
    std::uint32_t shadowIntfId() const { return fields_.shadowIntfId; }
    void shadowIntfIdIs(std::uint32_t shadowIntfId) { fields_.shadowIntfId = shadowIntfId; }
    std::uint32_t trafficClass() const { return fields_.trafficClass; }
    void trafficClassIs(std::uint32_t trafficClass) { fields_.trafficClass = trafficClass; }
    Mox::String8 const& devName() const { return fields_.devName; }
    void devNameIs(Mox::String8 devName) { fields_.devName = std::move(devName); }
    std::uint32_t fapNum() const { return fields_.fapNum; }
    void fapNumIs(std::uint32_t fapNum) { fields_.fapNum = fapNum; }
    bool ctrl() const { return fields_.ctrl; }
    void ctrlIs(bool ctrl) { fields_.ctrl = ctrl; }
    bool hwLag() const { return fields_.hwLag; }
    void hwLagIs(bool hwLag) { fields_.hwLag = hwLag; }
    Pelk::EthAddr const& macAddr() const { return fields_.macAddr; }
    void macAddrIs(Pelk::EthAddr macAddr) { fields_.macAddr = macAddr; }

    friend bool operator==(SwitchPort const&, SwitchPort const&) = default;

    struct Fields {
      Mox::String8 ifName;             // interface name; the key of the port
      std::uint32_t destId = 0;        // destination identifier
      std::uint32_t shadowIntfId = 0;  // identifier of the shadow interface; 4096 for none
      std::uint32_t trafficClass = 0;  // traffic class of the port's packets
      Mox::String8 devName;            // device (chip) that carries the port
      std::uint32_t fapNum = 0;        // number of the FAP on that device
      bool ctrl = false;               // control flag
      bool hwLag = false;              // whether the port is a hardware link aggregate
      Pelk::EthAddr macAddr;           // MAC address

      friend bool operator==(Fields const&, Fields const&) = default;
    };
    explicit SwitchPort(Fields fields) : fields_(std::move(fields)) {}
    Fields const& fields() const { return fields_; }
    Fields& fields() { return fields_; }
    static constexpr auto fieldTable() {
      return std::tuple{
          detail::field("ifName", &Fields::ifName),
          detail::field("destId", &Fields::destId),
          detail::field("shadowIntfId", &Fields::shadowIntfId),
          detail::field("trafficClass", &Fields::trafficClass),
          detail::field("devName", &Fields::devName),
          detail::field("fapNum", &Fields::fapNum),
          detail::field("ctrl", &Fields::ctrl),
          detail::field("hwLag", &Fields::hwLag),
          detail::field("macAddr", &Fields::macAddr),
      };
    }

   private:
    Fields fields_;
  };

  /// Configuration of one packet-processor device (chip). It holds a counted reference to the
  /// handle; two records are equal only if they hold the same handle object.
  class KEST_SLICE_DMA_API Device {
   public:
    static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaConfig::Device";

    class _Type;  // type object and generic access: registry/RecordTypes.h
    class GenericIf_;
    static Mox::MoxType const* _fwkType();

    Device() = default;
    /// Reads the text form at `it` and leaves `it` just after it; `Mox::RangeException` otherwise,
    /// and for a number of FAPs outside 1 to 3.
    Device(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end);

    Mox::String8 const& devName() const { return fields_.devName; }
    void devNameIs(Mox::String8 devName) { fields_.devName = std::move(devName); }
    Mox::Ptr<Fru::PciHam const> const& pciHam() const { return fields_.pciHam; }
    void pciHamIs(Mox::Ptr<Fru::PciHam const> pciHam) { fields_.pciHam = std::move(pciHam); }
    FapType fapType() const { return fields_.fapType; }
    void fapTypeIs(FapType fapType) { fields_.fapType = fapType; }
    std::uint32_t numFaps() const { return fields_.numFaps; }
    void numFapsIs(std::uint32_t numFaps) { fields_.numFaps = numFaps; }
    /// Throws `Mox::RangeException` for a number of FAPs outside 1 to 3. To be called for records
    /// made from outside input; setting the number and storing the record do not check it.
    void rangeCheck() const;
    std::uint32_t cpuTmSysPort() const { return fields_.cpuTmSysPort; }
    void cpuTmSysPortIs(std::uint32_t cpuTmSysPort) { fields_.cpuTmSysPort = cpuTmSysPort; }
    std::uint32_t cpuEthSysPort() const { return fields_.cpuEthSysPort; }
    void cpuEthSysPortIs(std::uint32_t cpuEthSysPort) { fields_.cpuEthSysPort = cpuEthSysPort; }
    std::uint32_t cpuRawSysPort() const { return fields_.cpuRawSysPort; }
    void cpuRawSysPortIs(std::uint32_t cpuRawSysPort) { fields_.cpuRawSysPort = cpuRawSysPort; }
    std::uint32_t sflowPort() const { return fields_.sflowPort; }
    void sflowPortIs(std::uint32_t sflowPort) { fields_.sflowPort = sflowPort; }
    std::uint32_t cpuAradSysPort() const { return fields_.cpuAradSysPort; }
    void cpuAradSysPortIs(std::uint32_t cpuAradSysPort) { fields_.cpuAradSysPort = cpuAradSysPort; }
    std::uint32_t cpuArad() const { return fields_.cpuArad; }
    void cpuAradIs(std::uint32_t cpuArad) { fields_.cpuArad = cpuArad; }
    std::uint32_t cpuAradBridge() const { return fields_.cpuAradBridge; }
    void cpuAradBridgeIs(std::uint32_t cpuAradBridge) { fields_.cpuAradBridge = cpuAradBridge; }

    friend bool operator==(Device const&, Device const&) = default;

    struct Fields {
      Mox::String8 devName;                        // device name; the key of the device
      Mox::Ptr<Fru::PciHam const> pciHam;          // PCI hardware-access handle; may be null
      FapType fapType = FapType::fapTypeUnknown_;  // chip type
      std::uint32_t numFaps = 1;                   // number of FAPs on the device; valid: 1 to 3
      std::uint32_t cpuTmSysPort = 0;              // CPU TM system port
      std::uint32_t cpuEthSysPort = 0;             // CPU Ethernet system port
      std::uint32_t cpuRawSysPort = 0;             // CPU raw system port
      std::uint32_t sflowPort = 0;                 // sFlow port
      std::uint32_t cpuAradSysPort = 0;            // Arad CPU system port
      std::uint32_t cpuArad = 0;                   // Arad CPU port
      std::uint32_t cpuAradBridge = 0;             // Arad CPU bridge port

      friend bool operator==(Fields const&, Fields const&) = default;
    };
    explicit Device(Fields fields) : fields_(std::move(fields)) {}
    Fields const& fields() const { return fields_; }
    Fields& fields() { return fields_; }
    static constexpr auto fieldTable() {
      return std::tuple{
          detail::field("devName", &Fields::devName),
          detail::field("pciHam", &Fields::pciHam),
          detail::field("fapType", &Fields::fapType),
          detail::field("numFaps", &Fields::numFaps),
          detail::field("cpuTmSysPort", &Fields::cpuTmSysPort),
          detail::field("cpuEthSysPort", &Fields::cpuEthSysPort),
          detail::field("cpuRawSysPort", &Fields::cpuRawSysPort),
          detail::field("sflowPort", &Fields::sflowPort),
          detail::field("cpuAradSysPort", &Fields::cpuAradSysPort),
          detail::field("cpuArad", &Fields::cpuArad),
          detail::field("cpuAradBridge", &Fields::cpuAradBridge),
      };
    }

   private:
    Fields fields_;
  };

  explicit KestSliceDmaConfig(Mox::Name name) noexcept;
  /// Unlinks the observers that are still listed, then frees the collections, the last one first,
  /// then the rest. No observer is told.
  ~KestSliceDmaConfig() override;

  Mox::MoxType const* fwkType() const override;

  static constexpr Mox::AttributeId sliceIdAttributeId = firstOwnAttributeId;
  static constexpr char const* sliceIdName = "sliceId";
  /// Empty until it is set.
  Mox::String8 const& sliceId() const noexcept { return sliceId_; }
  /// Counts and announces a change; silent when the value is the current one.
  void sliceIdIs(Mox::String8 sliceId);

 private:
  Mox::String8 sliceId_;

  using Self = KestSliceDmaConfig;
  using SwitchPortArg = SwitchPort const&;
  using DeviceArg = Device const&;
  Mox::String8 scalarString(Mox::AttributeId id) const {
    return id == sliceIdAttributeId ? sliceIdName : Entity::attributeString(id);
  }

 public:
  static constexpr Mox::AttributeId firstCollectionId = sliceIdAttributeId + 1;

#include "model/detail/Collections.inc"
};

static_assert(detail::isComplete<KestSliceDmaConfig::SwitchPort>());
static_assert(detail::isComplete<KestSliceDmaConfig::Device>());

/// The text form.
KEST_SLICE_DMA_API Mox::String8 valueToStrep(KestSliceDmaConfig::SwitchPort const& record);
KEST_SLICE_DMA_API Mox::String8 valueToStrep(KestSliceDmaConfig::Device const& record);
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out,
                                            KestSliceDmaConfig::SwitchPort const& record);
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out,
                                            KestSliceDmaConfig::Device const& record);

namespace detail {

class SliceIdNotifiee : public EntityNotifiee<KestSliceDmaConfig> {
 public:
  virtual void onSliceId() {}
};

}  // namespace detail

/// Observer of a configuration. It reacts by overriding handlers.
class KEST_SLICE_DMA_API KestSliceDmaConfig::NotifieeConst
    : public detail::SliceHandlers<detail::SliceIdNotifiee> {
 public:
  ~NotifieeConst() override;
};

/// The variant for observers of a configuration that they may change.
class KEST_SLICE_DMA_API KestSliceDmaConfig::Notifiee : public NotifieeConst {
 public:
  ~Notifiee() override;
};

}  // namespace Hardware::Kest::Slice
