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
#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Slice {

/// What has been done to a slice's DMA driver: written by the state machine alone. Collections from
/// attribute 258. Its records are small and passed by value.
/// `model/detail/Collections.inc` says what the operations on collections do.
class KEST_SLICE_DMA_API KestSliceDmaStatus : public detail::ObservedEntity {
 public:
  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaStatus";

  class NotifieeConst;
  class Notifiee;

  class _Type;  // type object and generic access: registry/EntityTypes.h
  class GenericIf_;
  static Mox::MoxType const* _fwkType();

  /// What the state machine reports of one switch port.
  class KEST_SLICE_DMA_API SwitchPort {
   public:
    static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort";

    class _Type;  // type object and generic access: registry/RecordTypes.h
    class GenericIf_;
    static Mox::MoxType const* _fwkType();

    SwitchPort() = default;
    /// Reads the text form at `it` and leaves `it` just after it; `Mox::RangeException` otherwise.
    SwitchPort(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end);

    Mox::String8 const& ifName() const { return fields_.ifName; }
    void ifNameIs(Mox::String8 ifName) { fields_.ifName = std::move(ifName); }
    bool created() const { return fields_.created; }
    void createdIs(bool created) { fields_.created = created; }

    friend bool operator==(SwitchPort const&, SwitchPort const&) = default;

    struct Fields {
      Mox::String8 ifName;   // interface name; the key of the port
      bool created = false;  // whether the port's kernel interface has been created

      friend bool operator==(Fields const&, Fields const&) = default;
    };
    explicit SwitchPort(Fields fields) : fields_(std::move(fields)) {}
    Fields const& fields() const { return fields_; }
    Fields& fields() { return fields_; }
    static constexpr auto fieldTable() {
      return std::tuple{
          detail::field("ifName", &Fields::ifName),
          detail::field("created", &Fields::created),
      };
    }

   private:
    Fields fields_;
  };

  /// What the state machine reports of one device.
  class KEST_SLICE_DMA_API Device {
   public:
    static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaStatus::Device";

    class _Type;  // type object and generic access: registry/RecordTypes.h
    class GenericIf_;
    static Mox::MoxType const* _fwkType();

    Device() = default;
    /// Reads the text form at `it` and leaves `it` just after it; `Mox::RangeException` otherwise.
    Device(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end);

    Mox::String8 const& devName() const { return fields_.devName; }
    void devNameIs(Mox::String8 devName) { fields_.devName = std::move(devName); }
    bool registered() const { return fields_.registered; }
    void registeredIs(bool registered) { fields_.registered = registered; }

    friend bool operator==(Device const&, Device const&) = default;

    struct Fields {
      Mox::String8 devName;     // device name; the key of the device
      bool registered = false;  // whether the driver accepted the device's parameters

      friend bool operator==(Fields const&, Fields const&) = default;
    };
    explicit Device(Fields fields) : fields_(std::move(fields)) {}
    Fields const& fields() const { return fields_; }
    Fields& fields() { return fields_; }
    static constexpr auto fieldTable() {
      return std::tuple{
          detail::field("devName", &Fields::devName),
          detail::field("registered", &Fields::registered),
      };
    }

   private:
    Fields fields_;
  };

  explicit KestSliceDmaStatus(Mox::Name name) noexcept;
  /// Unlinks the observers that are still listed, then frees the collections, the last one first.
  /// No observer is told.
  ~KestSliceDmaStatus() override;

  Mox::MoxType const* fwkType() const override;

 private:
  using Self = KestSliceDmaStatus;
  using SwitchPortArg = SwitchPort;
  using DeviceArg = Device;
  Mox::String8 scalarString(Mox::AttributeId id) const { return Entity::attributeString(id); }

 public:
  static constexpr Mox::AttributeId firstCollectionId = firstOwnAttributeId;

#include "model/detail/Collections.inc"
};

static_assert(detail::isComplete<KestSliceDmaStatus::SwitchPort>());
static_assert(detail::isComplete<KestSliceDmaStatus::Device>());

/// The text form.
KEST_SLICE_DMA_API Mox::String8 valueToStrep(KestSliceDmaStatus::SwitchPort const& record);
KEST_SLICE_DMA_API Mox::String8 valueToStrep(KestSliceDmaStatus::Device const& record);
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out,
                                            KestSliceDmaStatus::SwitchPort const& record);
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out,
                                            KestSliceDmaStatus::Device const& record);

/// Observer of a status. It reacts by overriding handlers.
class KEST_SLICE_DMA_API KestSliceDmaStatus::NotifieeConst
    : public detail::SliceHandlers<detail::EntityNotifiee<KestSliceDmaStatus>> {
 public:
  ~NotifieeConst() override;
};

/// The variant for observers of a status that they may change.
class KEST_SLICE_DMA_API KestSliceDmaStatus::Notifiee : public NotifieeConst {
 public:
  ~Notifiee() override;
};

}  // namespace Hardware::Kest::Slice
