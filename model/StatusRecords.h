#pragma once

#include <iosfwd>
#include <tuple>
#include <utility>

#include "model/Export.h"
#include "model/detail/FieldTable.h"
#include "platform/mox/MoxType.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Slice {

/// What the state machine reports of one switch port.
class KEST_SLICE_DMA_API StatusSwitchPort {
 public:
  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort";

  class _Type;  // type object and generic access: registry/RecordTypes.h
  class GenericIf_;
  static Mox::MoxType const* _fwkType();

  StatusSwitchPort() = default;
  /// Reads the text form at `it` and leaves `it` behind it; `Mox::RangeException` otherwise.
  StatusSwitchPort(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end);

  Mox::String8 const& ifName() const { return fields_.ifName; }
  void ifNameIs(Mox::String8 ifName) { fields_.ifName = std::move(ifName); }
  bool created() const { return fields_.created; }
  void createdIs(bool created) { fields_.created = created; }

  friend bool operator==(StatusSwitchPort const&, StatusSwitchPort const&) = default;

  struct Fields {
    Mox::String8 ifName;   // interface name; the key of the port
    bool created = false;  // whether the port's kernel interface has been created

    friend bool operator==(Fields const&, Fields const&) = default;
  };
  explicit StatusSwitchPort(Fields fields) : fields_(std::move(fields)) {}
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
static_assert(detail::isComplete<StatusSwitchPort::Fields>(StatusSwitchPort::fieldTable()));

/// The text form.
KEST_SLICE_DMA_API Mox::String8 valueToStrep(StatusSwitchPort const& record);
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out, StatusSwitchPort const& record);

/// What the state machine reports of one device.
class KEST_SLICE_DMA_API StatusDevice {
 public:
  static constexpr char const* typeName = "Hardware::Kest::Slice::KestSliceDmaStatus::Device";

  class _Type;  // type object and generic access: registry/RecordTypes.h
  class GenericIf_;
  static Mox::MoxType const* _fwkType();

  StatusDevice() = default;
  /// Reads the text form at `it` and leaves `it` behind it; `Mox::RangeException` otherwise.
  StatusDevice(Mox::String8::IteratorConst& it, Mox::String8::IteratorConst const& end);

  Mox::String8 const& devName() const { return fields_.devName; }
  void devNameIs(Mox::String8 devName) { fields_.devName = std::move(devName); }
  bool registered() const { return fields_.registered; }
  void registeredIs(bool registered) { fields_.registered = registered; }

  friend bool operator==(StatusDevice const&, StatusDevice const&) = default;

  struct Fields {
    Mox::String8 devName;     // device name; the key of the device
    bool registered = false;  // whether the driver accepted the device's parameters

    friend bool operator==(Fields const&, Fields const&) = default;
  };
  explicit StatusDevice(Fields fields) : fields_(std::move(fields)) {}
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
static_assert(detail::isComplete<StatusDevice::Fields>(StatusDevice::fieldTable()));

/// The text form.
KEST_SLICE_DMA_API Mox::String8 valueToStrep(StatusDevice const& record);
KEST_SLICE_DMA_API std::ostream& operator<<(std::ostream& out, StatusDevice const& record);

}  // namespace Hardware::Kest::Slice
