#pragma once

#include <type_traits>

#include "platform/mox/MoxType.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/String8.h"

/// Text forms ("strep": string representation) of the basic values, and their readers.
///
/// A reader reads one value from `it` and leaves `it` just after it. It skips blanks (blank, tab,
/// newline, carriage return) before the value. When it throws a `RangeException`, `it` stands where
/// the text was refused.
namespace Mox {

class Entity;

// Writers.

/// In apostrophes; `\\`, `\'`, `\n`, `\t`, `\r` escaped so, other control bytes as `\xHH`, bytes
/// from 0x80 as they are.
MOX_API String8 valueToStrep(String8 const& value);
/// Decimal.
MOX_API String8 valueToStrep(unsigned long long value);
/// The shortest decimal form that reads back to the same number, as in `2.0` or `1e+300`; `inf`,
/// `-inf` and `nan`.
MOX_API String8 valueToStrep(double value);
/// `True` or `False`.
MOX_API String8 valueToStrep(bool value);
String8 valueToStrep(char const*) = delete;  // would convert to bool

/// Reference to an entity of the given type: `EntityPtr('/full/name', 'Type')`; null: `None`.
MOX_API String8 valueToStrepOfRawPtr(Entity const* entity, MoxType const* type);

// Readers.

/// Matches one token. A blank in it stands for any run of blanks, none included; every other
/// character stands for itself.
MOX_API void needString(String8::IteratorConst& it, String8::IteratorConst const& end,
                        char const* token);

MOX_API String8 sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end,
                                String8*);
/// Decimal digits; anything else, a sign included, or a number too large is refused.
MOX_API unsigned int sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end,
                                     unsigned int*);
MOX_API unsigned short sequenceToValue(String8::IteratorConst& it,
                                       String8::IteratorConst const& end, unsigned short*);
MOX_API unsigned long long sequenceToValue(String8::IteratorConst& it,
                                           String8::IteratorConst const& end, unsigned long long*);
/// A decimal number, as it is printed.
MOX_API double sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end,
                               double*);
MOX_API bool sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end, bool*);

namespace detail {

/// Reads a reference; refuses one that leads nowhere or to an entity of another type.
MOX_API Ptr<Entity> readReference(String8::IteratorConst& it, String8::IteratorConst const& end,
                                  MoxType const* type);

}  // namespace detail

/// Reference to an entity; `T` names its type object with `_fwkType()`.
template <class T>
Ptr<T> sequenceToValue(String8::IteratorConst& it, String8::IteratorConst const& end, Ptr<T>*) {
  return ptrCast<T>(detail::readReference(it, end, T::_fwkType()));
}

/// Throws `exception` again with the attribute named: "NAME: TEXT".
[[noreturn]] MOX_API void rethrowFromDeserializeAttr(RangeException const& exception,
                                                     char const* attributeName);

/// Reads an attribute's value into `field`; errors name the attribute.
template <class T>
void deserializeAttr(String8::IteratorConst& it, String8::IteratorConst const& end, T* field,
                     char const* attributeName) {
  try {
    *field = sequenceToValue(it, end, field);
  } catch (RangeException const& exception) {
    rethrowFromDeserializeAttr(exception, attributeName);
  }
}

namespace detail {

[[noreturn]] MOX_API void throwJunk(String8::IteratorConst const& at, String8 const& text);

}  // namespace detail

/// Reads a whole text. The second argument only selects the type: one with a parse constructor
/// (`T(it, end)`) or with a `sequenceToValue`. What is left over is refused with its 0-based
/// column.
template <class T>
T strepToValue(String8 const& text, T const* = nullptr) {
  String8::IteratorConst it = text.begin();
  String8::IteratorConst const end = text.end();
  T value = [&] {
    if constexpr (std::is_constructible_v<T, String8::IteratorConst&,
                                          String8::IteratorConst const&>) {
      return T(it, end);
    } else {
      return sequenceToValue(it, end, static_cast<T*>(nullptr));
    }
  }();
  if (!(it == end)) detail::throwJunk(it, text);
  return value;
}

}  // namespace Mox
