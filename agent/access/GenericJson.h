#pragma once

#include <memory>
#include <string>
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
/// All other values are strings that hold their text form. A string keeps bytes that are not UTF-8;
/// whoever serializes the JSON decides what becomes of them.
namespace Kest::Agent {

Json toJson(Mox::GenericIf const& value);
/// Appends the same as text on one line, as `jsonText` has it, without making the JSON first.
void appendJson(std::string& text, Mox::GenericIf const& value);

/// A value of `type`.
/// @param base the record that supplies the fields which a record's object does not name; null: a
/// default one
/// @throw Mox::RangeException "expected ..., found ...", after the name of the field
std::unique_ptr<Mox::GenericIf> fromJson(Mox::MoxType const& type, Json const& json,
                                         Mox::GenericIf const* base = nullptr);

/// A value of `type` as a person types it: its text form, where strings, MAC addresses, enumerators
/// (their short names too, or their numbers) and paths of references may come without apostrophes;
/// flags may be `true` or `false`, and a record a JSON object.
/// @throw Mox::RangeException when it is none of these
std::unique_ptr<Mox::GenericIf> fromTyped(Mox::MoxType const& type, std::string_view text);
/// Whether `fromTyped` takes the text for a JSON object.
bool isTypedJson(Mox::MoxType const& type, std::string_view text);

}  // namespace Kest::Agent
