#include "ctl/Text.h"

#include <algorithm>

#include "text/Escapes.h"
#include "text/Table.h"

namespace Kest::Ctl {

namespace {

void addPage(std::string& text, Json const& value, std::size_t indent) {
  std::size_t widest = 0;
  for (auto const& [name, member] : value.items()) {
    if (!member.is_object() || member.empty())
      widest = std::max(widest, Text::columnsOf(Text::visible(name)));
  }
  for (auto const& [name, member] : value.items()) {
    text.append(indent, ' ');
    if (member.is_object() && !member.empty()) {
      text += Text::visible(name) + "\n";
      addPage(text, member, indent + 2);
    } else {
      text += Text::padded(Text::visible(name), widest) + "  " + shown(member) + "\n";
    }
  }
}

}  // namespace

std::string shown(Json const& value) {
  if (value.is_string()) return Text::visible(value.get_ref<std::string const&>());
  return Text::visible(value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string page(Json const& value) {
  std::string text;
  if (!value.is_object()) return shown(value) + "\n";
  addPage(text, value, 0);
  return text;
}

}  // namespace Kest::Ctl
