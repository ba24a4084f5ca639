#pragma once

#include <algorithm>
#include <map>
#include <memory>

#include "test/model/RandomSteps.h"

/// The entities and their observers once more, in the plainest way.
namespace Hardware::Kest::Slice {

struct PlainObserver;

/// The order in which collections are walked.
struct ByHash {
  bool operator()(Mox::String8 const& a, Mox::String8 const& b) const {
    return a.hash() != b.hash() ? a.hash() < b.hash() : a < b;
  }
};

struct PlainEntity {
  std::array<std::map<Mox::String8, unsigned, ByHash>, collections> content;
  unsigned sliceId = 0;
  std::uint64_t changes = 0;
  std::uint64_t lookups = 0;
  std::uint32_t listVersion = 0;
  std::vector<PlainObserver*> listed;
};

struct PlainObserver : std::enable_shared_from_this<PlainObserver> {
  explicit PlainObserver(unsigned number) : id(number) {}
  PlainObserver(PlainObserver const&) = delete;
  PlainObserver& operator=(PlainObserver const&) = delete;
  ~PlainObserver() { registeredIs(false); }

  void registeredIs(bool on) {
    if (registered == on) return;
    registered = on;
    if (on) {
      join();
    } else {
      leave();
    }
  }

  void notifierIs(PlainEntity* next) {
    if (next == notifier) return;
    if (registered) leave();
    notifier = next;
    if (registered) join();
  }

  unsigned id;
  PlainEntity* notifier = nullptr;
  bool registered = false;

 private:
  void join() {
    if (notifier == nullptr) return;
    notifier->listed.push_back(this);
    ++notifier->listVersion;
  }
  void leave() {
    if (notifier == nullptr) return;
    std::erase(notifier->listed, this);
    ++notifier->listVersion;
  }
};

/// What is particular to an entity type.
struct PlainTraits {
  bool hasSliceId;
  unsigned switchPortId;
  std::array<unsigned, collections> distinct;  // different values
  std::array<bool, collections> isRecord;
};

class PlainRun : public Reactions<PlainRun> {
 public:
  explicit PlainRun(PlainTraits const& traits) : traits_(traits) {
    for (unsigned i = 0; i < observers; ++i) renew(i);
  }

  std::array<PlainEntity, entities> const& plainEntities() const { return entities_; }

  void take(Step const& step) {
    PlainEntity& entity = entities_[step.entity];
    auto& content = entity.content[step.collection];
    auto const at = content.find(step.key);
    unsigned const value = step.value % traits_.distinct[step.collection];
    switch (step.what) {
      case Do::set:
        if (at != content.end() && at->second == value) return;
        content[step.key] = value;
        changed(entity, step.collection, step.key);
        return;
      case Do::insert:
        content.emplace(step.key, value);
        return;
      case Do::del:
      case Do::delAt:
        heard.push_back(deleted(step, erase(entity, step.collection, step.key)));
        return;
      case Do::delFirst: {
        Mox::String8 const first = content.empty() ? "" : content.begin()->first;
        heard.push_back(deleted(step, content.empty() ? absent(step.collection, step.key)
                                                      : erase(entity, step.collection, first)));
        return;
      }
      case Do::delAll:
        eraseAll(entity, step.collection);
        return;
      case Do::notify:
        deliver(entity, step.collection, step.key);
        return;
      case Do::lookup:
        lookup(step);
        return;
      case Do::sliceId:
        sliceId(step);
        return;
      case Do::zeroReferences:
        deliver(entity, toldZeroReferences, "");
        return;
      case Do::join:
        observers_[step.observer]->registeredIs(true);
        return;
      case Do::leave:
        observers_[step.observer]->registeredIs(false);
        return;
      case Do::point:
        observers_[step.observer]->notifierIs(step.value == 0 ? nullptr : &entity);
        return;
      case Do::renew:
        renew(step.observer);
        return;
    }
  }

 private:
  static Heard deleted(Step const& step, unsigned value) {
    return {'d', step.entity, step.collection, step.key, value};
  }

  /// An absent key's value: a record's is told from a stored one by its key.
  unsigned absent(unsigned collection, Mox::String8 const& key) const {
    return traits_.isRecord[collection] && !key.empty() ? noValue : 0;
  }

  void changed(PlainEntity& entity, unsigned collection, Mox::String8 const& key) {
    ++entity.changes;
    deliver(entity, collection, key);
  }

  unsigned erase(PlainEntity& entity, unsigned collection, Mox::String8 const& key) {
    auto& content = entity.content[collection];
    auto const at = content.find(key);
    if (at == content.end()) return absent(collection, key);
    unsigned const value = at->second;
    content.erase(at);
    changed(entity, collection, key);
    return value;
  }

  void eraseAll(PlainEntity& entity, unsigned collection) {
    auto& content = entity.content[collection];
    for (auto at = content.begin(); at != content.end();) {
      Mox::String8 const key = at->first;
      erase(entity, collection, key);
      at = content.upper_bound(key);
    }
  }

  void lookup(Step const& step) {
    PlainEntity& entity = entities_[step.entity];
    ++entity.lookups;
    auto const& content = entity.content[step.collection];
    auto const at = content.find(step.key);
    heard.push_back({'l', step.entity, step.collection, step.key,
                     at == content.end() ? absent(step.collection, step.key) : at->second});
  }

  void sliceId(Step const& step) {
    if (!traits_.hasSliceId) return lookup(step);
    PlainEntity& entity = entities_[step.entity];
    if (entity.sliceId == step.value) return;
    entity.sliceId = step.value;
    ++entity.changes;
    deliver(entity, toldSliceId, "");
  }

  void renew(unsigned observer) {
    observers_[observer] = std::make_shared<PlainObserver>(observer);
    observers_[observer]->notifierIs(entities_.data());
    observers_[observer]->registeredIs(true);
  }

  unsigned attributeOf(unsigned which) const {
    if (which == toldZeroReferences) return 5;
    return which == toldSliceId ? 258 : traits_.switchPortId + which;
  }

  void deliver(PlainEntity const& entity, unsigned which, Mox::String8 const& key) {
    std::vector<std::shared_ptr<PlainObserver>> snapshot;
    for (PlainObserver* observer : entity.listed) snapshot.push_back(observer->shared_from_this());
    for (std::size_t i = 0; i < snapshot.size(); ++i) {
      bool const released = i > 0 && snapshot[i].use_count() == 1;
      if (!released) tell(snapshot[i]->id, which, key);
      snapshot[i] = nullptr;
    }
  }

  void tell(unsigned observer, unsigned which, Mox::String8 const& key) {
    try {
      told(observer, which, key);
      return;
    } catch (std::exception const&) {
    }
    try {
      toldException(observer, attributeOf(which));
    } catch (std::exception const&) {
    }
  }

  PlainTraits traits_;
  std::array<PlainEntity, entities> entities_;
  std::array<std::shared_ptr<PlainObserver>, observers> observers_;
};

}  // namespace Hardware::Kest::Slice
