#include <memory>
#include <nlohmann/json.hpp>

#include "agent/access/ControlError.h"
#include "agent/verbs/PiecewiseResult.h"
#include "agent/verbs/ValueReply.h"
#include "agent/verbs/Verbs.h"
#include "platform/mox/GenericValue.h"

/// Reading by name.
namespace Kest::Agent {

namespace {

using Mox::IntrospectionClass;

/// A collection, as an object of its entries.
void addEntries(PiecewiseResult& result, Mox::GenericIf const& object, Mox::AttributeId collection,
                ValueForm const& form) {
  std::shared_ptr<Mox::AttributeIterator> const it = object.attributeIteratorConst(collection);
  result.add("{");
  result.addItems([&result, it, form] {
    if (!*it) return false;
    result.itemText(Mox::genericVal<Mox::String8>(it->key().get())->view(),
                    form.show(it->value().get()));
    ++*it;
    return true;
  });
  result.add("}");
}

/// Every attribute but the handlers. Nothing but entries is left to be read later.
void addAttributes(PiecewiseResult& result, Mox::GenericIf& object, ValueForm const& form) {
  std::string before = "{";
  for (Mox::Attribute const& attribute : object.type()->typeNode()->attributes()) {
    bool const isCollection = attribute.introspectionClass == IntrospectionClass::collection;
    if (!isCollection && attribute.introspectionClass != IntrospectionClass::scalar) continue;
    result.add(before + jsonText(attribute.name.view()) + ":");
    before = ",";
    if (isCollection) {
      addEntries(result, object, attribute.id, form);
    } else {
      std::unique_ptr<Mox::GenericIf> value;
      object.attributeOp({attribute.id, Mox::AttributeOpCode::read}, nullptr, value);
      result.add(form.show(value.get()));
    }
  }
  result.add(before == "{" ? "{}" : "}");
}

}  // namespace

Answer Verbs::get(Request const& request) {
  request.checkMembers({"path", "form"});
  Target const target = targetAt(agent_.roots(), request.string("path"));
  ValueForm const form(request);
  if (target.attribute != nullptr) checkIsData(target);
  if (target.attribute == nullptr || target.isWholeCollection()) {
    auto result = std::make_unique<PiecewiseResult>();
    result->add(replyBefore(target));
    if (target.attribute == nullptr) {
      addAttributes(*result, *target.object, form);
    } else {
      addEntries(*result, *target.object, target.attribute->id, form);
    }
    result->add("}");
    return result;
  }
  auto const value = target.read();
  if (value == nullptr) {
    throw ControlError(Wire::ErrorKind::path, "there is no " + target.shown());
  }
  return replyAbout(target, "", form.show(value.get()));
}

}  // namespace Kest::Agent
