#pragma once

#include <cstddef>
#include <utility>

#include "model/detail/FieldTable.h"
#include "model/detail/ObserverList.h"
#include "platform/mox/HashMap.h"
#include "platform/mox/Ptr.h"
#include "platform/mox/SmallMemory.h"
#include "platform/mox/String8.h"

namespace Hardware::Kest::Slice::detail {

/// A value that holds its own key, as opposed to one that is stored under a key beside it.
template <class Value>
concept IsRecord = requires {
  Value::fieldTable();
};

/// Entry of a collection: counted, so whoever holds it sees later values too.
template <class Description, class Value>
class Entry : public Mox::HashMapEntry {
 public:
  Entry(Mox::String8 const& key, Value value) : Mox::HashMapEntry(key), value_(value) {}

  Value const& value() const noexcept { return value_; }
  void valueIs(Value value) { value_ = value; }

 private:
  Value value_;
};

/// That of a record, which is its own key's place.
template <class Description, IsRecord Value>
class Entry<Description, Value> : public Mox::PtrInterface, public Mox::InSmallMemory {
 public:
  Entry(Mox::String8 const& /*key*/, Value value) : value_(std::move(value)) {}

  Mox::String8 const& key() const noexcept { return Description::keyOf(value_); }
  Value const& value() const noexcept { return value_; }
  /// The record must have the same key; the entry's stays the string that it was made with.
  void valueIs(Value const& value) { copyAllButKey<Value>(value_.fields(), value.fields()); }

 private:
  Value value_;
};

/// One keyed collection of an entity: a map of counted entries that counts and announces its
/// changes.
///
/// A change that changes nothing is silent. Every other one counts once on the entity, then tells
/// the entity's observers the key; they find the change done. One that there is no memory for is a
/// `std::bad_alloc`: then it has not been made, counted or told.
///
/// `Description` says once what the collection is: `name`, `keyName`, `attributeId` and how an
/// observer is told (`tell`). `Owner` is the entity, which lends its counters and its observers.
template <class Owner, class Description, class ValueType>
class Collection {
 public:
  using Value = ValueType;
  using Entry = detail::Entry<Description, Value>;

  static constexpr char const* name = Description::name;
  static constexpr char const* keyName = Description::keyName;
  static constexpr char const* wrongKeyName = Description::wrongKeyName;
  static constexpr Mox::AttributeId attributeId = Owner::firstCollectionId + Description::index;

  /// Resumable, as the map's: valid across any change of the collection, as long as it lives.
  class IteratorConst : public Mox::HashMap<Entry>::IteratorConst {
   public:
    IteratorConst() = default;
    explicit IteratorConst(typename Mox::HashMap<Entry>::IteratorConst const& it)
        : Mox::HashMap<Entry>::IteratorConst(it) {}

    Value const& operator*() const { return value(); }
    Value const* operator->() const { return &value(); }
    Value const& value() const { return Mox::HashMap<Entry>::IteratorConst::operator*().value(); }
  };

  explicit Collection(Owner& owner) noexcept : owner_(owner) {}

  /// The key under which a record is stored.
  static Mox::String8 const& keyOf(Value const& record) requires IsRecord<Value> {
    return Description::keyOf(record);
  }

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
    return newEntryAt(entries_.place(key), key, value);
  }

  /// Inserts, or updates the entry in place.
  void valueIs(Mox::String8 const& key, Value const& value) {
    auto const place = entries_.place(key);
    Entry* const entry = place.entry();
    if (entry != nullptr && entry->value() == value) return;
    owner_.observers().makeRoomToTell();
    if (entry == nullptr) {
      newEntryAt(place, key, value);
    } else {
      entry->valueIs(value);
    }
    changed(key);
  }

  /// Returns the removed value; a default value when there is nothing to remove.
  Value del(Mox::String8 const& key) { return del(entries_.place(key)); }
  Value del(IteratorConst const& it) { return del(entries_.place(it)); }

  /// Deletes entry by entry, each counted and announced before the next one goes. Ends even if
  /// observers insert: what they insert behind the walk's place goes too. Without memory it ends
  /// between two entries.
  void delAll() {
    for (IteratorConst it = iteratorConst(); it; ++it) remove(entries_.place(it));
  }

  /// Announces the key, changing and counting nothing.
  void notify(Mox::String8 const& key) const { announce(key); }

  IteratorConst iteratorConst() const { return IteratorConst(entries_.iteratorConst()); }
  /// Starts at `key`; designates nothing when the key is absent.
  IteratorConst iteratorConst(Mox::String8 const& key) const {
    return IteratorConst(entries_.iteratorConst(key));
  }

 private:
  using Place = typename Mox::HashMap<Entry>::Place;

  Mox::Ptr<Entry> newEntryAt(Place const& place, Mox::String8 const& key, Value const& value) {
    Mox::Ptr<Entry> entry(new Entry(key, value));
    entries_.insert(place, entry);
    return entry;
  }

  Value del(Place const& place) {
    Mox::Ptr<Entry> const removed = remove(place);
    return removed ? removed->value() : Value();
  }

  /// Returns what was removed, if there was anything.
  Mox::Ptr<Entry> remove(Place const& place) {
    Mox::Ptr<Entry> removed(place.entry());
    if (!removed) return removed;
    owner_.observers().makeRoomToTell();
    entries_.remove(place);
    changed(removed->key());
    return removed;
  }

  void changed(Mox::String8 const& key) {
    owner_.changeCountInc();
    announce(key);
  }

  void announce(Mox::String8 const& key) const {
    std::size_t const observers = owner_.observers().count();
    if (observers == 0) return;
    Mox::String8::Copies keys(key, observers);
    owner_.deliver(attributeId, [&](auto& observer) {
      Description::tell(observer, [&] { return keys.next(); });
    });
  }

  Owner& owner_;
  Mox::HashMap<Entry> entries_;
};

}  // namespace Hardware::Kest::Slice::detail
