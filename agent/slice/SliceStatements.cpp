#include "agent/slice/SliceStatements.h"

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "agent/rules/ChangeRules.h"
#include "agent/rules/SliceRules.h"
#include "agent/slice/LineReader.h"
#include "agent/slice/SliceAttributes.h"
#include "agent/slice/SliceBuilder.h"
#include "registry/RecordTypes.h"
#include "text/FileError.h"

namespace Kest::Agent {

namespace {

using Hardware::Kest::Slice::detail::IsRecord;

/// A line without what else than the newline ends it.
std::string_view withoutReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

class StatementReader final : public SliceReader {
 public:
  StatementReader(std::string_view name, SliceEnd end) : name_(name), end_(end) {}

  void take(std::string_view bytes) override {
    while (!bytes.empty()) {
      std::size_t const end = bytes.find('\n');
      std::string_view const part = bytes.substr(0, end);
      if (part.size() > longestStatement - begun_.size()) refuseTooLong(part);
      if (end == bytes.npos) {
        begun_.append(part);
        return;
      }
      bytes.remove_prefix(end + 1);
      ++line_;
      if (begun_.empty()) {
        parseLine(withoutReturn(part));
      } else {
        parseLine(withoutReturn(std::exchange(begun_, {}).append(part)));
      }
    }
  }

  bool goOn() override {
    constexpr std::size_t statesAtOnce = 1000;
    if (!isAtEnd_) {
      isAtEnd_ = true;
      finish();
    }
    for (std::size_t count = 0; count < statesAtOnce && stated_ < devices_.size(); ++count) {
      checkState(devices_[stated_++]);
    }
    return stated_ < devices_.size();
  }

  Slice slice() override { return builder_.take(); }

 private:
  struct Device {
    Mox::String8 name;
    Text::Place place;
  };

  [[noreturn]] void refuse(Text::Place const& place, std::string_view message) const {
    throw Text::FileError(name_, place, message);
  }

  /// @param part goes on with what has been begun
  [[noreturn]] void refuseTooLong(std::string_view part) {
    begun_.append(part.substr(0, longestStatement - begun_.size()));
    refuse({line_ + 1, begun_.size(), begun_}, "expected a line of at most " +
                                                   std::to_string(longestStatement) +
                                                   " bytes, found a longer one");
  }

  /// Reads a last line that no newline ends.
  void finish() {
    ++line_;
    std::string_view const last = withoutReturn(begun_);
    parseLine(last);
    if (end_ == SliceEnd::required && !hasEnded_) {
      refuse({line_, last.size(), last},
             std::string("expected '") + endName + "' as the last statement, found none");
    }
  }

  void parseLine(std::string_view line) {
    LineReader reader(line);
    try {
      if (reader.isDone()) return;
      statementColumn_ = reader.column();
      builder_.placeIs("line " + std::to_string(line_));
      statement(reader, line);
      if (!reader.isDone()) reader.refuse("the end of the line");
    } catch (Mox::RangeException const& refused) {
      refuse({line_, reader.column(), line}, refused.text().view());
    }
  }

  void checkState(Device const& device) const {
    try {
      checkHasState(device.name, builder_.config());
    } catch (Mox::RangeException const& refused) {
      refuse(device.place, refused.text().view());
    }
  }

  void statement(LineReader& reader, std::string_view line) {
    std::string const keyword = reader.keyword();
    if (hasEnded_) reader.refuse(std::string("nothing after '") + endName + "'");
    if (keyword == endName) {
      reader.skip(keyword.size());
      hasEnded_ = true;
    } else if (keyword == handlesName) {
      reader.skip(keyword.size());
      reader.value<Mox::String8>([&](Mox::String8 const& path) { builder_.handle(path); });
    } else if (keyword == Config::sliceIdName) {
      Mox::Attribute const& sliceId = sliceAttribute(Config::sliceIdAttributeId);
      builder_.begin(sliceId);
      reader.skip(keyword.size());
      reader.value<Mox::String8>(
          [&](Mox::String8 const& id) { builder_.store(sliceId, nullptr, *Mox::genericOf(id)); });
    } else if (!collectionStatement(keyword, reader, line)) {
      refuseName(reader.word(), sliceNames());
    }
  }

  bool collectionStatement(std::string const& keyword, LineReader& reader, std::string_view line) {
    bool known = false;
    builder_.config().forEachCollection([&]<class Collection>(Collection const&) {
      if (keyword != Collection::name) return;
      known = true;
      reader.skip(keyword.size());
      entry<Collection>(reader, line);
    });
    return known;
  }

  template <class Collection>
  void entry(LineReader& reader, std::string_view line) {
    using Value = typename Collection::Value;
    Mox::Attribute const& attribute = sliceAttribute(Collection::attributeId);
    auto const store = [&](Mox::String8 const& key, Value const& value) {
      builder_.store(attribute, &key, *Mox::genericOf(value));
    };
    if constexpr (IsRecord<Value>) {
      constexpr bool isDevice = std::is_same_v<Collection, Config::Devices>;
      std::vector<PciHandles> handles;  // that the line may refer to
      if (isDevice) {
        for (Mox::String8 const& text : reader.strings()) handles.push_back(builder_.inTree(text));
      }
      reader.value<Value>([&](Value const& record) {
        Mox::String8 const key = Collection::keyOf(record);
        builder_.begin(attribute, key);
        store(key, record);
        if (isDevice) devices_.push_back({key, {line_, statementColumn_, line}});
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

  std::string name_;
  SliceEnd end_;
  SliceBuilder builder_;
  std::string begun_;     // a line whose end has not come
  std::size_t line_ = 0;  // that is being read, from 1
  std::size_t statementColumn_ = 0;
  bool hasEnded_ = false;        // by its last statement
  bool isAtEnd_ = false;         // of the text
  std::vector<Device> devices_;  // in the order of the file
  std::size_t stated_ = 0;       // of the devices, those that are known to have a state
};

}  // namespace

std::unique_ptr<SliceReader> statementReader(std::string_view name, SliceEnd end) {
  return std::make_unique<StatementReader>(name, end);
}

}  // namespace Kest::Agent
