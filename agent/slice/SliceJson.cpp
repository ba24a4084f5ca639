#include "agent/slice/SliceJson.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "agent/Text.h"
#include "agent/slice/JsonDocument.h"
#include "agent/slice/SliceAttributes.h"
#include "agent/slice/SliceBuilder.h"
#include "agent/slice/SliceRules.h"
#include "platform/mox/GenericValue.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::DeviceState;
using Mox::Attribute;
using Mox::String8;
using Generic = std::unique_ptr<Mox::GenericIf>;

void expect(bool isExpected, std::string const& what, Json const& found) {
  if (isExpected) return;
  Mox::throwRangeException(String8("expected " + what + ", found " + found.type_name()));
}

Attribute const& attributeNamed(std::string const& name) {
  for (Attribute const* attribute : sliceAttributes()) {
    if (attribute->name == name) return *attribute;
  }
  refuseName(nameText(String8(name)), sliceNames());
}

Attribute const& fieldNamed(std::string const& name, Mox::MoxType const& record) {
  if (Attribute const* field = record.typeNode()->attribute(String8(name))) return *field;
  std::vector<std::string> names;
  for (Attribute const& field : record.typeNode()->attributes()) {
    names.emplace_back(field.name.view());
  }
  refuseName(nameText(String8(name)), names);
}

/// A value of `type`. The names of states are checked before: not every state will do.
Generic valueFrom(Mox::MoxType const& type, Json const& json) {
  if (&type == Mox::TypeOf<DeviceState>::type() && json.is_string()) {
    checkStateName(String8(json.get<std::string>()));
  }
  return fromJson(type, json);
}

class JsonSlice {
 public:
  JsonSlice(std::string_view name, std::string_view text) : document_(name, text) {}

  Slice parse() {
    Json const& slice = document_.value();
    at(JsonPointer(), [&] { expect(slice.is_object(), "an object", slice); });
    // Before what refers to them, wherever they stand.
    if (slice.contains(handlesName)) handles(JsonPointer() / handlesName, slice[handlesName]);
    for (auto const& [name, value] : slice.items()) {
      if (name != handlesName) member(JsonPointer() / name, value);
    }
    checkStates(slice);
    return builder_.take();
  }

 private:
  /// What `read` refuses is refused at that place.
  template <class Read>
  void at(JsonPointer const& place, Read read) const {
    try {
      read();
    } catch (Mox::RangeException const& refused) {
      throw document_.refusal(place, refused.text().view());
    }
  }

  void handles(JsonPointer const& place, Json const& paths) {
    at(place, [&] { expect(paths.is_array(), "an array of paths", paths); });
    for (std::size_t index = 0; index < paths.size(); ++index) {
      at(place / index, [&] {
        expect(paths[index].is_string(), "a path", paths[index]);
        builder_.placeIs((place / index).to_string());
        builder_.handle(String8(paths[index].get<std::string>()));
      });
    }
  }

  void member(JsonPointer const& place, Json const& value) {
    at(place, [&] {
      Attribute const& attribute = attributeNamed(place.back());
      if (attribute.introspectionClass == Mox::IntrospectionClass::collection) {
        expect(value.is_object(), "an object of values by their keys", value);
        for (auto const& [key, one] : value.items()) entry(place / key, attribute, one);
      } else {
        builder_.begin(attribute);
        builder_.store(attribute, nullptr, *valueFrom(*attribute.type, value));
      }
    });
  }

  void entry(JsonPointer const& place, Attribute const& collection, Json const& value) {
    at(place, [&] {
      String8 const key(place.back());
      builder_.begin(collection, key);
      Generic const read = holdsKey(collection) ? record(place, collection, value)
                                                : valueFrom(*collection.type, value);
      builder_.store(collection, &key, *read);
    });
  }

  /// A record with its key, which may be left out.
  Generic record(JsonPointer const& place, Attribute const& collection, Json const& fields) const {
    expect(fields.is_object(), "an object of fields", fields);
    for (auto const& given : fields.items()) {
      at(place / given.key(), [&] {
        Attribute const& field = fieldNamed(given.key(), *collection.type);
        builder_.check(*valueFrom(*field.type, given.value()));
        if (field.name == collection.keyName) checkSameKey(place.back(), given.value());
      });
    }
    Json whole = fields;
    whole[std::string(collection.keyName.view())] = place.back();
    return fromJson(*collection.type, whole);
  }

  static void checkSameKey(Json const& key, Json const& found) {
    if (found == key) return;
    Mox::throwRangeException(
        String8("expected " + key.dump() + ", the key of the entry, found " + found.dump()));
  }

  void checkStates(Json const& slice) const {
    if (!slice.contains(Config::Devices::name)) return;
    for (auto const& device : slice[Config::Devices::name].items()) {
      at(JsonPointer() / Config::Devices::name / device.key(),
         [&] { builder_.checkHasState(String8(device.key())); });
    }
  }

  JsonDocument document_;
  SliceBuilder builder_;
};

}  // namespace

Slice parseJsonSlice(std::string_view name, std::string_view text) {
  return JsonSlice(name, text).parse();
}

}  // namespace Kest::Agent
