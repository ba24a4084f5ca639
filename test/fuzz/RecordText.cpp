#include "platform/fru/PciHam.h"
#include "platform/mox/Dir.h"
#include "platform/mox/GenericValue.h"
#include "registry/DeviceStateType.h"
#include "registry/RecordTypes.h"
#include "test/fuzz/Fuzz.h"
#include "test/model/RecordNames.h"

/// The text forms of the records and of the device state. The first byte selects the type.
namespace {

using namespace Hardware::Kest::Slice;
using Mox::String8;

/// Adds the handle that references in texts lead to.
void addHandle() {
  static bool const added = [] {
    auto const pci = Mox::dirAt("/pci");
    pci->entityIs(Mox::Ptr<Mox::Entity>(new Fru::PciHam("0000:05:00.0")));
    return true;
  }();
  static_cast<void>(added);
}

/// The registry reads the same texts.
template <class T>
void requireByNameToo(String8 const& text, T const* value) {
  try {
    auto const byName = Mox::TypeOf<T>::type()->genericIf(text, true);
    Fuzz::require(value != nullptr, "what is refused directly is refused by name", text.view());
    Fuzz::require(*Mox::genericVal<T>(byName.get()) == *value, "one value by both ways");
    Fuzz::requireSame(byName->strRep().view(), valueToStrep(*value).view(), "one text form");
  } catch (Mox::RangeException const&) {
    Fuzz::require(value == nullptr, "what is taken directly is taken by name", text.view());
  }
}

template <class T>
T parsed(String8::IteratorConst& it, String8::IteratorConst const& end) {
  if constexpr (std::is_enum_v<T>) {
    return sequenceToValue(it, end, static_cast<T*>(nullptr));
  } else {
    return T(it, end);
  }
}

template <class T>
void readPrintRead(String8 const& text) {
  String8::IteratorConst it = text.begin();
  try {
    T const value = parsed<T>(it, text.end());
    Fuzz::require(it.pos() <= text.bytes(), "a reader stays in its text");
    String8 const form = valueToStrep(value);
    Fuzz::require(Mox::strepToValue<T>(form) == value, "a value is read as it was printed",
                  form.view());
    requireByNameToo<T>(text, it == text.end() ? &value : nullptr);
  } catch (Mox::RangeException const&) {
    Fuzz::require(it.pos() <= text.bytes(), "a reader refuses within its text");
    requireByNameToo<T>(text, nullptr);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  constexpr void (*types[])(String8 const&) = {
      readPrintRead<ConfigSwitchPort>, readPrintRead<ConfigDevice>, readPrintRead<StatusSwitchPort>,
      readPrintRead<StatusDevice>, readPrintRead<DeviceState>};
  addHandle();
  Fuzz::Input input(bytes, size);
  auto const readPrintReadOne = types[input.below(std::size(types))];
  readPrintReadOne(String8(input.rest()));
  return 0;
}
