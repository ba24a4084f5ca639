#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "agent/access/JsonText.h"
#include "agent/access/PiecewiseWork.h"
#include "agent/verbs/Answer.h"

namespace Kest::Agent {

/// A long result that is put together from parts: texts, and the items of arrays and objects, with
/// commas between them. Whatever makes an item may throw nothing but `std::bad_alloc`.
class PiecewiseResult final : public LongResult {
 public:
  PiecewiseResult() = default;
  PiecewiseResult(PiecewiseResult const&) = delete;
  PiecewiseResult& operator=(PiecewiseResult const&) = delete;

  /// A text as it is, however long. Items after it have no comma in front.
  void add(std::string text);
  /// A text that is made when it is its turn.
  /// @param make is told whether any items came after the last text
  void addMade(std::function<std::string(bool anyItems)> make);
  /// Items: `tellNext` tells one with `item`, or returns false after the last.
  void addItems(std::function<bool()> tellNext);
  /// Items about keys, in order: `tell` tells any number with `item`. The keys are gathered first.
  void addItems(OrderedKeys keys, std::function<void(Mox::String8 const& key)> tell);

  /// Tells an item of an array, or a member of an object; while items are told.
  void item(Json const& item) { next() += jsonText(item); }
  void item(std::string_view name, Json const& value) { itemText(name, jsonText(value)); }
  /// @param value as JSON text
  void itemText(std::string_view name, std::string_view value);

  Progress goOn(std::string& text) override;
  std::size_t held() const override { return LongResult::held() + work_.held() + textBytes_; }

 private:
  std::string& next();

  PiecewiseWork work_;
  std::string* text_ = nullptr;  // what is told now is appended to it
  bool anyItems_ = false;        // after the last text
  std::size_t textBytes_ = 0;    // of texts that have not been told whole
};

}  // namespace Kest::Agent
