#pragma once

#include <memory>
#include <string_view>

#include "agent/access/JsonText.h"
#include "platform/mox/GenericIf.h"

/// Values of registered types as JSON, and back. Everything is derived from the type registry:
///
/// | type | JSON |
/// |---|---|
/// | string, name, MAC address, enumeration | string |
/// | unsigned and floating numbers | number |
/// | flag | boolean |
/// | record | object of its fields, in order |
/// | reference to an entity | its path, or null |
/// | list | array |
///
/// Whatever has no form of its own is the string of its text form. Bytes of a string that are no
/// UTF-8 are kept as they are; who serializes the JSON decides about them.
namespace Kest::Agent {

Json toJson(Mox::GenericIf const& value);

/// A value of `type`. `Mox::RangeException` "expected ..., found ...", the field named in front,
/// when it is none.
/// @param base the record from which members come that a record's object does not have; null: a
/// default one
std::unique_ptr<Mox::GenericIf> fromJson(Mox::MoxType const& type, Json const& json,
                                         Mox::GenericIf const* base = nullptr);

/// A value of `type` as a person types it: its text form, where strings, MAC addresses, enumerators
/// (their short names too, or their numbers) and paths of references may come without apostrophes;
/// flags may be `true` or `false`, and a record a JSON object. `Mox::RangeException` when it is
/// none.
std::unique_ptr<Mox::GenericIf> fromTyped(Mox::MoxType const& type, std::string_view text);
/// Whether `fromTyped` takes the text for a JSON object.
bool isTypedJson(Mox::MoxType const& type, std::string_view text);

}  // namespace Kest::Agent
