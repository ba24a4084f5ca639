#include "agent/access/Target.h"

#include <algorithm>
#include <utility>

#include "agent/access/ControlError.h"
#include "agent/access/ValueText.h"
#include "platform/mox/GenericIfPtrInterface.h"
#include "platform/mox/GenericValue.h"
#include "text/NearMatch.h"
#include "text/Words.h"

namespace Kest::Agent {

namespace {

using Mox::AttributeOpCode;
using Mox::IntrospectionClass;
using Mox::String8;
using Generic = std::unique_ptr<Mox::GenericIf>;

[[noreturn]] void leadsNowhere(std::string const& message, std::string_view name,
                               std::vector<std::string> const& candidates) {
  throw ControlError(Wire::ErrorKind::path, message,
                     Text::nearMatch(name, candidates).value_or(std::string()));
}

std::vector<std::string> names(std::vector<Root> const& roots) {
  std::vector<std::string> all;
  all.reserve(roots.size());
  for (Root const& root : roots) all.push_back(root.name);
  return all;
}

OrderedKeys listed(std::vector<std::string> names) {
  OrderedKeys all;
  all.add([names = std::move(names)]() mutable -> std::optional<String8> {
    if (names.empty()) return std::nullopt;
    String8 const name(names.back());
    names.pop_back();
    return name;
  });
  return all;
}

std::vector<Mox::Attribute> const& attributesOf(Mox::GenericIf const& object) {
  return object.type()->typeNode()->attributes();
}

std::vector<std::string> attributeNames(Mox::GenericIf const& object) {
  std::vector<std::string> all;
  for (Mox::Attribute const& attribute : attributesOf(object)) {
    all.emplace_back(attribute.name.view());
  }
  return all;
}

std::string shown(std::string_view name) {
  return "'" + nameText(String8(name)) + "'";
}

/// Follows a path, name by name.
class Walk {
 public:
  Walk(std::vector<Root> const& roots, std::string_view path) : rest_(path) {
    target_.path = std::string(path);
    start(roots);
  }

  /// Where the path leads.
  Target whole() {
    while (!done_) atKey() ? entry() : step();
    return std::move(target_);
  }

  Continuations continuations() {
    while (!atKey() && rest_.find('/') != std::string_view::npos) step();
    if (target_.attribute != nullptr && !atKey()) follow();
    return {target_.path.substr(0, target_.path.size() - rest_.size()),
            atKey() ? keys() : listed(attributes())};
  }

 private:
  /// Cuts the next step off the path.
  std::string_view next() {
    std::size_t const slash = rest_.find('/');
    std::string_view const name = rest_.substr(0, slash);
    done_ = slash == std::string_view::npos;
    walked_ = target_.path.substr(0, target_.path.size() - rest_.size());
    rest_.remove_prefix(done_ ? rest_.size() : slash + 1);
    return name;
  }

  void start(std::vector<Root> const& roots) {
    std::string_view const name = next();
    auto const root = std::find_if(roots.begin(), roots.end(),
                                   [&](Root const& candidate) { return candidate.name == name; });
    if (root == roots.end()) {
      leadsNowhere("a path begins with one of " + Text::listed(names(roots), ", ") + ", not with " +
                       shown(name),
                   name, names(roots));
    }
    target_.object = root->adapter();
  }

  void step() {
    if (target_.attribute != nullptr) follow();
    std::string_view const name = next();
    for (Mox::Attribute const& attribute : attributesOf(*target_.object)) {
      if (attribute.name == name) target_.attribute = &attribute;
    }
    if (target_.attribute == nullptr) {
      leadsNowhere(owner() + " has no attribute " + shown(name), name,
                   attributeNames(*target_.object));
    }
  }

  /// Whether the rest of the path is a key.
  bool atKey() const { return target_.isWholeCollection(); }

  OrderedKeys keys() const {
    OrderedKeys all;
    all.add(target_.object->attributeIteratorConst(target_.attribute->id));
    return all;
  }

  /// Collections end in a slash, because a key is still to follow.
  std::vector<std::string> attributes() const {
    std::vector<std::string> all;
    for (Mox::Attribute const& attribute : attributesOf(*target_.object)) {
      bool const isCollection = attribute.introspectionClass == IntrospectionClass::collection;
      all.push_back(std::string(attribute.name.view()) + (isCollection ? "/" : ""));
    }
    return all;
  }

  /// The part of the path that led here.
  std::string owner() const { return walked_.substr(0, walked_.size() - 1); }

  /// Goes on to what the attribute refers to.
  void follow() {
    bool const isData = target_.attribute->introspectionClass == IntrospectionClass::scalar;
    Generic value = isData ? target_.read() : nullptr;
    auto* const reference = dynamic_cast<Mox::GenericIfPtrInterface*>(value.get());
    if (reference == nullptr || !reference->object()) {
      throw ControlError(
          Wire::ErrorKind::path,
          nameText(String8(target_.path.substr(0, target_.path.size() - rest_.size() - 1))) +
              " leads no further: it refers to nothing");
    }
    target_.object = std::move(value);
    target_.attribute = nullptr;
  }

  /// The rest is a key; or, if there is no such entry, the key of one that is there, a colon, and
  /// the name of a field.
  void entry() {
    done_ = true;
    target_.key = String8(rest_);
    std::size_t const colon = rest_.rfind(':');
    if (colon == std::string_view::npos || target_.read() != nullptr) return;
    Mox::TypeNode const& node = *target_.attribute->type->typeNode();
    Mox::Attribute const* const field = node.attribute(String8(rest_.substr(colon + 1)));
    if (field == nullptr) return;
    String8 const whole = std::exchange(*target_.key, String8(rest_.substr(0, colon)));
    if (target_.read() != nullptr) {
      target_.field = field;
    } else {
      target_.key = whole;
    }
  }

  Target target_;
  std::string_view rest_;
  std::string walked_;
  bool done_ = false;
};

}  // namespace

Mox::MoxType const& Target::type() const {
  if (field != nullptr) return *field->type;
  return attribute == nullptr ? *object->type() : *attribute->type;
}

Generic Target::operate(AttributeOpCode code, Mox::GenericIf const* argument) const {
  Generic const index = key ? Mox::genericOf(*key) : nullptr;
  Generic result;
  object->attributeOp({attribute->id, code, index.get()}, argument, result);
  return result;
}

Generic Target::read() const {
  if (attribute == nullptr) return object->clone();
  if (!key) return operate(AttributeOpCode::read);
  Generic const index = Mox::genericOf(*key);
  auto const entry = object->attributeIteratorKeyConst(attribute->id, index.get());
  Generic value = object->attributeIterator_iterObj(*entry);
  if (field == nullptr) return value;
  Generic part;
  value->attributeOp({field->id, AttributeOpCode::read}, nullptr, part);
  return part;
}

Target targetAt(std::vector<Root> const& roots, std::string_view path) {
  return Walk(roots, path).whole();
}

Continuations continuations(std::vector<Root> const& roots, std::string_view path) {
  if (path.find('/') == std::string_view::npos) {
    std::vector<std::string> all = names(roots);
    for (std::string& name : all) name += '/';
    return {"", listed(std::move(all))};
  }
  try {
    return Walk(roots, path).continuations();
  } catch (ControlError const&) {
    return {};
  }
}

}  // namespace Kest::Agent
