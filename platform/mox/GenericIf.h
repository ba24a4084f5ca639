#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "platform/mox/MoxType.h"
#include "platform/mox/PtrInterface.h"
#include "platform/mox/String8.h"

namespace Mox {

/// What an attribute operation does. From `store` on it changes something.
enum class AttributeOpCode : std::uint32_t {
  read = 0,        ///< result: the value; of a collection, the member under the index
  construct = 1,   ///< named by refusals of types that cannot be made from arguments
  equality = 100,  ///< of the whole (attribute 0) with the argument; result: a flag
  store = 128,     ///< argument: the new value; of a collection, under the index
  remove = 129,    ///< result: what was there; of a collection, under the index
  notify = 130,    ///< announces the collection's index as changed, changing nothing
  invoke = 131,    ///< calls a handler; argument: a list of its arguments, or none
};

/// The whole value or object, as an attribute of itself.
inline constexpr AttributeId wholeAttributeId = 0;

/// One operation on one attribute. An index (a collection's key) is not owned.
struct AttributeOp {
  AttributeId attribute = wholeAttributeId;
  AttributeOpCode code = AttributeOpCode::read;
  GenericIf const* index = nullptr;
};

/// A refusal of generic access; the text says of what.
class MOX_API GenericAccessException : public std::exception {
 public:
  enum class Kind : std::uint8_t {
    constInstance,
    badIndex,
    opNotSupported,
    type,
    unknownArg,
    noSuchAttribute,
    notBound,
  };

  GenericAccessException(Kind kind, String8 text) noexcept : kind_(kind), text_(std::move(text)) {}
  GenericAccessException(GenericAccessException const&) noexcept = default;
  ~GenericAccessException() override;

  Kind kind() const noexcept { return kind_; }
  String8 const& text() const noexcept { return text_; }
  char const* what() const noexcept override { return text_.charPtr(); }

 private:
  Kind kind_;
  String8 text_;
};

/// Walks the members of one collection attribute. It follows changes of the collection as the
/// collection's own iterators do.
class MOX_API AttributeIterator {
 public:
  AttributeIterator() = default;
  AttributeIterator(AttributeIterator const&) = delete;
  AttributeIterator& operator=(AttributeIterator const&) = delete;
  virtual ~AttributeIterator();

  /// Whether there is a current member.
  virtual explicit operator bool() const = 0;
  virtual AttributeIterator& operator++() = 0;
  virtual std::unique_ptr<GenericIf> key() const = 0;
  virtual std::unique_ptr<GenericIf> value() const = 0;
};

/// Adapter: generic access to one value, of which it holds a copy, or to one object, to which it
/// holds a reference. Through an adapter with the const flag nothing can be changed: the adapters
/// that support a modifying operation refuse it first (`throwConstException`).
class MOX_API GenericIf {
 public:
  class List_;

  GenericIf& operator=(GenericIf const&) = delete;
  virtual ~GenericIf() = default;

  /// The type of the value, or of the object or reference.
  MoxType const* type() const noexcept { return type_; }
  bool isConst() const noexcept { return isConst_; }
  virtual std::unique_ptr<GenericIf> clone() const = 0;
  /// The text form.
  virtual String8 strRep() const = 0;

  /// The held value, for whoever knows its C++ type by `type()`; null when an object is held.
  virtual void const* voidPtr() const;

  /// Number of the attribute of that name, as registered; refused when there is none.
  virtual AttributeId attributeId(String8 const& name) const;
  /// Carries an operation out.
  /// @param arg as the operation's code asks for; may be null
  /// @param result receives what the operation yields; left alone when it yields nothing
  virtual void attributeOp(AttributeOp const& op, GenericIf const* arg,
                           std::unique_ptr<GenericIf>& result);
  /// A new value of the same type from a `List_` of its parts, in order; missing ones keep their
  /// defaults.
  virtual std::unique_ptr<GenericIf> genericIfListConstructor(GenericIf const& list) const;

  // Collections.

  /// Starts at the first member, in the collection's order.
  virtual std::unique_ptr<AttributeIterator> attributeIteratorConst(AttributeId attribute) const;
  /// Starts at the member under `key`; without a current one when there is none.
  virtual std::unique_ptr<AttributeIterator> attributeIteratorKeyConst(AttributeId attribute,
                                                                       GenericIf const* key) const;
  /// The iterator's current member; null when there is none.
  std::unique_ptr<GenericIf> attributeIterator_iterObj(AttributeIterator const& iterator) const;

  // Refusals.

  [[noreturn]] static void throwConstException(String8 const& text);
  [[noreturn]] static void throwBadIndexAttrException(String8 const& name);
  [[noreturn]] static void throwOpNotSupportedException(String8 const& name, AttributeOpCode code);
  /// An argument or value, called `name`, that is missing or of the wrong type.
  [[noreturn]] static void throwTypeException(String8 const& name);
  /// More arguments than `name` takes.
  [[noreturn]] static void throwUnknownArgException(String8 const& name);
  [[noreturn]] static void throwNoSuchAttributeException(MoxType const* type, String8 const& name);
  /// What the object called `name` would do needs something that it is not bound to.
  [[noreturn]] static void throwNotBoundException(String8 const& name);

 protected:
  GenericIf(MoxType const* type, bool isConst) noexcept : type_(type), isConst_(isConst) {}
  GenericIf(GenericIf const&) = default;

 private:
  MoxType const* type_;
  bool isConst_;
};

/// A list of generic values, such as a constructor's or handler's arguments.
class MOX_API GenericIf::List_ : public GenericIf {
 public:
  List_() noexcept;
  List_(List_ const& other);
  ~List_() override;

  /// A type error when there is no item.
  void add(std::unique_ptr<GenericIf> item);
  std::vector<std::unique_ptr<GenericIf>> const& items() const noexcept { return items_; }

  static MoxType const* _fwkType();
  std::unique_ptr<GenericIf> clone() const override;
  String8 strRep() const override;

 private:
  std::vector<std::unique_ptr<GenericIf>> items_;
};

}  // namespace Mox
