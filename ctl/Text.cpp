#include "ctl/Text.h"

#include <algorithm>
#include <cstdio>

namespace Kest::Ctl {

namespace {

constexpr char const* heading = "\033[1m";
constexpr char const* noticed = "\033[31m";
constexpr char const* plain = "\033[0m";

/// How many columns UTF-8 text takes, near enough: one for each character.
std::size_t width(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

/// Not beyond what is a column: what is wider stands out of its own, and costs the others nothing.
std::string padded(std::string const& text, std::size_t to) {
  constexpr std::size_t widestColumn = 80;
  std::size_t const has = width(text);
  std::size_t const wanted = std::min(to, widestColumn);
  return text + std::string(wanted > has ? wanted - has : 0, ' ');
}

void addPage(std::string& text, Json const& value, std::size_t indent) {
  std::size_t widest = 0;
  for (auto const& [name, member] : value.items()) {
    if (!member.is_object() || member.empty()) widest = std::max(widest, width(escaped(name)));
  }
  for (auto const& [name, member] : value.items()) {
    text.append(indent, ' ');
    if (member.is_object() && !member.empty()) {
      text += escaped(name) + "\n";
      addPage(text, member, indent + 2);
    } else {
      text += padded(escaped(name), widest) + "  " + shown(member) + "\n";
    }
  }
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string safe;
  for (std::size_t at = 0; at < text.size(); ++at) {
    auto const byte = static_cast<unsigned char>(text[at]);
    // Above ASCII, the control characters are U+0080 to U+009F.
    bool const isHighControl =
        byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0;
    if (byte < 0x20 || byte == 0x7F || isHighControl) {
      char escape[5];
      std::snprintf(escape, sizeof escape, "\\x%02x",
                    isHighControl ? static_cast<unsigned char>(text[++at]) : byte);
      safe += escape;
    } else {
      safe += text[at];
    }
  }
  return safe;
}

std::string escapedLines(std::string_view text) {
  std::string safe;
  while (true) {
    std::size_t const end = text.find('\n');
    safe += escaped(text.substr(0, end));
    if (end == std::string_view::npos) return safe;
    safe += '\n';
    text.remove_prefix(end + 1);
  }
}

bool isUtf8(std::string_view text) {
  try {
    static_cast<void>(Json(text).dump());
    return true;
  } catch (Json::type_error const&) {
    return false;
  }
}

std::string shown(Json const& value) {
  if (value.is_string()) return escaped(value.get_ref<std::string const&>());
  return escaped(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string page(Json const& value) {
  std::string text;
  if (!value.is_object()) return shown(value) + "\n";
  addPage(text, value, 0);
  return text;
}

std::string Table::text(bool colour) const {
  std::string all;
  std::size_t const columns = rows_.front().cells.size();
  std::vector<std::size_t> widths(columns);
  for (Row const& row : rows_) {
    for (std::size_t column = 0; column < columns; ++column) {
      widths[column] = std::max(widths[column], width(row.cells[column]));
    }
  }
  widths.back() = 0;  // nothing follows it
  for (Row const& row : rows_) {
    bool const isHeading = &row == &rows_.front();
    for (std::size_t column = 0; column < columns; ++column) {
      bool const isMarked =
          std::find(row.marked.begin(), row.marked.end(), column) != row.marked.end();
      std::string const cell = padded(row.cells[column], widths[column]);
      all += column == 0 ? "" : "  ";
      all +=
          colour && (isHeading || isMarked) ? (isHeading ? heading : noticed) + cell + plain : cell;
    }
    while (all.ends_with(' ')) all.pop_back();
    all += '\n';
  }
  return all;
}

}  // namespace Kest::Ctl
