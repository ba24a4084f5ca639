#pragma once

#include <cstddef>
#include <utility>

#include "model/detail/FieldTable.h"
#include "model/detail/ObserverList.h"
#include "platform/mox/HashMap.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Slice::detail {

/// A value that holds its own key, as opposed to one that is stored under a key beside it.
template <class Value>
concept IsRecord = requires {
  Value::fieldTable();
};

/// Entry of a collection. It is a counted object; its holders see later values too.
template <class ValueType>
class Entry : public Mox::HashMapEntry {
 public:
  using Value = ValueType;

  Entry(Mox::String8 key, Value value)
      : Mox::HashMapEntry(std::move(key)), value_(std::move(value)) {}

  Value const& value() const noexcept { return value_; }
  /// A record must have the same key.
  void valueIs(Value const& value) { value_ = value; }

 private:
  Value value_;
};

/// One keyed collection of an entity: a map of counted entries that counts and announces its
/// changes.
///
/// A change that changes nothing is silent. Every other one counts once on the entity, then tells
/// the entity's observers the key; they find the change done. An insertion without memory throws
/// `std::bad_alloc` before anything has changed.
///
/// `Description` says once what the collection is: `name`, `keyName`, place in the order (`index`)
/// and how an observer is told. `Owner` is the entity, which lends its counters and its observers.
template <class Owner, class Description, class EntryType>
class Collection {
 public:
  using Entry = EntryType;
  using Value = typename Entry::Value;

  static constexpr char const* name = Description::name;
  static constexpr char const* keyName = Description::keyName;
  static constexpr Mox::AttributeId attributeId = Owner::firstCollectionId + Description::index;

  /// Like the map's iterators valid across any change of the collection, which must outlive it.
  class IteratorConst : public Mox::HashMap<Entry>::IteratorConst {
   public:
    IteratorConst() = default;
    explicit IteratorConst(typename Mox::HashMap<Entry>::IteratorConst const& it)
        : Mox::HashMap<Entry>::IteratorConst(it) {}

    Value const& operator*() const { return value(); }
    Value const* operator->() const { return &value(); }
    Value const& value() const { return entry()->value(); }
    Entry const* entry() const { return &Mox::HashMap<Entry>::IteratorConst::operator*(); }
  };

  explicit Collection(Owner& owner) noexcept : owner_(owner) {}

  /// The key under which a record is stored.
  static Mox::String8 const& keyOf(Value const& record) { return Description::keyOf(record); }

  static constexpr Description description() { return {}; }

  std::size_t count() const noexcept { return entries_.count(); }

  /// A copy of the value; a default value for an absent key. Counts a lookup.
  Value value(Mox::String8 const& key) const {
    owner_.lookupCountInc();
    Entry const* const entry = entries_.find(key);
    return entry == nullptr ? Value() : entry->value();
  }

  bool has(Mox::String8 const& key) const { return entries_.find(key) != nullptr; }

  /// The bare insertion step: neither counts nor announces.
  Mox::Ptr<Entry> newEntry(Mox::String8 const& key, Value const& value) {
    Mox::Ptr<Entry> entry(new Entry(key, value));
    entries_.insert(entry);
    return entry;
  }

  /// Inserts, or updates the entry in place.
  void valueIs(Mox::String8 const& key, Value const& value) {
    Entry* const entry = entries_.find(key);
    if (entry == nullptr) {
      newEntry(key, value);
    } else if (entry->value() == value) {
      return;
    } else {
      entry->valueIs(value);
    }
    changed(key);
  }

  /// Returns the removed value; a default value when there is nothing to remove.
  Value del(Mox::String8 const& key) {
    Mox::Ptr<Entry> const removed = entries_.remove(key);
    if (!removed) return Value();
    changed(removed->key());
    return removed->value();
  }
  Value del(IteratorConst const& it) {
    bool const isThere = it && entries_.find(it.key()) == it.entry();
    return isThere ? del(it.key()) : Value();
  }

  /// Deletes entry by entry, each counted and announced before the next one goes. Ends even if
  /// observers insert: what they insert after the walk's place goes too.
  void delAll() {
    for (IteratorConst it = iteratorConst(); it; ++it) del(it);
  }

  /// Announces the key, changing and counting nothing.
  void notify(Mox::String8 const& key) const { announce(key); }

  IteratorConst iteratorConst() const { return IteratorConst(entries_.iteratorConst()); }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(Mox::String8 const& key) const {
    return IteratorConst(entries_.iteratorConst(key));
  }

 private:
  void changed(Mox::String8 const& key) {
    owner_.changeCountInc();
    announce(key);
  }

  /// Takes a copy of the key: a handler may change what it was read from.
  void announce(Mox::String8 key) const {
    owner_.observers().tell(attributeId, [&](ListedNotifiee& observer) {
      Description::tell(static_cast<typename Owner::NotifieeConst&>(observer), key);
    });
  }

  Owner& owner_;
  Mox::HashMap<Entry> entries_;
};

}  // namespace Hardware::Kest::Slice::detail
