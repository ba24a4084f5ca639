#pragma once

#include <type_traits>

#include "platform/mox/MoxType.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/String8.h"

namespace Mox {

class Entity;

String8 valueToStrep(String8 const& value);
String8 valueToStrep(unsigned long long value);
String8 valueToStrep(double value);
String8 valueToStrep(bool value);
String8 valueToStrep(char const*) = delete;  // would convert to bool
String8 valueToStrepOfRawPtr(Entity const* entity, MoxType const* type);

using StrepIterator = String8::IteratorConst;

void needString(StrepIterator& it, StrepIterator const& end, char const* token);
String8 sequenceToValue(StrepIterator& it, StrepIterator const& end, String8*);
unsigned int sequenceToValue(StrepIterator& it, StrepIterator const& end, unsigned int*);
unsigned short sequenceToValue(StrepIterator& it, StrepIterator const& end, unsigned short*);
unsigned long long sequenceToValue(StrepIterator& it, StrepIterator const& end,
                                   unsigned long long*);
double sequenceToValue(StrepIterator& it, StrepIterator const& end, double*);
bool sequenceToValue(StrepIterator& it, StrepIterator const& end, bool*);

namespace detail {

Ptr<Entity> readReference(StrepIterator& it, StrepIterator const& end, MoxType const* type);
[[noreturn]] void throwJunk(StrepIterator const& at, String8 const& text);

}  // namespace detail

template <class T>
Ptr<T> sequenceToValue(StrepIterator& it, StrepIterator const& end, Ptr<T>*) {
  return ptrCast<T>(detail::readReference(it, end, T::_fwkType()));
}

[[noreturn]] void rethrowFromDeserializeAttr(RangeException const& exception,
                                             char const* attributeName);

template <class T>
void deserializeAttr(StrepIterator& it, StrepIterator const& end, T* field,
                     char const* attributeName) {
  try {
    *field = sequenceToValue(it, end, field);
  } catch (RangeException const& exception) {
    rethrowFromDeserializeAttr(exception, attributeName);
  }
}

template <class T>
T strepToValue(String8 const& text, T const* = nullptr) {
  StrepIterator it = text.begin();
  T const value = [&] {
    if constexpr (std::is_constructible_v<T, StrepIterator&, StrepIterator const&>) {
      return T(it, text.end());
    } else {
      return sequenceToValue(it, text.end(), static_cast<T*>(nullptr));
    }
  }();
  if (!(it == text.end())) detail::throwJunk(it, text);
  return value;
}

}  // namespace Mox
