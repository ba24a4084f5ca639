#include "platform/mox/HashMap.h"

namespace Mox {

namespace {

constexpr std::size_t initialBuckets = 8;
constexpr unsigned initialShift = 32 - 3;

bool before(String8 const& a, String8 const& b) noexcept {
  return a.hash() != b.hash() ? a.hash() < b.hash() : a.view() < b.view();
}

}  // namespace

HashMapEntry::~HashMapEntry() = default;

/// The link at which `key`'s entry is, or would be inserted. There must be buckets.
HashMapEntry** HashMapCore::slot(String8 const& key) const noexcept {
  HashMapEntry** link = &buckets_[bucketOf(key)];
  while (*link != nullptr && before((*link)->key_, key)) link = &(*link)->next_;
  return link;
}

HashMapEntry* HashMapCore::find(String8 const& key) const noexcept {
  if (buckets_.empty()) return nullptr;
  HashMapEntry* const candidate = *slot(key);
  return candidate != nullptr && candidate->key_ == key ? candidate : nullptr;
}

void HashMapCore::insert(Ptr<HashMapEntry> const& entry) {
  if (count_ == buckets_.size()) grow();
  Ptr<HashMapEntry> const old(find(entry->key_));  // goes when the map is whole again
  if (old) remove(*old);
  HashMapEntry** const link = slot(entry->key_);
  entry->next_ = *link;
  entry->map_ = this;
  *link = entry.ptr();
  entry->referenceNew();
  ++count_;
}

void HashMapCore::remove(HashMapEntry& entry) noexcept {
  *slot(entry.key_) = entry.next_;
  entry.next_ = nullptr;
  entry.map_ = nullptr;
  --count_;
  entry.referenceDel();
}

void HashMapCore::clear() noexcept {
  std::size_t bucket = 0;
  while (count_ > 0) {  // an entry that goes may bring in others
    if (bucket == buckets_.size()) bucket = 0;
    if (HashMapEntry* const entry = buckets_[bucket]) {
      remove(*entry);
    } else {
      ++bucket;
    }
  }
}

HashMapEntry* HashMapCore::first() const noexcept {
  return firstFrom(0);
}

HashMapEntry* HashMapCore::firstFrom(std::size_t bucket) const noexcept {
  if (count_ == 0) return nullptr;
  for (; bucket < buckets_.size(); ++bucket) {
    if (buckets_[bucket] != nullptr) return buckets_[bucket];
  }
  return nullptr;
}

HashMapEntry* HashMapCore::after(HashMapEntry const& entry) const noexcept {
  if (buckets_.empty()) return nullptr;
  HashMapEntry* next = has(entry) ? entry.next_ : *slot(entry.key_);
  // The entry left the map and its key came back under another entry.
  if (next != nullptr && next->key_ == entry.key_) next = next->next_;
  return next != nullptr ? next : firstFrom(bucketOf(entry.key_) + 1);
}

/// Doubles the buckets. Each old bucket splits into two neighbours, its order kept.
void HashMapCore::grow() {
  bool const none = buckets_.empty();
  unsigned const shift = none ? initialShift : shift_ - 1;
  std::vector<HashMapEntry*> grown(none ? initialBuckets : buckets_.size() * 2, nullptr);
  for (HashMapEntry* entry : buckets_) {
    HashMapEntry** link = nullptr;
    std::size_t linkBucket = 0;
    while (entry != nullptr) {
      HashMapEntry* const next = entry->next_;
      std::size_t const bucket = entry->key_.hash() >> shift;
      if (link == nullptr || bucket != linkBucket) {
        link = &grown[bucket];
        linkBucket = bucket;
      }
      *link = entry;
      entry->next_ = nullptr;
      link = &entry->next_;
      entry = next;
    }
  }
  buckets_.swap(grown);
  shift_ = shift;
}

}  // namespace Mox
