#pragma once

#include <memory>

#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "test/support/GenericRefusal.h"

/// What a tool does that knows objects by name alone.
namespace Hardware::Kest::Slice {

using Generic = std::unique_ptr<Mox::GenericIf>;
using Code = Mox::AttributeOpCode;
using List = Mox::GenericIf::List_;

using Test::operate;
using Test::refused;

inline Generic string(char const* text) {
  return Mox::genericOf(Mox::String8(text));
}

inline Generic number(std::uint32_t value) {
  return Mox::genericOf(value);
}

template <class... Items>
List listOf(Items... items) {
  List list;
  (list.add(std::move(items)), ...);
  return list;
}

template <class T>
T valueOf(Generic const& generic) {
  return *Mox::genericVal<T>(generic.get());
}

/// An operation on the attribute `name`, under `index` if it is a collection.
inline Generic operate(Mox::GenericIf& on, char const* name, Code code,
                       Generic const& index = nullptr, Mox::GenericIf const* arg = nullptr) {
  return operate(on, {on.attributeId(name), code, index.get()}, arg);
}

/// How it is refused.
inline Test::GenericRefusal refused(Mox::GenericIf& on, char const* name, Code code,
                                    Generic const& index = nullptr,
                                    Mox::GenericIf const* arg = nullptr) {
  return refused(on, {on.attributeId(name), code, index.get()}, arg);
}

inline Generic read(Mox::GenericIf& on, char const* name, Generic const& index = nullptr) {
  return operate(on, name, Code::read, index);
}

inline void store(Mox::GenericIf& on, char const* name, Generic const& value,
                  Generic const& index = nullptr) {
  operate(on, name, Code::store, index, value.get());
}

inline Generic remove(Mox::GenericIf& on, char const* name, Generic const& index = nullptr) {
  return operate(on, name, Code::remove, index);
}

template <class... Items>
void invoke(Mox::GenericIf& on, char const* name, Items... arguments) {
  List const list = listOf(std::move(arguments)...);
  operate(on, name, Code::invoke, nullptr, &list);
}

inline bool equal(Mox::GenericIf& a, Mox::GenericIf const* b) {
  return valueOf<bool>(operate(a, {Mox::wholeAttributeId, Code::equality}, b));
}

}  // namespace Hardware::Kest::Slice
