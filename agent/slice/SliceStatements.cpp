#include "agent/slice/SliceStatements.h"

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

#include "agent/slice/FileError.h"
#include "agent/slice/LineReader.h"
#include "agent/slice/SliceAttributes.h"
#include "agent/slice/SliceBuilder.h"
#include "agent/slice/SliceRules.h"
#include "registry/RecordTypes.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::detail::IsRecord;

/// Cuts the first line off, without what ends it.
std::string_view takeLine(std::string_view& text) {
  std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

class StatementParser {
 public:
  explicit StatementParser(std::string_view name) : name_(name) {}

  Slice parse(std::string_view text) {
    while (!text.empty()) {
      ++place_.line;
      parseLine(takeLine(text));
    }
    checkStates();
    return builder_.take();
  }

 private:
  struct Place {
    std::size_t line;
    std::size_t column;
    std::string_view text;
  };
  struct Device {
    Mox::String8 name;
    Place place;
  };

  [[noreturn]] void refuse(Place const& place, Mox::RangeException const& refused) const {
    throw FileError(name_, place.line, place.column, refused.text().view(), place.text);
  }

  void parseLine(std::string_view line) {
    LineReader reader(line);
    try {
      if (reader.isDone()) return;
      place_ = {place_.line, reader.column(), line};
      builder_.placeIs("line " + std::to_string(place_.line));
      statement(reader);
      if (!reader.isDone()) reader.refuse("the end of the line");
    } catch (Mox::RangeException const& refused) {
      refuse({place_.line, reader.column(), line}, refused);
    }
  }

  void checkStates() const {
    for (Device const& device : devices_) {
      try {
        builder_.checkHasState(device.name);
      } catch (Mox::RangeException const& refused) {
        refuse(device.place, refused);
      }
    }
  }

  void statement(LineReader& reader) {
    std::string const keyword = reader.keyword();
    if (keyword == handlesName) {
      reader.skip(keyword.size());
      reader.value<Mox::String8>([&](Mox::String8 const& path) { builder_.handle(path); });
    } else if (keyword == Config::sliceIdName) {
      Mox::Attribute const& sliceId = sliceAttribute(Config::sliceIdAttributeId);
      builder_.begin(sliceId);
      reader.skip(keyword.size());
      reader.value<Mox::String8>(
          [&](Mox::String8 const& id) { builder_.store(sliceId, nullptr, *Mox::genericOf(id)); });
    } else if (!collectionStatement(keyword, reader)) {
      refuseName(reader.word(), sliceNames());
    }
  }

  bool collectionStatement(std::string const& keyword, LineReader& reader) {
    bool known = false;
    builder_.config().forEachCollection([&]<class Collection>(Collection const&) {
      if (keyword != Collection::name) return;
      known = true;
      reader.skip(keyword.size());
      entry<Collection>(reader);
    });
    return known;
  }

  template <class Collection>
  void entry(LineReader& reader) {
    using Value = typename Collection::Value;
    Mox::Attribute const& attribute = sliceAttribute(Collection::attributeId);
    auto const store = [&](Mox::String8 const& key, Value const& value) {
      builder_.store(attribute, &key, *Mox::genericOf(value));
    };
    if constexpr (IsRecord<Value>) {
      reader.value<Value>([&](Value const& record) {
        Mox::String8 const key = Collection::keyOf(record);
        builder_.begin(attribute, key);
        store(key, record);
        if (std::is_same_v<Collection, Config::Devices>) devices_.push_back({key, place_});
      });
    } else {
      auto const key = reader.value<Mox::String8>(
          [&](Mox::String8 const& name) { builder_.begin(attribute, name); });
      value<Value>(reader, [&](Value const& value) { store(key, value); });
    }
  }

  template <class Value, class Store>
  static void value(LineReader& reader, Store const& store) {
    if constexpr (std::is_same_v<Value, Hardware::Kest::Slice::DeviceState>) {
      // By name, since not every state will do.
      reader.value<Mox::String8>([&](Mox::String8 const& name) {
        checkStateName(name);
        store(Hardware::Kest::Slice::DeviceStateInstance(name));
      });
    } else {
      reader.value<Value>(store);
    }
  }

  std::string_view name_;
  SliceBuilder builder_;
  Place place_{};                // the statement that is being read
  std::vector<Device> devices_;  // in the order of the file
};

}  // namespace

Slice parseStatements(std::string_view name, std::string_view text) {
  return StatementParser(name).parse(text);
}

}  // namespace Kest::Agent
