#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "model/detail/Collection.h"
#include "platform/mox/GenericIfEntity.h"
#include "platform/mox/GenericValue.h"

/// Generic access to the collections of an entity, by its collection table.
namespace Hardware::Kest::Slice::detail {

/// Walks one collection; keeps the entity.
template <class Collection>
class CollectionIterator final : public Mox::AttributeIterator {
 public:
  CollectionIterator(Mox::Ptr<Mox::PtrInterface const> entity,
                     typename Collection::IteratorConst at)
      : AttributeIterator(Collection::attributeId),
        entity_(std::move(entity)),
        at_(std::move(at)) {}

  explicit operator bool() const override { return static_cast<bool>(at_); }
  AttributeIterator& operator++() override {
    ++at_;
    return *this;
  }
  std::unique_ptr<Mox::GenericIf> key() const override { return Mox::genericOf(at_.key()); }
  std::unique_ptr<Mox::GenericIf> value() const override { return Mox::genericOf(at_.value()); }

 private:
  Mox::Ptr<Mox::PtrInterface const> entity_;
  typename Collection::IteratorConst at_;
};

/// What a refusal calls a key of the wrong type. Tools know these names, uneven as they are.
template <class Collection>
constexpr char const* wrongKeyName() {
  bool const isDevice = std::string_view(Collection::keyName) == "devName";
  return isDevice ? Collection::keyName : Collection::name;
}

/// One operation on one collection. What it changes goes through the collection's mutators, so
/// observers are told as of any other change.
template <class Collection>
class CollectionOperation {
 public:
  using Code = Mox::AttributeOpCode;
  using Value = typename Collection::Value;

  CollectionOperation(Collection& collection, Mox::AttributeOp const& op, Mox::GenericIf const* arg)
      : collection_(collection), op_(op), arg_(arg) {}

  void carryOut(std::unique_ptr<Mox::GenericIf>& result) const {
    switch (op_.code) {
      case Code::read:
        result = Mox::genericOf(collection_.value(key()));
        return;
      case Code::store:
        store();
        return;
      case Code::remove:
        result = removed();
        return;
      case Code::notify:
        collection_.notify(key());
        return;
      default:
        Mox::GenericIf::throwOpNotSupportedException(Collection::name, op_.code);
    }
  }

  static Mox::String8 const& key(Mox::GenericIf const* index, char const* wrongName) {
    auto const* const key = Mox::genericVal<Mox::String8>(index);
    if (key == nullptr) Mox::GenericIf::throwTypeException(wrongName);
    return *key;
  }

 private:
  Mox::String8 const& key() const { return key(op_.index, wrongKeyName<Collection>()); }

  /// What is to be returned is made first: behind the removal there may be no memory for it.
  std::unique_ptr<Mox::GenericIf> removed() const {
    auto const it = collection_.iteratorConst(key());
    auto value = Mox::genericOf(it ? it.value() : Value());
    collection_.del(it);
    return value;
  }

  /// A record brings its key; an index beside it must be the same.
  void store() const {
    auto const* const value = Mox::genericVal<Value>(arg_);
    if constexpr (IsRecord<Value>) {
      if (value == nullptr) Mox::GenericIf::throwTypeException(Collection::name);
      if (op_.index != nullptr && !(key() == Collection::keyOf(*value))) {
        Mox::GenericIf::throwBadIndexAttrException(Collection::name);
      }
      collection_.valueIs(Collection::keyOf(*value), *value);
    } else {
      Mox::String8 const& at = key();
      if (value == nullptr) Mox::GenericIf::throwTypeException(Collection::name);
      collection_.valueIs(at, *value);
    }
  }

  Collection& collection_;
  Mox::AttributeOp const& op_;
  Mox::GenericIf const* arg_;
};

/// Adapter of an entity with collections (`forEachCollection`).
template <class Entity>
class EntityAdapter : public Mox::GenericIfEntity {
 public:
  EntityAdapter(Mox::PtrInterface* object, bool isConst)
      : GenericIfEntity(Entity::_fwkType(), object, isConst) {}

  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override {
    checkModifiable(op);
    // What is no attribute of its own can be asked of a null reference too.
    bool const known =
        op.attribute >= Entity::firstOwnAttributeId && visit(op.attribute, [&](auto& collection) {
          CollectionOperation(collection, op, arg).carryOut(result);
        });
    if (!known) GenericIfEntity::attributeOp(op, arg, result);
  }

  std::unique_ptr<Mox::AttributeIterator> attributeIteratorConst(
      Mox::AttributeId attribute) const override {
    std::unique_ptr<Mox::AttributeIterator> iterator;
    visit(attribute, [&](auto& collection) { iterator = start(collection); });
    return iterator ? std::move(iterator) : GenericIfEntity::attributeIteratorConst(attribute);
  }

  std::unique_ptr<Mox::AttributeIterator> attributeIteratorKeyConst(
      Mox::AttributeId attribute, Mox::GenericIf const* key) const override {
    std::unique_ptr<Mox::AttributeIterator> iterator;
    visit(attribute, [&](auto& collection) {
      using Operation = CollectionOperation<std::remove_reference_t<decltype(collection)>>;
      iterator = start(collection, Operation::key(key, "mox_index"));
    });
    return iterator ? std::move(iterator)
                    : GenericIfEntity::attributeIteratorKeyConst(attribute, key);
  }

 protected:
  Entity& entity() const { return objectAs<Entity>(); }

 private:
  /// Visits the collection of that number; false when there is none.
  template <class Visit>
  bool visit(Mox::AttributeId attribute, Visit visitOne) const {
    bool known = false;
    entity().forEachCollection([&](auto& collection) {
      if (collection.attributeId != attribute) return;
      known = true;
      visitOne(collection);
    });
    return known;
  }

  template <class Collection, class... Key>
  std::unique_ptr<Mox::AttributeIterator> start(Collection const& collection,
                                                Key const&... key) const {
    return std::make_unique<CollectionIterator<Collection>>(object(),
                                                            collection.iteratorConst(key...));
  }
};

/// Type object of an entity type whose adapter is `Entity::GenericIf_`.
template <class Entity>
class EntityTypeObject : public Mox::EntityType {
 public:
  EntityTypeObject() noexcept : EntityType(Entity::typeName) {}

  std::unique_ptr<Mox::GenericIf> genericIf_(Mox::PtrInterface* object,
                                             bool isConst) const override {
    return std::make_unique<typename Entity::GenericIf_>(object, isConst);
  }
};

}  // namespace Hardware::Kest::Slice::detail
