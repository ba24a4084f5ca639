#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/KestSliceDmaConfig.h"
#include "test/fuzz/Fuzz.h"

/// An entity's observers, which come, go and change things while they are told, beside a plain
/// list. The input is a list of operations; handlers take theirs from it too.
namespace {

using Config = Hardware::Kest::Slice::KestSliceDmaConfig;
using Mox::String8;

constexpr std::size_t most = 6;       // observers
constexpr std::size_t deepest = 4;    // deliveries within each other
constexpr std::size_t mostTold = 60;  // handlers in all, whatever they set off

class Run;

class Observer final : public Config::Notifiee {
 public:
  Observer(Run& run, std::size_t number) : run_(run), number_(number) {}
  ~Observer() override;

  using Config::Notifiee::onNativeVlan;
  void onNativeVlan(String8 key) override;
  void onNotificationException(Mox::AttributeId attribute) override;

 private:
  Run& run_;
  std::size_t number_;
};

/// A delivery under way: the observers to tell, and the one that is being told.
struct Delivery {
  std::string key;
  std::vector<std::size_t> observers;
  std::size_t next = 0;
};

/// What the plain list knows about an observer.
struct Known {
  bool isAlive = false;
  bool isHeld = false;  // by the run
  bool isRegistered = false;
  bool isBound = false;  // to the entity
};

class Run {
 public:
  explicit Run(Fuzz::Input input) : input_(input) {}

  void all() {
    while (!input_.empty()) {
      step();
      Fuzz::require(deliveries_.empty(), "a delivery ends");
      Fuzz::require(config_->observers().count() == order_.size(), "the list counts observers");
    }
    // Observers may outlive the entity.
    config_ = nullptr;
    for (auto& observer : observers_) observer = nullptr;
    for (Known const& known : known_) Fuzz::require(!known.isAlive, "what nobody holds is gone");
  }

  void told(std::size_t number, String8 const& key) {
    Fuzz::require(!deliveries_.empty(), "observers are told of changes alone");
    skipReleased();
    std::size_t const mine = deliveries_.size() - 1;
    Delivery& delivery = deliveries_[mine];
    Fuzz::require(delivery.next < delivery.observers.size(), "nobody else is told");
    Fuzz::require(delivery.observers[delivery.next] == number, "observers are told in order");
    Fuzz::requireSame(key.view(), delivery.key, "observers are told the key");
    bool const throws = react();
    Fuzz::require(deliveries_.size() == mine + 1, "a delivery within another ends before it");
    if (throws) {
      thrower_ = number;
      throw std::runtime_error("from a handler");
    }
    advance();
  }

  void reported(std::size_t number, Mox::AttributeId attribute) {
    Fuzz::require(thrower_ == number, "an exception is reported to whom it is from");
    Fuzz::require(attribute == Config::NativeVlans::attributeId, "it is said where it was");
    thrower_.reset();
    bool const throws = react();
    advance();
    if (throws) throw std::runtime_error("from a report");
  }

  void gone(std::size_t number) { known_[number].isAlive = false; }

 private:
  /// The observer that was told is done, and may go.
  void advance() {
    Delivery& delivery = deliveries_.back();
    std::size_t const number = delivery.observers[delivery.next++];
    letGo(number);
  }

  bool isInDelivery(std::size_t number, Delivery const* but = nullptr) const {
    return std::any_of(deliveries_.begin(), deliveries_.end(), [&](Delivery const& delivery) {
      auto const from = delivery.observers.begin() + static_cast<std::ptrdiff_t>(delivery.next);
      return &delivery != but &&
             std::find(from, delivery.observers.end(), number) != delivery.observers.end();
    });
  }

  /// An observer that nobody holds leaves the list.
  void letGo(std::size_t number) {
    if (!known_[number].isHeld && !isInDelivery(number)) std::erase(order_, number);
  }

  /// Apart from the first, an observer that only the delivery holds is not told.
  void skipReleased() {
    Delivery& delivery = deliveries_.back();
    while (delivery.next > 0 && delivery.next < delivery.observers.size()) {
      std::size_t const number = delivery.observers[delivery.next];
      if (known_[number].isHeld || isInDelivery(number, &delivery)) return;
      ++delivery.next;
      letGo(number);
    }
  }

  /// Carries out some of the next operations; returns whether to throw.
  bool react() {
    ++reactions_;
    unsigned const steps = reactions_ > mostTold ? 0 : input_.below(4);
    for (unsigned i = 0; i < steps; ++i) step();
    return input_.below(5) == 4;
  }

  void step() {
    std::size_t const number = input_.byte() % most;
    switch (input_.below(8)) {
      case 0:
      case 1:
        return make(number);
      case 2:
        return drop(number);
      case 3:
        return registeredIs(number, true);
      case 4:
        return registeredIs(number, false);
      case 5:
        return boundIs(number, input_.flag());
      default:
        deliver(number);
    }
  }

  void make(std::size_t number) {
    if (known_[number].isAlive) return;
    observers_[number] = Mox::Ptr<Observer>(new Observer(*this, number));
    known_[number] = {true, true, false, false};
    boundIs(number, true);
    registeredIs(number, true);
  }

  void drop(std::size_t number) {
    if (!known_[number].isHeld) return;
    known_[number].isHeld = false;
    letGo(number);
    bool const stays = isInDelivery(number);
    observers_[number] = nullptr;
    Fuzz::require(known_[number].isAlive == stays, "an observer lives as long as it is held");
  }

  void registeredIs(std::size_t number, bool registered) {
    Known& known = known_[number];
    if (!known.isHeld) return;
    known.isRegistered = registered;
    observers_[number]->isRegisteredNotifieeIs(registered);
    list(number);
  }

  void boundIs(std::size_t number, bool bound) {
    Known& known = known_[number];
    if (!known.isHeld) return;
    known.isBound = bound;
    observers_[number]->notifierIs(bound ? config_ : nullptr);
    list(number);
  }

  /// Lists an observer that is registered with the entity; a new one goes to the end.
  void list(std::size_t number) {
    bool const wanted = known_[number].isRegistered && known_[number].isBound;
    bool const listed = std::find(order_.begin(), order_.end(), number) != order_.end();
    if (listed && !wanted) std::erase(order_, number);
    if (wanted && !listed) order_.push_back(number);
  }

  void deliver(std::size_t number) {
    if (deliveries_.size() == deepest) return;
    String8 const key("et" + std::to_string(number));
    deliveries_.push_back({std::string(key.view()), order_});
    config_->nativeVlanNotify(key);
    skipReleased();
    Fuzz::require(deliveries_.back().next == deliveries_.back().observers.size(),
                  "everybody is told");
    deliveries_.pop_back();
  }

  Fuzz::Input input_;
  Mox::Ptr<Config> config_{new Config("config")};
  std::array<Mox::Ptr<Observer>, most> observers_;
  std::array<Known, most> known_{};
  std::vector<std::size_t> order_;
  std::vector<Delivery> deliveries_;
  std::optional<std::size_t> thrower_;
  std::size_t reactions_ = 0;
};

Observer::~Observer() {
  run_.gone(number_);
}

void Observer::onNativeVlan(String8 key) {
  run_.told(number_, key);
}

void Observer::onNotificationException(Mox::AttributeId attribute) {
  run_.reported(number_, attribute);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  Run(Fuzz::Input(bytes, size)).all();
  return 0;
}
