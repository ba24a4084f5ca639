#include "agent/SliceFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <type_traits>
#include <utility>

#include "agent/FileError.h"
#include "agent/LineReader.h"
#include "agent/SliceRules.h"
#include "platform/mox/Strep.h"

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

class SliceParser {
 public:
  explicit SliceParser(std::string_view name) : name_(name), slice_{new Config("file"), {}} {}

  void parse(std::string_view text) {
    while (!text.empty()) {
      ++line_;
      parseLine(takeLine(text));
    }
    checkDevices();
  }

  Slice take() { return std::move(slice_); }

 private:
  struct Place {
    std::size_t line;
    std::size_t column;
    std::string text;
  };

  void parseLine(std::string_view line) {
    LineReader reader(line);
    try {
      if (reader.isDone()) return;
      place_ = {line_, reader.column(), std::string(line)};
      statement(reader);
      if (!reader.isDone()) reader.refuse("the end of the line");
    } catch (Mox::RangeException const& refused) {
      throw FileError(name_, line_, reader.column(), refused.text().view(), line);
    }
  }

  void statement(LineReader& reader) {
    std::string const keyword = reader.keyword();
    if (keyword == "sliceId") {
      unique(keyword);
      reader.skip(keyword.size());
      slice_.config->sliceIdIs(reader.value<Mox::String8>([](auto const&) {}));
    } else if (keyword == "pciHam") {
      reader.skip(keyword.size());
      reader.value<Mox::String8>([&](Mox::String8 const& path) {
        unique(keyword, path);
        slice_.handles.declare(path);
      });
    } else if (!collectionStatement(keyword, reader)) {
      reader.refuse("one of " + keywords());
    }
  }

  bool collectionStatement(std::string const& keyword, LineReader& reader) {
    bool known = false;
    slice_.config->forEachCollection([&](auto& collection) {
      if (keyword != collection.name) return;
      known = true;
      reader.skip(keyword.size());
      entry(collection, reader);
    });
    return known;
  }

  template <class Collection>
  void entry(Collection& collection, LineReader& reader) {
    using Value = typename Collection::Value;
    auto const checkedKey = [&](Mox::String8 const& key) {
      checkKey(Collection::keyName, key);
      unique(Collection::name, key);
    };
    if constexpr (IsRecord<Value>) {
      auto const record = reader.value<Value>([&](Value const& v) {
        checkedKey(Collection::keyOf(v));
        checkHandle(v);
      });
      collection.valueIs(Collection::keyOf(record), record);
    } else {
      auto const key = reader.value<Mox::String8>(checkedKey);
      collection.valueIs(key, value<Value>(reader));
    }
  }

  template <class Value>
  static Value value(LineReader& reader) {
    if constexpr (std::is_same_v<Value, Hardware::Kest::Slice::DeviceState>) {
      // By name, since not every state will do.
      return Hardware::Kest::Slice::DeviceStateInstance(reader.value<Mox::String8>(checkStateName));
    } else {
      return reader.value<Value>([](Value const& v) { checkValue(v); });
    }
  }

  /// Refuses what an earlier line gave already.
  void unique(std::string const& statement) {
    auto const [earlier, isNew] = places_.emplace(statement, place_);
    if (!isNew) {
      Mox::throwRangeException(Mox::String8(statement + " was given in line " +
                                            std::to_string(earlier->second.line) + " already"));
    }
  }
  void unique(std::string const& keyword, Mox::String8 const& key) {
    unique(statementId(keyword, key));
  }

  static std::string statementId(std::string const& keyword, Mox::String8 const& key) {
    return keyword + " " + Mox::valueToStrep(key).charPtr();
  }

  /// Refuses a handle that only a file read earlier declared: it is about to leave the tree.
  void checkHandle(Config::Device const& device) const {
    if (!device.pciHam() || slice_.handles.declares(*device.pciHam())) return;
    Mox::String8 const path = device.pciHam()->fullName();
    Mox::throwRangeException(Mox::String8("expected a pciHam statement for " +
                                          std::string(Mox::valueToStrep(path).view()) +
                                          " above, found none"));
  }
  void checkHandle(Config::SwitchPort const&) const {}

  /// The machine ends the process when it is to set the state of a registered device that has none.
  void checkDevices() const {
    Place const* first = nullptr;
    for (auto it = slice_.config->deviceIteratorConst(); it; ++it) {
      if (slice_.config->deviceStateIteratorConst(it.key())) continue;
      Place const& place = places_.at(statementId(Config::Devices::name, it.key()));
      if (first == nullptr || place.line < first->line) first = &place;
    }
    if (first == nullptr) return;
    throw FileError(name_, first->line, first->column,
                    "expected a deviceState statement for this device, found none", first->text);
  }

  std::string keywords() const {
    std::string all = "pciHam, sliceId";
    slice_.config->forEachCollection(
        [&](auto const& collection) { all.append(", ").append(collection.name); });
    return all;
  }

  std::string_view name_;
  std::size_t line_ = 0;
  Place place_{};                        // the statement that is being read
  std::map<std::string, Place> places_;  // by keyword and key
  Slice slice_;
};

std::string fileText(std::string const& path) {
  auto const refuse = [&] {
    throw FileError(path, std::string("cannot be read: ") + std::strerror(errno));
  };
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (!file) refuse();
  std::string text;
  std::array<char, 4096> block{};
  while (std::size_t const bytes = std::fread(block.data(), 1, block.size(), file.get())) {
    text.append(block.data(), bytes);
  }
  if (std::ferror(file.get()) != 0) refuse();
  return text;
}

}  // namespace

Slice parseSlice(std::string_view name, std::string_view text) {
  SliceParser parser(name);
  parser.parse(text);
  return parser.take();
}

Slice readSliceFile(std::string const& path) {
  return parseSlice(path, fileText(path));
}

}  // namespace Kest::Agent
