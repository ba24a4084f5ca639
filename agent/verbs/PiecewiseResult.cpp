#include "agent/verbs/PiecewiseResult.h"

#include <cstddef>
#include <nlohmann/json.hpp>

namespace Kest::Agent {

std::string jsonText(Json const& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void PiecewiseResult::add(KeyedPart part) {
  keys_.push_back(std::move(part.keys));
  add(std::move(part.part));
}

void PiecewiseResult::add(std::string text) {
  constexpr std::size_t pieceBytes = std::size_t{64} << 10;
  textBytes_ += text.size();
  add([this, text = std::move(text), at = std::size_t{0}](std::string& told) mutable {
    told.append(text, at, pieceBytes);
    at += pieceBytes;
    if (at < text.size()) return true;
    textBytes_ -= text.size();
    return false;
  });
}

std::size_t PiecewiseResult::held() const {
  return LongResult::held() + heldBy(keys_) + textBytes_;
}

LongResult::Progress PiecewiseResult::goOn(std::string& text) {
  while (!parts_.empty()) {
    if (parts_.front()(text)) return Progress::more;
    parts_.pop_front();
  }
  return Progress::done;
}

PiecewiseResult::Part whileAny(std::function<bool(Items& items)> tell, std::shared_ptr<bool> any) {
  constexpr int itemsInAStep = 16;
  return [tell = std::move(tell), any = std::move(any)](std::string& text) {
    Items items(text, *any);
    for (int told = 0; told < itemsInAStep; ++told) {
      if (!tell(items)) return false;
    }
    return true;
  };
}

PiecewiseResult::KeyedPart forEachKey(
    OrderedKeys keys, std::function<void(Items& items, Mox::String8 const& key)> tell,
    std::shared_ptr<bool> any) {
  // Shared, since a function must be copyable and keys may be many.
  auto const ordered = std::make_shared<OrderedKeys>(std::move(keys));
  auto const tellNext = [ordered, tell = std::move(tell)](Items& items) {
    auto const key = ordered->take();
    if (key) tell(items, *key);
    return key.has_value();
  };
  auto tellAll = [ordered, told = whileAny(tellNext, std::move(any))](std::string& text) {
    return ordered->gather() || told(text);
  };
  return {std::move(tellAll), ordered};
}

}  // namespace Kest::Agent
