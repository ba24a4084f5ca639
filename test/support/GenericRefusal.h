#pragma once

#include <ostream>
#include <string>

#include "platform/mox/GenericIf.h"

namespace Test {

using RefusalKind = Mox::GenericAccessException::Kind;

/// A refusal of generic access, whole.
struct GenericRefusal {
  RefusalKind kind;
  std::string text;

  friend bool operator==(GenericRefusal const&, GenericRefusal const&) = default;
  friend std::ostream& operator<<(std::ostream& out, GenericRefusal const& refusal) {
    return out << "kind " << static_cast<int>(refusal.kind) << ": " << refusal.text;
  }
};

/// How `attempt()` is refused. An attempt that is not refused fails the test.
template <class Attempt>
GenericRefusal genericRefusal(Attempt const& attempt) {
  try {
    attempt();
  } catch (Mox::GenericAccessException const& exception) {
    return {exception.kind(), exception.what()};
  }
  return {RefusalKind::constInstance, "(not refused)"};
}

inline GenericRefusal constInstance() {
  return {RefusalKind::constInstance, "attempting to modify a const instance"};
}
inline GenericRefusal badIndex(std::string const& name) {
  return {RefusalKind::badIndex, "'" + name + "' does not take that index"};
}
inline GenericRefusal opNotSupported(std::string const& name, unsigned code) {
  return {RefusalKind::opNotSupported,
          "'" + name + "' does not support operation " + std::to_string(code)};
}
inline GenericRefusal wrongType(std::string const& name) {
  return {RefusalKind::type, "'" + name + "' is missing or of the wrong type"};
}
inline GenericRefusal unknownArg(std::string const& name) {
  return {RefusalKind::unknownArg, "'" + name + "' does not take so many arguments"};
}
inline GenericRefusal noSuchAttribute(std::string const& type, std::string const& name) {
  return {RefusalKind::noSuchAttribute, "'" + type + "' has no attribute '" + name + "'"};
}
inline GenericRefusal notBound(std::string const& name) {
  return {RefusalKind::notBound, "no '" + name + "' is bound"};
}

/// Carries an operation out and returns what it yields.
inline std::unique_ptr<Mox::GenericIf> operate(Mox::GenericIf& on, Mox::AttributeOp const& op,
                                               Mox::GenericIf const* arg = nullptr) {
  std::unique_ptr<Mox::GenericIf> result;
  on.attributeOp(op, arg, result);
  return result;
}

/// How an operation is refused.
inline GenericRefusal refused(Mox::GenericIf& on, Mox::AttributeOp const& op,
                              Mox::GenericIf const* arg = nullptr) {
  return genericRefusal([&] { operate(on, op, arg); });
}

}  // namespace Test
