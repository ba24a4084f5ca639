#include "agent/slice/SliceJson.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "agent/access/GenericJson.h"
#include "agent/access/PiecewiseWork.h"
#include "agent/access/ValueText.h"
#include "agent/rules/ChangeRules.h"
#include "agent/rules/SliceRules.h"
#include "agent/slice/SliceAttributes.h"
#include "agent/slice/SliceBuilder.h"
#include "platform/mox/GenericValue.h"
#include "text/Escapes.h"
#include "text/FileError.h"
#include "text/JsonDocument.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::DeviceState;
using Mox::Attribute;
using Mox::String8;
using Text::JsonPointer;
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

class JsonSliceReader final : public SliceReader {
 public:
  JsonSliceReader(std::string_view name, SliceEnd end) : name_(name), end_(end) {}

  void take(std::string_view bytes) override {
    if (bytes.size() > largestJsonSlice - text_.size()) {
      constexpr std::size_t mebibyte = std::size_t{1} << 20U;
      throw Text::FileError(name_, "expected at most " +
                                       std::to_string(largestJsonSlice / mebibyte) +
                                       " MiB of JSON, found more");
    }
    text_.append(bytes);
  }

  bool goOn() override {
    constexpr std::size_t entriesAtOnce = 50;
    if (document_) return work_.take(entriesAtOnce);
    parse();
    begin(document_->value());
    return true;
  }

  Slice slice() override { return builder_.take(); }

 private:
  [[noreturn]] void refuse(Text::JsonError const& error) const {
    throw Text::FileError(name_, Text::Place::inText(text_, error.at()), error.what());
  }

  void parse() {
    try {
      document_.emplace(text_);
    } catch (Text::JsonError const& error) {
      refuse(error);
    }
  }

  /// What `read` refuses is refused at that place.
  template <class Read>
  void at(JsonPointer const& place, Read read) const {
    try {
      read();
    } catch (Mox::RangeException const& refused) {
      refuse(document_->refusal(place, refused.text().view()));
    }
  }

  void begin(Json const& slice) {
    at(JsonPointer(), [&] {
      expect(slice.is_object(), "an object", slice);
      if (end_ == SliceEnd::required && !slice.contains(endName)) {
        Mox::throwRangeException(Mox::format("expected a last member '%s', found none", endName));
      }
    });
    // Before what refers to them, wherever they stand.
    if (slice.contains(handlesName)) handles(JsonPointer() / handlesName, slice[handlesName]);
    work_.add([this, &slice, next = slice.begin()]() mutable {
      if (next == slice.end()) return false;
      if (!isInCollection_) member(JsonPointer() / next.key(), next.value());
      if (isInCollection_) nextEntry(JsonPointer() / next.key(), next.value());
      if (!isInCollection_) ++next;
      return true;
    });
    if (slice.contains(Config::Devices::name)) states(slice[Config::Devices::name]);
  }

  void handles(JsonPointer const& place, Json const& paths) {
    at(place, [&] { expect(paths.is_array(), "an array of paths", paths); });
    work_.add([this, place, &paths, index = std::size_t{0}]() mutable {
      if (index == paths.size()) return false;
      handle(place / index, paths[index]);
      ++index;
      return true;
    });
  }

  void handle(JsonPointer const& place, Json const& path) {
    at(place, [&] {
      expect(path.is_string(), "a path", path);
      builder_.placeIs(place.to_string());
      builder_.handle(String8(path.get<std::string>()));
    });
  }
  void member(JsonPointer const& place, Json const& value) {
    std::string const& name = place.back();
    at(place, [&] {
      if (hasEnded_) {
        Mox::throwRangeException(Mox::format("expected nothing after '%s', found more", endName));
      }
      if (name == handlesName) return;
      if (name == endName) {
        if (value != true) {
          Mox::throwRangeException(
              String8("expected true, found " + Text::shortened(value.dump())));
        }
        hasEnded_ = true;
        return;
      }
      Attribute const& attribute = attributeNamed(name);
      if (attribute.introspectionClass == Mox::IntrospectionClass::collection) {
        expect(value.is_object(), "an object of values by their keys", value);
        collection_ = &attribute;
        entry_ = value.begin();
        isInCollection_ = true;
      } else {
        builder_.begin(attribute);
        builder_.store(attribute, nullptr, *valueFrom(*attribute.type, value));
      }
    });
  }

  void nextEntry(JsonPointer const& place, Json const& entries) {
    if (entry_ != entries.end()) {
      entry(place / entry_.key(), *collection_, entry_.value());
      ++entry_;
    }
    isInCollection_ = entry_ != entries.end();
  }

  void entry(JsonPointer const& place, Attribute const& collection, Json const& value) {
    at(place, [&] {
      String8 const key(place.back());
      std::vector<PciHandles> handles;  // that the fields may refer to
      for (Json const& field : value) {
        if (field.is_string())
          handles.push_back(builder_.inTree(String8(field.get<std::string>())));
      }
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

  /// @param devices all of them, by their names
  void states(Json const& devices) {
    work_.add([this, &devices, next = devices.begin()]() mutable {
      if (next == devices.end()) return false;
      at(JsonPointer() / Config::Devices::name / next.key(),
         [&] { checkHasState(String8(next.key()), builder_.config()); });
      ++next;
      return true;
    });
  }

  std::string name_;
  SliceEnd end_;
  std::string text_;
  std::optional<Text::JsonDocument> document_;  // of the whole text
  SliceBuilder builder_;
  PiecewiseWork work_;
  Attribute const* collection_ = nullptr;  // whose entries are being read
  Json::const_iterator entry_;             // the next one
  bool isInCollection_ = false;
  bool hasEnded_ = false;  // by its last member
};

}  // namespace

std::unique_ptr<SliceReader> jsonSliceReader(std::string_view name, SliceEnd end) {
  return std::make_unique<JsonSliceReader>(name, end);
}

}  // namespace Kest::Agent
