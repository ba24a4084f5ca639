#include "text/JsonValue.h"

namespace Text {

namespace {

std::string foundText(Json const* value) {
  if (value == nullptr) return "nothing";
  if (value->is_object()) return "an object";
  if (value->is_array()) return "an array";
  return value->dump();
}

}  // namespace

void refuseJson(std::string message) {
  throw JsonMisfit{JsonPointer(), std::move(message)};
}

void refuseJson(Json const* value, std::string const& expected) {
  refuseJson("expected " + expected + ", found " + foundText(value));
}

void needObject(Json const* value) {
  if (value == nullptr || !value->is_object()) refuseJson(value, "an object");
}

void readJson(Json const* value, bool& flag) {
  if (value == nullptr || !value->is_boolean()) refuseJson(value, "true or false");
  flag = value->get<bool>();
}

}  // namespace Text
