#pragma once

#include <memory>
#include <utility>

#include "platform/mox/GenericValue.h"
#include "test/model/Collections.h"
#include "test/model/Recorder.h"

/// A collection of an entity of its own behind an interface that does not depend on which one it
/// is, so that what all ten do is compiled once. Values are told by their text.
namespace Hardware::Kest::Slice {

class TestedCollection {
 public:
  /// An entry that is held.
  class Held {
   public:
    virtual ~Held() = default;
    virtual std::string key() const = 0;
    /// Its characters, which others may share.
    virtual char const* keyChars() const = 0;
    virtual std::string value() const = 0;
    virtual unsigned references() const = 0;
  };

  /// An iterator.
  class Walk {
   public:
    virtual ~Walk() = default;
    virtual explicit operator bool() const = 0;
    virtual void operator++() = 0;
    virtual std::string key() const = 0;
    /// In each of the ways to read it: `value()`, `*` and `->`.
    virtual std::vector<std::string> values() const = 0;
  };

  TestedCollection() = default;
  TestedCollection(TestedCollection const&) = delete;
  TestedCollection& operator=(TestedCollection const&) = delete;
  virtual ~TestedCollection() = default;

  virtual std::string value(Mox::String8 const& key, unsigned n) const = 0;
  virtual std::string none() const = 0;
  virtual std::string handler() const = 0;
  virtual Mox::AttributeId id() const = 0;

  virtual void is(Mox::String8 const& key, unsigned n) = 0;
  std::string lookup(Mox::String8 const& key) const { return heldLookup(key)(); }
  /// What was looked up; its text is taken when that is asked for.
  virtual std::function<std::string()> heldLookup(Mox::String8 const& key) const = 0;
  virtual std::unique_ptr<Held> newEntry(Mox::String8 const& key, unsigned n) = 0;
  virtual std::string del(Mox::String8 const& key) = 0;
  /// `walk` is one of a collection of the same type.
  virtual std::string del(Walk const& walk) = 0;
  virtual void delAll() = 0;
  virtual void notify(Mox::String8 const& key) = 0;
  virtual std::unique_ptr<Walk> walk() const = 0;
  virtual std::unique_ptr<Walk> walk(Mox::String8 const& key) const = 0;
  virtual std::unique_ptr<Walk> walkOfNothing() const = 0;

  virtual std::uint64_t changeCount() const = 0;
  virtual std::uint64_t lookupCount() const = 0;
  /// Which collections of the entity have entries, by handler.
  virtual std::vector<std::string> filled() const = 0;

  /// Registers an observer; it does what the result is set to when it is told.
  virtual std::function<void()>& observe(std::string const& name) = 0;
  virtual void unregisterObservers() = 0;

  std::vector<std::string> keys() const {
    std::vector<std::string> found;
    for (auto const it = walk(); *it; ++*it) found.push_back(it->key());
    return found;
  }
  Events takeEvents() { return std::exchange(events, {}); }

  Events events;
};

template <class C>
class TestedCollectionOf final : public TestedCollection {
 public:
  std::string value(Mox::String8 const& key, unsigned n) const override {
    return text(C::value(key, n));
  }
  std::string none() const override { return text(Value()); }
  std::string handler() const override { return C::handler; }
  Mox::AttributeId id() const override { return switchPortId<Entity> + C::index; }

  void is(Mox::String8 const& key, unsigned n) override { C::is(*entity_, key, C::value(key, n)); }
  std::function<std::string()> heldLookup(Mox::String8 const& key) const override {
    return [found = C::lookup(*entity_, key)] { return text(found); };
  }
  std::unique_ptr<Held> newEntry(Mox::String8 const& key, unsigned n) override {
    return std::make_unique<HeldOf>(C::newEntry(*entity_, key, C::value(key, n)));
  }
  std::string del(Mox::String8 const& key) override { return text(C::del(*entity_, key)); }
  std::string del(Walk const& walk) override {
    return text(C::del(*entity_, static_cast<WalkOf const&>(walk).it));
  }
  void delAll() override { C::delAll(*entity_); }
  void notify(Mox::String8 const& key) override { C::notify(*entity_, key); }
  std::unique_ptr<Walk> walk() const override {
    return std::make_unique<WalkOf>(C::iterator(*entity_));
  }
  std::unique_ptr<Walk> walk(Mox::String8 const& key) const override {
    return std::make_unique<WalkOf>(C::iterator(*entity_, key));
  }
  std::unique_ptr<Walk> walkOfNothing() const override {
    return std::make_unique<WalkOf>(typename C::Iterator());
  }

  std::uint64_t changeCount() const override { return entity_->changeCount(); }
  std::uint64_t lookupCount() const override { return entity_->lookupCount(); }
  std::vector<std::string> filled() const override {
    std::vector<std::string> found;
    forEachCollectionOf<Entity>([&](auto collection) {
      if (collection.iterator(*entity_)) found.emplace_back(collection.handler);
    });
    return found;
  }

  std::function<void()>& observe(std::string const& name) override {
    return observers_.emplace_back(Slice::observe(entity_, name, events))->reaction;
  }
  void unregisterObservers() override {
    for (auto const& observer : observers_) observer->isRegisteredNotifieeIs(false);
  }

 private:
  using Entity = typename C::Entity;
  using Value = typename C::Value;

  static std::string text(Value const& value) {
    return std::string(Mox::genericStrep(value).view());
  }

  struct HeldOf final : Held {
    explicit HeldOf(Mox::Ptr<typename C::Entry> held) : entry(std::move(held)) {}
    std::string key() const override { return std::string(entry->key().view()); }
    char const* keyChars() const override { return entry->key().charPtr(); }
    std::string value() const override { return text(entry->value()); }
    unsigned references() const override { return entry->references(); }
    Mox::Ptr<typename C::Entry> entry;
  };

  struct WalkOf final : Walk {
    explicit WalkOf(typename C::Iterator begin) : it(std::move(begin)) {}
    explicit operator bool() const override { return static_cast<bool>(it); }
    void operator++() override { ++it; }
    std::string key() const override { return std::string(it.key().view()); }
    std::vector<std::string> values() const override {
      return {text(it.value()), text(*it), text(*it.operator->())};
    }
    typename C::Iterator it;
  };

  Mox::Ptr<Entity> entity_{new Entity("slice")};
  std::vector<Mox::Ptr<Recorder<Entity>>> observers_;
};

}  // namespace Hardware::Kest::Slice
