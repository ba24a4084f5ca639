#include <nlohmann/json.hpp>

#include "agent/Changes.h"
#include "agent/byname/ChangeRules.h"
#include "agent/byname/ControlError.h"
#include "agent/byname/Verbs.h"
#include "agent/slice/SliceWriter.h"

/// Whole slice files.
namespace Kest::Agent {

namespace {

Json appliedJson(Applied const& applied) {
  return {
      {"announced", applied.announced}, {"unchanged", applied.unchanged}, {"notUp", applied.notUp}};
}

}  // namespace

Answer Verbs::apply(Request const& request, Later later) {
  request.checkMembers({"file", "content"});
  std::string const file = request.string("file");
  checkIdle();
  Slice wanted = parseSlice(file, request.string("content"));
  checkApply(*wanted.config, *served_.config, *served_.status);
  served_.apply(file, std::move(wanted), [later = std::move(later)](Applied const& applied) {
    later(appliedJson(applied));
  });
  return std::monostate();
}

Json Verbs::diff(Request const& request) {
  request.checkMembers({"file", "content"});
  Slice const wanted = parseSlice(request.string("file"), request.string("content"));
  Changes const changes = changesBetween(*served_.config, *wanted.config);
  Json steps = Json::array();
  for (Change const& change : changes.steps) steps.push_back(change.text);
  return {{"steps", steps}, {"unchanged", changes.unchanged}};
}

Json Verbs::dump(Request const& request) {
  request.checkMembers({"format"});
  bool const isJson = request.oneOf("format", {"slice", "json"}) == "json";
  std::vector<Mox::String8> const handles = served_.handles.paths();
  return {{"content",
           isJson ? sliceJson(*served_.config, handles) : sliceText(*served_.config, handles)}};
}

}  // namespace Kest::Agent
