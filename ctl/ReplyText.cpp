#include "ctl/ReplyText.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Kest::Ctl {

namespace {

constexpr std::size_t deepestReply = 100;  // nested arrays and objects: they are walked recursively

/// Builds the JSON from what the parser finds. The library's own builder looks through all members
/// of an object for each new one.
class Builder final : public nlohmann::json_sax<Json> {
 public:
  explicit Builder(Json& root) : root_(root) {}

  bool null() override { return add(nullptr); }
  bool boolean(bool value) override { return add(value); }
  bool number_integer(number_integer_t value) override { return add(value); }
  bool number_unsigned(number_unsigned_t value) override { return add(value); }
  bool number_float(number_float_t value, string_t const& /*text*/) override { return add(value); }
  bool string(string_t& value) override { return add(std::move(value)); }
  bool binary(binary_t& /*value*/) override { return false; }
  bool start_object(std::size_t /*count*/) override { return open(Json::object()); }
  bool start_array(std::size_t /*count*/) override { return open(Json::array()); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(string_t& name) override {
    name_ = std::move(name);
    return true;
  }
  bool parse_error(std::size_t /*place*/, std::string const& /*token*/,
                   nlohmann::detail::exception const& /*error*/) override {
    return false;
  }

 private:
  bool add(Json value) {
    place(std::move(value));
    return true;
  }

  bool open(Json container) {
    if (open_.size() > deepestReply) throw BadReplyText("it is nested too deep");
    open_.push_back(&place(std::move(container)));
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  /// What is open stays where it is: it is its container's last part until it is closed.
  Json& place(Json value) {
    if (open_.empty()) return root_ = std::move(value);
    if (open_.back()->is_array()) return open_.back()->emplace_back(std::move(value));
    auto& members = open_.back()->get_ref<Json::object_t&>();
    return members.emplace_back(std::move(name_), std::move(value)).second;
  }

  Json& root_;
  std::vector<Json*> open_;
  std::string name_;
};

}  // namespace

Json jsonFromReply(std::string_view text) {
  Json root;
  Builder builder(root);
  if (!Json::sax_parse(text, &builder)) throw BadReplyText("it is no JSON");
  return root;
}

}  // namespace Kest::Ctl
