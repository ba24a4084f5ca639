#include <set>

#include "platform/mox/Trace.h"
#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

/// Every verb with every member, each of any value.
class AnyRequest : public RefusedRequests {
 protected:
  struct Verb {
    Json request;                               // one that is taken
    std::vector<char const*> members = {};      // that it may have besides
    bool changes = false;                       // whatever its members
    std::string changingMember = {};            // makes it change something
    std::set<std::string> changingValues = {};  // those of the member that do; empty: any
  };

  std::vector<Verb> const verbs_{
      {{{"verb", "types"}}},
      {{{"verb", "describe"}, {"type", "bool"}}},
      {{{"verb", "get"}, {"path", "config"}}, {"form"}},
      {{{"verb", "set"}, {"path", "config/sliceId"}, {"value", "x"}}, {"text", "replace"}, true},
      {{{"verb", "del"}, {"path", "config/nativeVlan/et3/1"}}, {"form"}, true},
      {{{"verb", "notify"}, {"path", "config/nativeVlan/et3/1"}}, {}, true},
      {{{"verb", "call"}, {"handler", "handleNativeVlan"}, {"args", {"et3/1"}}}, {}, true},
      {{{"verb", "verify"}}},
      {{{"verb", "show"}}},
      {{{"verb", "apply"}, {"file", "a.slice"}, {"content", slice}}, {}, true},
      {{{"verb", "diff"}, {"file", "a.slice"}, {"content", slice}}},
      {{{"verb", "dump"}}, {"format"}},
      {{{"verb", "trace"}}, {"setting"}, false, "setting"},
      {{{"verb", "driver"}, {"action", "log"}},
       {"text", "device"},
       false,
       "action",
       {"\"dump\"", "\"state\"", "\"fault\"", "\"flip\""}},
      {{{"verb", "mode"}}, {"mode"}, false, "mode"},
      {{{"verb", "complete"}, {"path", "config/"}}, {"type", "handler"}},
  };

  /// Members of other verbs. A verb refuses them, but not before it is known who may.
  std::vector<char const*> const otherMembers_{"path",   "value", "text",    "replace",
                                               "args",   "file",  "setting", "action",
                                               "device", "mode",  "unknown"};

  std::vector<Json> const values_{
      nullptr,
      true,
      0,
      -1.5,
      "",
      "true",
      "log",
      "dump",
      "fault",
      "flip",
      "polling",
      "config/sliceId",
      "config/switchPort/et3/1:ctrl",
      "sm/config",
      "{}",
      std::string(20000, 'a'),
      "config/switchPort/et" + std::string(20000, '/'),
      std::string(20000, ':'),
      "{\"" + std::string(20000, '{') + "\":1}",
      "a\"'\\\n\t\xff%/*[\x7f",
      Json::array(),
      Json::array({"x", nullptr}),
      Json::object(),
      Json::object({{"ctrl", nullptr}}),
  };

  /// Calls `with` with each verb's request, as it is and with one member changed.
  void forEachRequest(auto const& with) {
    for (Verb const& verb : verbs_) {
      with(verb, verb.request);
      auto const each = [&](std::string const& member, Json const& value) {
        Json request = verb.request;
        request[member] = value;
        with(verb, request);
      };
      for (Json const& value : values_) {
        for (auto const& [member, given] : verb.request.items()) {
          if (member != "verb") each(member, value);
        }
        for (char const* member : verb.members) each(member, value);
      }
      for (char const* member : otherMembers_) {
        each(member, nullptr);
        each(member, "flip");
      }
    }
  }

  static bool changes(Verb const& verb, Json const& request) {
    if (verb.changes) return true;
    auto const member = request.find(verb.changingMember);
    return member != request.end() &&
           (verb.changingValues.empty() || verb.changingValues.contains(textOf(*member)));
  }

  std::string reply(Json const& request, bool mayChange) { return ask(textOf(request), mayChange); }
};

TEST_F(AnyRequest, OfAReaderIsDeniedExactlyWhenItWouldChangeSomething) {
  std::string const before = unasked();
  forEachRequest([&](Verb const& verb, Json const& request) {
    std::string const answer = reply(request, false);
    std::string const asked = textOf(request).substr(0, 200);
    EXPECT_EQ(answer.starts_with("denied: "), changes(verb, request)) << asked;
    EXPECT_NE(answer, "");
  });
  EXPECT_EQ(unasked(), before);
}

TEST_F(AnyRequest, OfWhoMayChangeIsSurvived) {
  Mox::String8 const trace = Mox::traceSetting();
  forEachRequest([&](Verb const&, Json const& request) {
    EXPECT_NE(reply(request, true), "");
    sm->hasNotificationActiveIs(true);
  });
  Mox::traceSettingIs(trace.view());
  EXPECT_EQ(reply({{"verb", "mode"}}, true).substr(0, 8), R"({"mode":)");
}

}  // namespace
}  // namespace Kest::Agent
