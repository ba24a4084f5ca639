#include "agent/slice/SliceWriter.h"

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

#include "agent/Collections.h"
#include "agent/json/GenericJson.h"
#include "agent/slice/SliceAttributes.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "platform/mox/RangeException.h"

namespace Kest::Agent {

namespace {

using Mox::Attribute;
using Mox::String8;
using Generic = std::unique_ptr<Mox::GenericIf>;

bool isCollection(Attribute const& attribute) {
  return attribute.introspectionClass == Mox::IntrospectionClass::collection;
}

/// In the order in which they are written: devices come before what they carry.
std::vector<Attribute const*> attributesInOrder() {
  std::vector<Attribute const*> all = sliceAttributes();
  std::stable_partition(all.begin(), all.end(), [](Attribute const* attribute) {
    return !isCollection(*attribute) || attribute->keyName == Config::Devices::keyName;
  });
  return all;
}

/// Walks a configuration in the order of a slice file.
class SliceWalk {
 public:
  explicit SliceWalk(Config const& config)
      : adapter_(Mox::genericOf(Mox::Ptr<Config const>(&config))) {}

  /// The paths of `declared` and of the handles that devices refer to, each once.
  std::vector<String8> handles(std::vector<String8> const& declared) const {
    std::vector<String8> paths = declared;
    for (Attribute const* attribute : attributesInOrder()) {
      if (!isCollection(*attribute)) continue;
      for (auto it = adapter_->attributeIteratorConst(attribute->id); *it; ++*it) {
        forEachField(*it->value(), [&](auto const&, Mox::GenericIf const& field) {
          bool isHandle = false;
          auto const handle = Mox::genericRef<Fru::PciHam const>(&field, isHandle);
          if (handle) paths.push_back(handle->fullName());
        });
      }
    }
    sortNaturally(paths);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
  }

  Generic scalar(Attribute const& attribute) const {
    Generic value;
    adapter_->attributeOp({attribute.id, Mox::AttributeOpCode::read}, nullptr, value);
    return value;
  }

  /// Calls `visit(key, value)` for each entry.
  template <class Visit>
  void entries(Attribute const& collection, Visit visit) const {
    std::vector<String8> keys;
    for (auto it = adapter_->attributeIteratorConst(collection.id); *it; ++*it) {
      keys.push_back(*Mox::genericVal<String8>(it->key().get()));
    }
    sortNaturally(keys);
    for (String8 const& key : keys) {
      auto const at = adapter_->attributeIteratorKeyConst(collection.id, Mox::genericOf(key).get());
      visit(key, *at->value());
    }
  }

 private:
  Generic adapter_;
};

void statement(std::string& text, std::string_view name, std::string const& content) {
  text.append(name).append(" ").append(content).append("\n");
}

std::string strep(String8 const& string) {
  return std::string(Mox::valueToStrep(string).view());
}

/// A text for a report, with every byte above 7 bits escaped.
std::string escaped(std::string const& text) {
  std::string result;
  for (char const byte : text) {
    auto const code = static_cast<unsigned char>(byte);
    result.append(code < 0x80U ? std::string(1, byte) : Mox::format("\\x%02x", code).charPtr());
  }
  return result;
}

/// JSON on one line; `what` tells people what it is.
std::string dumped(Json const& json, std::string const& what) {
  try {
    return json.dump();
  } catch (Json::type_error const&) {
    throw Mox::RangeException(String8(escaped(what) +
                                      " holds bytes that are no UTF-8, which JSON cannot hold; "
                                      "statements can"));
  }
}

/// Members of a JSON object that has some, one a line.
class Members {
 public:
  static constexpr std::size_t indent = 2;

  explicit Members(std::size_t level) : indent_(level * indent, ' ') {}

  void add(std::string const& name, std::string const& value) {
    text_.append(text_.empty() ? "{\n" : ",\n").append(indent_).append(name).append(": ");
    text_.append(value);
  }
  bool empty() const { return text_.empty(); }
  std::string text() const { return text_ + "\n" + indent_.substr(indent) + "}"; }

 private:
  std::string indent_;
  std::string text_;
};

/// Without a record's key, which stands in front of it.
Json entryJson(Attribute const& collection, Mox::GenericIf const& value) {
  Json json = toJson(value);
  if (holdsKey(collection)) json.erase(std::string(collection.keyName.view()));
  return json;
}

}  // namespace

std::string sliceText(Config const& config, std::vector<String8> const& handles) {
  SliceWalk const walk(config);
  std::string text;
  for (String8 const& path : walk.handles(handles)) statement(text, handlesName, strep(path));
  for (Attribute const* attribute : attributesInOrder()) {
    std::string_view const name = attribute->name.view();
    if (isCollection(*attribute)) {
      walk.entries(*attribute, [&](String8 const& key, Mox::GenericIf const& value) {
        std::string const front = holdsKey(*attribute) ? "" : strep(key) + " ";
        statement(text, name, front + value.strRep().charPtr());
      });
    } else {
      statement(text, name, std::string(walk.scalar(*attribute)->strRep().view()));
    }
  }
  return text;
}

std::string sliceJson(Config const& config, std::vector<String8> const& handles) {
  SliceWalk const walk(config);
  Members slice(1);
  Json paths = Json::array();
  for (String8 const& path : walk.handles(handles)) {
    paths.push_back(std::string(path.view()));
    dumped(paths.back(), std::string(handlesName) + " " + strep(path));
  }
  if (!paths.empty()) slice.add(Json(handlesName).dump(), paths.dump());
  for (Attribute const* attribute : attributesInOrder()) {
    std::string const name(attribute->name.view());
    if (isCollection(*attribute)) {
      Members entries(2);
      walk.entries(*attribute, [&](String8 const& key, Mox::GenericIf const& value) {
        std::string const what = name + " " + strep(key);
        entries.add(dumped(std::string(key.view()), what),
                    dumped(entryJson(*attribute, value), what));
      });
      if (!entries.empty()) slice.add(Json(name).dump(), entries.text());
    } else {
      Generic const value = walk.scalar(*attribute);
      std::string const what = name + " " + value->strRep().charPtr();
      slice.add(Json(name).dump(), dumped(toJson(*value), what));
    }
  }
  return slice.text() + "\n";
}

}  // namespace Kest::Agent
