#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include "model/detail/Collection.h"
#include "platform/mox/Dir.h"
#include "platform/mox/GenericIfEntity.h"
#include "registry/Refusals.h"
#include "registry/detail/Arguments.h"

/// Generic access to the collections of an entity, by its collection table.
namespace Hardware::Kest::Slice::detail {

/// Walks one collection; keeps the entity.
template <class Collection>
class CollectionIterator final : public Mox::AttributeIterator {
 public:
  CollectionIterator(Mox::Ptr<Mox::PtrInterface const> entity,
                     typename Collection::IteratorConst at)
      : entity_(std::move(entity)), at_(std::move(at)) {}

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

/// One operation on one collection. Changes go through the collection's mutators, so observers are
/// told as of any other change.
template <class Collection>
void collectionOp(Collection& collection, Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                  std::unique_ptr<Mox::GenericIf>& result) {
  using Code = Mox::AttributeOpCode;
  using Value = typename Collection::Value;
  auto const key = [&]() -> Mox::String8 const& {
    return held<Mox::String8>(op.index, wrongKeyName<Collection>());
  };
  if (op.code == Code::read) {
    result = Mox::genericOf(collection.value(key()));
  } else if (op.code == Code::store) {
    if constexpr (IsRecord<Value>) {  // brings its key; an index beside it must be the same
      auto const& record = held<Value>(arg, Collection::name);
      if (op.index != nullptr && !(key() == Collection::keyOf(record))) {
        Mox::GenericIf::throwBadIndexAttrException(Collection::name);
      }
      collection.valueIs(Collection::keyOf(record), record);
    } else {
      Mox::String8 const& at = key();
      collection.valueIs(at, held<Value>(arg, Collection::name));
    }
  } else if (op.code == Code::remove) {
    auto const it = collection.iteratorConst(key());
    // Made first: after the removal there may be no memory for it.
    result = Mox::genericOf(it ? it.value() : Value());
    collection.del(it);
  } else if (op.code == Code::notify) {
    collection.notify(key());
  } else {
    Mox::GenericIf::throwOpNotSupportedException(Collection::name, op.code);
  }
}

/// Adapter of an entity with collections (`forEachCollection`).
template <class Entity>
class EntityAdapter : public Mox::GenericIfEntity {
 public:
  EntityAdapter(Mox::PtrInterface* object, bool isConst)
      : GenericIfEntity(Entity::_fwkType(), object, isConst) {}

  void attributeOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                   std::unique_ptr<Mox::GenericIf>& result) override {
    checkOperation(*this, op, arg);
    if (op.attribute < Entity::firstOwnAttributeId) {  // can be asked of a null reference too
      return GenericIfEntity::attributeOp(op, arg, result);
    }
    if constexpr (requires { Entity::sliceIdAttributeId; }) {
      if (op.attribute == Entity::sliceIdAttributeId) return sliceIdOp(op, arg, result);
    }
    bool const known =
        visit(op.attribute, [&](auto& collection) { collectionOp(collection, op, arg, result); });
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
      iterator = start(collection, held<Mox::String8>(key, "mox_index"));
    });
    return iterator ? std::move(iterator)
                    : GenericIfEntity::attributeIteratorKeyConst(attribute, key);
  }

 private:
  Entity& entity() const { return this->template objectAs<Entity>(); }

  void sliceIdOp(Mox::AttributeOp const& op, Mox::GenericIf const* arg,
                 std::unique_ptr<Mox::GenericIf>& result) {
    char const* const name = Entity::sliceIdName;
    if (op.index != nullptr) throwBadIndexAttrException(name);
    if (op.code == Mox::AttributeOpCode::read) {
      result = Mox::genericOf(entity().sliceId());
    } else if (op.code == Mox::AttributeOpCode::store) {
      entity().sliceIdIs(held<Mox::String8>(arg, name));
    } else {
      throwOpNotSupportedException(name, op.code);
    }
  }

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
    return std::make_unique<CollectionIterator<Collection>>(&entity(),
                                                            collection.iteratorConst(key...));
  }
};

/// The constructor arguments of an entity.
inline constexpr char const* entityArguments[] = {"name"};

/// Type object of an entity type whose adapter is `Entity::GenericIf_`.
template <class Entity>
class EntityTypeObject : public Mox::EntityType {
 public:
  EntityTypeObject() noexcept : EntityType(Entity::typeName) {}

  /// A new entity of that name. It is not put into a directory, which is not used.
  static Mox::Ptr<Entity> newEntity(Mox::Name const& name, Mox::Dir* /*unused*/) {
    return new Entity(name);
  }

  std::unique_ptr<Mox::GenericIf> genericIf_(Mox::PtrInterface* object,
                                             bool isConst) const override {
    return std::make_unique<typename Entity::GenericIf_>(object, isConst);
  }
  /// From the constructor's one argument, the name.
  std::unique_ptr<Mox::GenericIf> genericIfNew(Mox::GenericIf const& list) const override {
    Arguments const arguments(&list, Entity::typeName, entityArguments);
    return genericIf_(newEntity(arguments.value<Mox::Name>(0), nullptr).ptr(), false);
  }
};

}  // namespace Hardware::Kest::Slice::detail
