#include <algorithm>
#include <memory>
#include <vector>

#include "platform/fru/PciHam.h"
#include "platform/hardware/kest/FapType.h"
#include "platform/hardware/kest/SmMode.h"
#include "platform/mox/GenericEnum.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/IntrospectionReactor.h"
#include "platform/mox/RangeException.h"
#include "registry/DeviceStateType.h"
#include "test/fuzz/Fuzz.h"
#include "test/fuzz/MachineByName.h"

/// Generic access: any operation on any object, with any index and argument, is carried out or
/// refused in the documented ways, and leaves the entities whole.
namespace {

using namespace Hardware::Kest::Slice;
using Fuzz::Generic;
using Mox::AttributeOpCode;
using Mox::GenericIf;
using Mox::genericOf;
using Mox::String8;

/// Operations, read from the input, on the objects of a machine and on values that come up.
class Run {
 public:
  explicit Run(Fuzz::Input input) : input_(input) {
    GenericIf::List_ empty;
    keep(genericOf(machine_.config));
    keep(genericOf(machine_.status));
    keep(genericOf(machine_.sm));
    keep(genericOf(Mox::Ptr<KestSliceDmaConfig const>(machine_.config)));
    keep(genericOf(Mox::Ptr<KestSliceDmaStatus const>(machine_.status)));
    keep(genericOf(Mox::Ptr<KestSliceDmaSm const>(machine_.sm)));
    keep(genericOf(Mox::Ptr<KestSliceDmaConfig>()));
    keep(genericOf(machine_.handle));
    keep(empty.clone());
  }

  void all() {
    while (!input_.empty()) {
      try {
        step();
      } catch (Mox::GenericAccessException const& refused) {
        Fuzz::require(!refused.text().empty(), "a refusal says why");
      } catch (Mox::RangeException const& refused) {
        Fuzz::require(!refused.text().empty(), "a refusal says why");
      }
    }
    machine_.requireWhole();
    kept_.clear();
    machine_.requireWhole();
  }

 private:
  static constexpr std::size_t mostKept = 24;
  static constexpr std::size_t longestList = 12;

  /// Keeps a value for later steps. When there are enough, it replaces the oldest apart from the
  /// objects at the front.
  void keep(Generic generic) {
    constexpr std::size_t objects = 3;
    if (generic == nullptr) return;
    if (kept_.size() == mostKept) kept_.erase(kept_.begin() + objects);
    kept_.push_back(std::move(generic));
  }
  GenericIf& any() { return *kept_[input_.byte() % kept_.size()]; }
  GenericIf const* anyOrNone() { return input_.flag() ? &any() : nullptr; }
  String8 anyKey() {
    static String8 const keys[] = {"et1", "et2", "et3/1", "fap0", "fap1", ""};
    return keys[input_.byte() % std::size(keys)];
  }
  Mox::MoxType const& anyType() {
    auto const& types = Mox::IntrospectionReactor::global().types();
    return *types[input_.byte() % types.size()];
  }
  Mox::AttributeId anyAttribute(GenericIf const& of) {
    unsigned const kind = input_.below(8);
    if (kind == 0) return input_.byte();
    if (kind == 1) return 200U + input_.byte();
    Mox::TypeNode const* const node = of.type()->typeNode();
    if (node == nullptr || node->attributes().empty()) return of.attributeId("none");
    auto const& attribute = node->attributes()[input_.byte() % node->attributes().size()];
    Fuzz::require(of.attributeId(attribute.name) == attribute.id, "an attribute has one number");
    return attribute.id;
  }

  void step() {
    switch (input_.below(12)) {
      case 0:
        return keep(genericOf(anyKey()));
      case 1:
        return keep(anyNumber());
      case 2:
        return list();
      case 3:
        return keep(anyType().genericIfNew(any()));
      case 4:
        return text();
      case 5:
        return equality();
      case 6:
        return walk();
      default:
        operate();
    }
  }

  Generic anyNumber() {
    unsigned const number = input_.byte();
    switch (input_.below(7)) {
      case 0:
        return genericOf(static_cast<std::uint16_t>(number * 257U));
      case 1:
        return genericOf(static_cast<std::uint32_t>(number));
      case 2:
        return genericOf(number % 2 == 1);
      case 3:
        return genericOf(static_cast<DeviceState>(number % 4));
      case 4:
        return genericOf(static_cast<Bridging::SwitchportMode>(number % 4));
      case 5:
        return genericOf(static_cast<Hardware::Kest::SmMode>(number % 4));
      default:
        return genericOf(static_cast<Hardware::Kest::FapType>(number % 4));
    }
  }

  void list() {
    auto items = std::make_unique<GenericIf::List_>();
    std::size_t const count = input_.byte() % longestList;
    for (std::size_t i = 0; i < count; ++i) {
      GenericIf const& item = any();
      if (item.type() != GenericIf::List_::_fwkType()) items->add(item.clone());
    }
    keep(std::move(items));
  }

  /// Reads a value's text form as another type; read as its own type it is the same value.
  void text() {
    GenericIf& value = any();
    Mox::MoxType const& type = input_.flag() ? *value.type() : anyType();
    String8 const form = value.strRep();
    Generic read = type.genericIf(form, input_.flag());
    Fuzz::require(read->type() == &type, "a type reads its own values");
    if (&type == value.type() && value.voidPtr() != nullptr) {
      Fuzz::requireSame(read->strRep().view(), form.view(), "a value is read as it was printed");
    }
    keep(std::move(read));
  }

  void equality() {
    GenericIf& one = any();
    Generic const copy = one.clone();
    Fuzz::require(copy->type() == one.type() && copy->isConst() == one.isConst(),
                  "a copy is of the same kind");
    Generic same;
    one.attributeOp({Mox::wholeAttributeId, AttributeOpCode::equality}, copy.get(), same);
    Fuzz::require(*Mox::genericVal<bool>(same.get()), "a copy is equal", one.strRep().view());
    GenericIf& other = any();
    Generic there, back;
    one.attributeOp({Mox::wholeAttributeId, AttributeOpCode::equality}, &other, there);
    other.attributeOp({Mox::wholeAttributeId, AttributeOpCode::equality}, &one, back);
    Fuzz::require(*Mox::genericVal<bool>(there.get()) == *Mox::genericVal<bool>(back.get()),
                  "equality goes both ways");
  }

  /// Steps through a collection while it is changed.
  void walk() {
    GenericIf& object = any();
    Mox::AttributeId const id = anyAttribute(object);
    auto const at = input_.flag() ? object.attributeIteratorConst(id)
                                  : object.attributeIteratorKeyConst(id, &any());
    for (unsigned steps = input_.below(4); *at && steps > 0; --steps) {
      Generic const key = at->key();
      if (input_.flag()) operateOn(object, {id, AttributeOpCode::remove, key.get()}, nullptr);
      keep(object.attributeIterator_iterObj(*at));
      ++*at;
    }
  }

  void operate() {
    static constexpr unsigned codes[] = {0, 0, 1, 2, 100, 128, 128, 128, 129, 130, 131, 131};
    GenericIf& on = any();
    auto const code = static_cast<AttributeOpCode>(codes[input_.below(std::size(codes))]);
    Mox::AttributeId const id = anyAttribute(on);
    GenericIf const* const index = anyOrNone();
    operateOn(on, {id, code, index}, anyOrNone());
  }

  void operateOn(GenericIf& on, Mox::AttributeOp const& op, GenericIf const* arg) {
    if (Fuzz::mayEnd(kept_, on, op, arg)) return;
    Generic result;
    try {
      on.attributeOp(op, arg, result);
    } catch (std::exception const&) {
      Fuzz::require(result == nullptr, "what is refused yields nothing");
      throw;
    }
    Fuzz::require(!(on.isConst() && (op.code >= Mox::AttributeOpCode::store)),
                  "what is constant is not changed");
    keep(std::move(result));
  }

  Fuzz::Input input_;
  Fuzz::MachineByName machine_;
  std::vector<Generic> kept_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Run(Fuzz::Input(bytes, size)).all();
  return 0;
}
