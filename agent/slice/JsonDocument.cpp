#include "agent/slice/JsonDocument.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

#include "agent/access/ValueText.h"
#include "platform/mox/String8.h"

namespace Kest::Agent {

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
/// the text that it stopped at, which the report shows anyway.
std::string parserText(std::string_view text) {
  text.remove_prefix(std::min(text.find("] ") + 2, text.size()));
  if (std::size_t const dash = text.find(" - "); dash != text.npos) text.remove_prefix(dash + 3);
  std::size_t const stopped = std::min(text.find("; last read: "), text.find(" parsing '"));
  if (stopped == text.npos) return std::string(text);
  std::size_t const expected = text.rfind("; expected ");
  bool const isBehind = expected != text.npos && expected > stopped;
  return std::string(text.substr(0, stopped)).append(isBehind ? text.substr(expected) : "");
}

FileError refusalAt(std::string_view file, std::string_view text, std::size_t at,
                    JsonPointer const& pointer, std::string_view message) {
  std::string const name = shortened(nameText(Mox::String8(pointer.to_string())));
  return FileError::inText(file, text, at,
                           (name.empty() ? "" : name + ": ") + std::string(message));
}

constexpr std::size_t deepestNesting = 16;

/// Builds the value of a text, and finds one place in it.
class Scan final : public nlohmann::json_sax<Json> {
 public:
  Scan(std::string_view file, std::string_view text, JsonPointer const* wanted = nullptr)
      : file_(file), text_(text), wanted_(wanted) {
    // The parser would take it for the end.
    if (std::size_t const nul = text.find('\0'); nul != text.npos) {
      refuse(nul, "no JSON: character 0x00");
    }
    Json::sax_parse(Input{text.data(), &taken_}, Input{text.data() + text.size(), &taken_}, this);
  }

  Json take() { return std::move(root_); }
  std::size_t found() const { return found_; }

  bool null() override { return scalar(nullptr); }
  bool boolean(bool value) override { return scalar(value); }
  bool number_integer(std::int64_t value) override { return scalar(value); }
  bool number_unsigned(std::uint64_t value) override { return scalar(value); }
  bool number_float(double value, std::string const& /*text*/) override { return scalar(value); }
  bool string(std::string& value) override { return scalar(value); }
  bool binary(Json::binary_t& value) override { return scalar(value); }

  bool start_object(std::size_t /*members*/) override { return open(Json::object()); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t /*elements*/) override { return open(Json::array()); }
  bool end_array() override { return close(); }

  bool key(std::string& name) override {
    std::size_t const start = takeToken();
    path_.push_back(name);
    arriveAt(start);
    if (!open_.back().names.insert(name).second) refuse(start, "given a second time");
    return true;
  }

  /// @param end behind what was read
  /// @param token whole when it is a string or a number that is not expected
  bool parse_error(std::size_t end, std::string const& token,
                   nlohmann::detail::exception const& error) override {
    std::string const message = parserText(error.what());
    bool const isWhole = message.starts_with("unexpected string literal") ||
                         message.starts_with("unexpected number literal");
    path_ = JsonPointer();
    refuse(end - (isWhole ? token.size() : 1), "no JSON: " + message);
  }

 private:
  struct Container {
    Json* value;
    std::set<std::string> names;  // of an object's members
  };

  [[noreturn]] void refuse(std::size_t at, std::string const& message) const {
    throw refusalAt(file_, text_, at, path_, message);
  }

  /// Where the token begins that the parser has just read. It may have read one character more, a
  /// separator or the end of a container, behind a number.
  std::size_t takeToken() {
    std::size_t const start = text_.find_first_not_of(" \t\r\n,:", tokenEnd_);
    tokenEnd_ = taken_;
    return start;
  }

  void arriveAt(std::size_t start) {
    if (wanted_ != nullptr && path_ == *wanted_) found_ = start;
  }

  Json& put(Json value) {
    std::size_t const start = takeToken();
    if (open_.empty()) {
      arriveAt(start);
      return root_ = std::move(value);
    }
    Json& container = *open_.back().value;
    if (auto* const members = container.get_ptr<Json::object_t*>()) {
      // The object's own ways of adding would look for the name, one member after the other.
      return members->emplace_back(path_.back(), std::move(value)).second;
    }
    path_.push_back(std::to_string(container.size()));
    arriveAt(start);
    return container.emplace_back(std::move(value));
  }

  void leave() {
    if (!path_.empty()) path_.pop_back();
  }

  bool scalar(Json value) {
    put(std::move(value));
    leave();
    return true;
  }

  bool open(Json container) {
    Json& value = put(std::move(container));
    open_.push_back({&value, {}});
    if (open_.size() > deepestNesting) {
      refuse(tokenEnd_ - 1, "expected at most " + std::to_string(deepestNesting) +
                                " levels of nesting, found more");
    }
    return true;
  }

  bool close() {
    tokenEnd_ = taken_;
    open_.pop_back();
    leave();
    return true;
  }

  std::string_view file_;
  std::string_view text_;
  JsonPointer const* wanted_;
  std::size_t taken_ = 0;        // what the parser has taken of the text
  std::size_t tokenEnd_ = 0;     // behind what it has told of
  JsonPointer path_;             // of the value or member that it tells of
  std::vector<Container> open_;  // from the outermost in; what is open does not move
  Json root_;
  std::size_t found_ = 0;
};

}  // namespace

JsonDocument::JsonDocument(std::string_view file, std::string_view text)
    : file_(file), text_(text), value_(Scan(file, text).take()) {}

/// The place is looked for when it is needed: most documents are not refused.
FileError JsonDocument::refusal(JsonPointer const& pointer, std::string_view message) const {
  return refusalAt(file_, text_, Scan(file_, text_, &pointer).found(), pointer, message);
}

}  // namespace Kest::Agent
