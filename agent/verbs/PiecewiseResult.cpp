#include "agent/verbs/PiecewiseResult.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace Kest::Agent {

namespace {

constexpr std::size_t itemsAtOnce = 16;  // half a millisecond's work
constexpr std::size_t textAtOnce = std::size_t{64} << 10;

}  // namespace

void PiecewiseResult::add(std::string text) {
  textBytes_ += text.size();
  work_.add([this, text = std::move(text), at = std::size_t{0}]() mutable {
    anyItems_ = false;
    text_->append(text, at, textAtOnce);
    at += textAtOnce;
    if (at < text.size()) return itemsAtOnce;
    textBytes_ -= text.size();
    return std::size_t{0};
  });
}

void PiecewiseResult::addMade(std::function<std::string(bool anyItems)> make) {
  work_.add([this, make = std::move(make)] {
    *text_ += make(std::exchange(anyItems_, false));
    return 0;
  });
}

void PiecewiseResult::addItems(std::function<bool()> tellNext) {
  work_.add([tellNext = std::move(tellNext)] { return tellNext() ? 1 : 0; });
}

void PiecewiseResult::addItems(OrderedKeys keys,
                               std::function<void(Mox::String8 const& key)> tell) {
  work_.addVisits(std::move(keys), std::move(tell));
}

void PiecewiseResult::itemText(std::string_view name, std::string_view value) {
  std::string& text = next();
  appendJsonString(text, name);
  text.append(1, ':').append(value);
}

LongResult::Progress PiecewiseResult::goOn(std::string& text) {
  text_ = &text;
  return work_.take(itemsAtOnce) ? Progress::more : Progress::done;
}

std::string& PiecewiseResult::next() {
  if (std::exchange(anyItems_, true)) *text_ += ',';
  return *text_;
}

}  // namespace Kest::Agent
