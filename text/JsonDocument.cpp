#include "text/JsonDocument.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "text/Escapes.h"

namespace Text {

namespace {

/// The text as the parser takes it, byte by byte; `taken` follows.
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

/// What the parser says of a text that is no JSON, without its own names and numbers, and without
/// the text that it stopped at.
std::string parserText(std::string_view text) {
  text.remove_prefix(std::min(text.find("] ") + 2, text.size()));
  if (std::size_t const dash = text.find(" - "); dash != text.npos) text.remove_prefix(dash + 3);
  std::size_t const stopped = std::min(text.find("; last read: "), text.find(" parsing '"));
  if (stopped == text.npos) return std::string(text);
  std::size_t const expected = text.rfind("; expected ");
  bool const isAfter = expected != text.npos && expected > stopped;
  return std::string(text.substr(0, stopped)).append(isAfter ? text.substr(expected) : "");
}

/// As it is put in front of a message.
std::string shown(JsonPointer const& pointer) {
  if (pointer.empty()) return "";
  return shortened(visible(pointer.to_string())) + ": ";
}

/// The names and indices that `pointer` goes along.
std::vector<std::string> stepsOf(JsonPointer pointer) {
  std::vector<std::string> steps;
  for (; !pointer.empty(); pointer.pop_back()) steps.push_back(pointer.back());
  std::reverse(steps.begin(), steps.end());
  return steps;
}

/// Builds the value of a text, and finds where in it one value begins.
class Scan final : public nlohmann::json_sax<Json> {
 public:
  Scan(std::string_view text, JsonRules const& rules, JsonPointer const& wanted = JsonPointer())
      : text_(text), rules_(rules), wanted_(stepsOf(wanted)) {
    // The parser would take it for the end.
    if (std::size_t const nul = text.find('\0'); nul != text.npos) {
      throw JsonError(nul, JsonPointer(), "no JSON: character 0x00");
    }
    Json::sax_parse(Input{text.data(), &taken_}, Input{text.data() + text.size(), &taken_}, this);
  }

  Json take() { return std::move(root_); }
  /// Where the value begins that is wanted, or the nearest one that it would be in.
  std::size_t found() const { return found_; }

  bool null() override { return scalar(nullptr); }
  bool boolean(bool value) override { return scalar(value); }
  bool number_integer(std::int64_t value) override { return scalar(value); }
  bool number_unsigned(std::uint64_t value) override { return scalar(value); }
  bool number_float(double value, std::string const& /*text*/) override { return scalar(value); }
  bool string(std::string& value) override { return scalar(std::move(value)); }
  bool binary(Json::binary_t& /*value*/) override { return false; }  // not in a text

  bool start_object(std::size_t /*members*/) override { return open(Json::object()); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t /*elements*/) override { return open(Json::array()); }
  bool end_array() override { return close(); }

  bool key(std::string& name) override {
    std::size_t const start = takeToken();
    Container& object = open_.back();
    // The object's own ways of adding would look for the name, one member after the other.
    object.value->get_ref<Json::object_t&>().emplace_back(name, nullptr);
    if (!rules_.mayRepeat && !object.names.insert(name).second) {
      throw JsonError(start, path(), "given a second time");
    }
    arriveAt(name, start);
    return true;
  }

  /// @param end after what was read
  /// @param token whole when it is a string or a number that is not expected
  bool parse_error(std::size_t end, std::string const& token,
                   nlohmann::detail::exception const& error) override {
    std::string const message = parserText(error.what());
    bool const isWhole = message.starts_with("unexpected string literal") ||
                         message.starts_with("unexpected number literal");
    throw JsonError(end - (isWhole ? token.size() : 1), JsonPointer(), "no JSON: " + message);
  }

 private:
  struct Container {
    Json* value;
    std::set<std::string> names;  // of an object's members
  };

  /// To the last value or member of what is open.
  JsonPointer path() const {
    JsonPointer path;
    for (Container const& container : open_) {
      if (container.value->empty()) continue;
      if (container.value->is_array()) {
        path /= container.value->size() - 1;
      } else {
        path /= container.value->get_ref<Json::object_t const&>().back().first;
      }
    }
    return path;
  }

  /// Where the token begins that the parser has just read. It may have read one character more, a
  /// separator or the end of a container, after a number.
  std::size_t takeToken() {
    std::size_t const start = text_.find_first_not_of(" \t\r\n,:", tokenEnd_);
    tokenEnd_ = taken_;
    return start;
  }

  /// @param step name or index of a value in what is open
  void arriveAt(std::string const& step, std::size_t start) {
    std::size_t const depth = open_.size() - 1;
    matched_ = std::min(matched_, depth);
    if (matched_ != depth || depth == wanted_.size() || wanted_[depth] != step) return;
    found_ = start;
    ++matched_;
  }

  /// A value in its place; what is open stays where it is, the last of what it is in.
  Json& put(Json value) {
    std::size_t const start = takeToken();
    if (open_.empty()) {
      found_ = start;
      return root_ = std::move(value);
    }
    Json& container = *open_.back().value;
    if (container.is_object()) {
      return container.get_ref<Json::object_t&>().back().second = std::move(value);
    }
    if (!wanted_.empty()) arriveAt(std::to_string(container.size()), start);
    return container.emplace_back(std::move(value));
  }

  bool scalar(Json value) {
    put(std::move(value));
    return true;
  }

  bool open(Json container) {
    open_.push_back({&put(std::move(container)), {}});
    if (open_.size() > rules_.deepest) {
      throw JsonTooDeep(
          tokenEnd_ - 1, path(),
          "expected at most " + std::to_string(rules_.deepest) + " levels of nesting, found more");
    }
    return true;
  }

  bool close() {
    tokenEnd_ = taken_;
    open_.pop_back();
    return true;
  }

  std::string_view text_;
  JsonRules const& rules_;
  std::vector<std::string> wanted_;
  std::size_t matched_ = 0;      // of the steps to what is wanted, those that lead where it reads
  std::size_t taken_ = 0;        // what the parser has taken of the text
  std::size_t tokenEnd_ = 0;     // after what it has told of
  std::vector<Container> open_;  // from the outermost in
  Json root_;
  std::size_t found_ = 0;
};

}  // namespace

JsonError::JsonError(std::size_t at, JsonPointer const& pointer, std::string_view message)
    : std::runtime_error(shown(pointer).append(message)), at_(at) {}

JsonDocument::JsonDocument(std::string_view text, JsonRules const& rules)
    : text_(text), rules_(rules), value_(Scan(text, rules).take()) {}

/// The place is looked for when it is needed: most documents are not refused.
JsonError JsonDocument::refusal(JsonPointer const& pointer, std::string_view message) const {
  return {Scan(text_, rules_, pointer).found(), pointer, message};
}

}  // namespace Text
