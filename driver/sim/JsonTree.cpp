#include "driver/sim/JsonTree.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/mox/RangeException.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Sim {

using nlohmann::json;

namespace {

constexpr std::size_t deepestNesting = 16;
constexpr std::size_t longestPointer = 300;  // that is shown whole

/// As it is shown in front of a message: control bytes escaped, a long one in part.
std::string shown(json::json_pointer const& pointer) {
  std::string text = pointer.to_string();
  if (text.empty()) return "";
  if (text.size() > longestPointer) text = text.substr(0, longestPointer) + "...";
  std::string const quoted = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2) + ": ";
}

/// What the parser says, without the names, numbers and place that it begins with.
std::string said(std::string_view text) {
  text.remove_prefix(text.find("] ") + 2);
  if (text.starts_with("parse error at ")) text.remove_prefix(text.find(": ") + 2);
  return std::string(text);
}

/// The text as the parser takes it, byte by byte.
struct Input {
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = char const*;
  using reference = char const&;

  char const& operator*() const { return *at; }
  Input& operator++() {
    ++at;
    ++*taken;
    return *this;
  }
  friend bool operator==(Input const& a, Input const& b) { return a.at == b.at; }

  char const* at;
  std::size_t* taken;
};

class Builder final : public nlohmann::json_sax<json> {
 public:
  Builder(SourceText const& source, std::size_t begin, std::size_t end)
      : source_(source),
        begin_(begin),
        taken_(begin),
        tokenEnd_(begin),
        root_(std::min(source.text().find_first_not_of(" \t\r\n", begin), end)) {
    std::string_view const text = source.text().substr(0, end);
    // The parser would take it for the end.
    if (std::size_t const nul = text.find('\0', begin); nul != text.npos) {
      refuse(nul, "expected JSON, found character 0x00");
    }
    json::sax_parse(Input{text.data() + begin, &taken_}, Input{text.data() + end, &taken_}, this);
  }

  JsonNode take() { return std::move(root_); }

  bool null() override { return scalar(nullptr); }
  bool boolean(bool value) override { return scalar(value); }
  bool number_integer(std::int64_t value) override { return scalar(value); }
  bool number_unsigned(std::uint64_t value) override { return scalar(value); }
  bool number_float(double value, std::string const& /*text*/) override { return scalar(value); }
  bool string(std::string& value) override { return scalar(std::move(value)); }
  bool binary(json::binary_t& /*value*/) override { return false; }  // not in a text

  bool start_object(std::size_t /*members*/) override {
    if (open_.size() == deepestNesting) {
      refuse(taken_ - 1, "expected at most " + std::to_string(deepestNesting) +
                             " levels of nesting, found more");
    }
    current_->value = json::object();
    open_.push_back(current_);
    tokenEnd_ = taken_;
    return true;
  }
  bool end_object() override {
    open_.pop_back();
    return leave();
  }
  bool start_array(std::size_t /*elements*/) override {
    refuse(taken_ - 1, "expected no array in a state, found one");
  }
  bool end_array() override { return false; }  // none has been started

  bool key(std::string& name) override {
    // Only blanks, a comma and what opens an object may be between two tokens.
    std::size_t const at = source_.text().find('"', tokenEnd_);
    auto const [member, isNew] = open_.back()->members.try_emplace(name, at);
    path_.push_back(name);
    if (!isNew) refuse(at, "expected a member once, found it twice");
    current_ = &member->second;
    tokenEnd_ = taken_;
    return true;
  }

  /// @param end counted from the beginning of the document
  bool parse_error(std::size_t end, std::string const& /*token*/,
                   nlohmann::detail::exception const& error) override {
    refuse(begin_ + end - 1, said(error.what()));
  }

 private:
  [[noreturn]] void refuse(std::size_t at, std::string const& message) const {
    source_.refuse(at, path_, message);
  }

  bool scalar(json value) {
    current_->value = std::move(value);
    return leave();
  }

  bool leave() {
    tokenEnd_ = taken_;
    if (!open_.empty()) path_.pop_back();
    return true;
  }

  SourceText const& source_;
  std::size_t begin_;
  std::size_t taken_;        // offset after what the parser has taken
  std::size_t tokenEnd_;     // after what it has told of, and perhaps one character more
  json::json_pointer path_;  // of what it tells of
  JsonNode root_;
  JsonNode* current_ = &root_;
  std::vector<JsonNode*> open_;  // from the outermost in
};

}  // namespace

void SourceText::refuse(std::size_t at, json::json_pointer const& pointer,
                        std::string const& message) const {
  std::string_view const before = text_.substr(0, at);
  auto const line = 1 + std::count(before.begin(), before.end(), '\n');
  auto const column = before.size() - (before.rfind('\n') + 1) + 1;
  Mox::throwRangeException(Mox::String8(name_ + ":" + std::to_string(line) + ":" +
                                        std::to_string(column) + ": " + shown(pointer) + message));
}

JsonNode readJson(SourceText const& source, std::size_t begin, std::size_t end) {
  return Builder(source, begin, end).take();
}

}  // namespace Hardware::Kest::Sim
