#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "agent/access/Collections.h"
#include "agent/slice/SliceFile.h"
#include "text/FileError.h"

namespace Kest::Agent {

/// A slice file's statement for a device or a port with these fields.
inline std::string deviceText(std::string const& fields) {
  return "device Value('Hardware::Kest::Slice::KestSliceDmaConfig::Device', ** {" + fields + "})\n";
}
inline std::string portText(std::string const& fields) {
  return "switchPort Value('Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort', ** {" + fields +
         "})\n";
}

using Entries = std::vector<std::string>;

/// All that a configuration holds, in the text forms of a slice file.
inline Entries entriesOf(Config const& config) {
  using Mox::valueToStrep;
  Entries entries;
  if (!config.sliceId().empty()) {
    entries.push_back(std::string("sliceId ") + valueToStrep(config.sliceId()).charPtr());
  }
  config.forEachCollection([&]<class Collection>(Collection const& collection) {
    for (Mox::String8 const& key : keysOf<Collection>(config)) {
      auto const& value = collection.iteratorConst(key).value();
      std::string text = std::string(Collection::name) + " ";
      if constexpr (!Hardware::Kest::Slice::detail::IsRecord<typename Collection::Value>) {
        text.append(valueToStrep(key).view()).append(" ");
      }
      if constexpr (std::is_same_v<typename Collection::Value, std::uint16_t>) {
        text.append(std::to_string(value));
      } else {
        text.append(valueToStrep(value).view());
      }
      entries.push_back(text);
    }
  });
  return entries;
}

/// A text that is refused, where, and why.
struct ErrorRow {
  char const* name;
  std::string_view text;
  char const* place;  // as in "2:5"
  char const* message;
};
inline void PrintTo(ErrorRow const& row, std::ostream* out) {
  *out << row.name;
}

/// What the refusal of a row says, of a text in which each byte is a character.
inline std::string reportOf(ErrorRow const& row, std::string const& file) {
  auto const line = std::stoul(row.place);
  auto const column =
      std::stoul(std::string(row.place).substr(std::string_view(row.place).find(':') + 1));
  std::string_view text = row.text;
  for (auto before = line - 1; before > 0; --before) text.remove_prefix(text.find('\n') + 1);
  return file + ":" + row.place + ": " + row.message + "\n  " +
         std::string(text.substr(0, text.find('\n'))) + "\n  " + std::string(column - 1, ' ') + "^";
}

/// The message with which a slice file's text is refused; empty when it is not.
inline std::string refusal(std::string_view text, char const* name = "slice") {
  try {
    parseSlice(name, text);
    return {};
  } catch (Text::FileError const& error) {
    return error.what();
  }
}
inline std::string jsonRefusal(std::string_view text) {
  return refusal(text, "slice.json");
}

}  // namespace Kest::Agent
