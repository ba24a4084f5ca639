#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "agent/access/OrderedKeys.h"
#include "agent/verbs/Answer.h"

namespace Kest::Agent {

/// JSON on one line; bytes that are no UTF-8 become U+FFFD.
std::string jsonText(Json const& json);

/// Appends the items of an array, or the members of an object, with commas between them.
class Items {
 public:
  /// @param any whether there are items in front; kept up to date
  Items(std::string& text, bool& any) : text_(text), any_(any) {}

  void add(Json const& item) { next() += jsonText(item); }
  void add(std::string_view name, Json const& value) {
    (next() += jsonText(name) + ":") += jsonText(value);
  }

 private:
  std::string& next() {
    if (std::exchange(any_, true)) text_ += ',';
    return text_;
  }

  std::string& text_;
  bool& any_;
};

/// A long result that is told part after part.
class PiecewiseResult final : public LongResult {
 public:
  /// Does half a millisecond's work on a part, and appends the text that comes of it. False once
  /// the part is whole. Nothing but `std::bad_alloc` may come out of it.
  using Part = std::function<bool(std::string& text)>;

  /// A part about keys, whose memory counts.
  struct KeyedPart {
    Part part;
    std::shared_ptr<OrderedKeys const> keys;
  };

  PiecewiseResult() = default;
  PiecewiseResult(PiecewiseResult const&) = delete;
  PiecewiseResult& operator=(PiecewiseResult const&) = delete;

  void add(Part part) { parts_.push_back(std::move(part)); }
  void add(KeyedPart part);
  /// A text as it is, however long.
  void add(std::string text);

  Progress goOn(std::string& text) override;
  std::size_t held() const override;

 private:
  std::deque<Part> parts_;
  std::vector<std::shared_ptr<OrderedKeys const>> keys_;
  std::size_t textBytes_ = 0;  // of texts that are not told whole
};

/// The items that `tell` adds one after the other, until it returns false.
/// @param any whether there are items in front; shared where several parts make one array
PiecewiseResult::Part whileAny(std::function<bool(Items& items)> tell,
                               std::shared_ptr<bool> any = std::make_shared<bool>(false));

/// The items that `tell` adds for each key, in order. The keys are gathered first.
PiecewiseResult::KeyedPart forEachKey(
    OrderedKeys keys, std::function<void(Items& items, Mox::String8 const& key)> tell,
    std::shared_ptr<bool> any = std::make_shared<bool>(false));

}  // namespace Kest::Agent
