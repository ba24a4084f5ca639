#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

using BadRequest = RefusedRequests;

TEST_F(BadRequest, HasNoVerbThatThereIs) {
  expectRefused({
      {"", "request: expected a JSON object, found nothing"},
      {"{}", "request: expected a member 'verb', a string, found none"},
      {R"({"verb":null})", "request: expected a string as 'verb', found null"},
      {R"({"verb":""})", "request: there is no verb ''"},
      {R"({"verb":"GET"})", "request: there is no verb 'GET' [get]"},
      {R"({"verb":"wach"})", "request: there is no verb 'wach' [watch]"},
      {R"({"verb":"\u0000"})", R"(request: there is no verb '\x00')"},
  });
}

TEST_F(BadRequest, LacksAMemberOrHasOneThatIsNoString) {
  struct {
    Json request;  // that is taken
    std::vector<std::string> required;
    std::vector<std::string> optional = {};
  } const rows[] = {
      {{{"verb", "types"}}, {}},
      {{{"verb", "describe"}, {"type", "bool"}}, {"type"}},
      {{{"verb", "get"}, {"path", "config"}}, {"path"}, {"form"}},
      {{{"verb", "set"}, {"path", "config/sliceId"}, {"text", "a"}}, {"path"}, {"text", "form"}},
      {{{"verb", "del"}, {"path", "config/nativeVlan/et3/1"}}, {"path"}, {"form"}},
      {{{"verb", "notify"}, {"path", "config/nativeVlan/et3/1"}}, {"path"}},
      {{{"verb", "call"}, {"handler", "doVerify"}}, {"handler"}},
      {{{"verb", "verify"}}, {}},
      {{{"verb", "show"}}, {}},
      {{{"verb", "apply"}, {"file", "x"}, {"content", ""}}, {"file", "content"}, {"format"}},
      {{{"verb", "diff"}, {"file", "x"}, {"content", ""}}, {"file", "content"}, {"format"}},
      {{{"verb", "dump"}}, {}, {"format"}},
      {{{"verb", "trace"}}, {}, {"setting"}},
      {{{"verb", "driver"}, {"action", "log"}}, {"action"}},
      {{{"verb", "driver"}, {"action", "flip"}, {"device", "fap0"}}, {"device"}},
      {{{"verb", "driver"}, {"action", "fault"}, {"text", ""}}, {"text"}},
      {{{"verb", "mode"}}, {}},
      {{{"verb", "complete"}, {"path", ""}}, {"path"}, {"type", "handler"}},
  };
  auto const with = [](Json request, std::string const& member, Json const& value) {
    request[member] = value;
    return request.dump();
  };
  std::vector<Refusal> all;
  for (auto const& row : rows) {
    Json const& request = row.request;
    auto const noString = [&](std::string const& member) {
      all.push_back({with(request, member, 7),
                     "request: expected a string as '" + member + "', found number"});
    };
    for (std::string const& member : row.required) {
      Json without = request;
      without.erase(member);
      all.push_back(
          {without.dump(), "request: expected a member '" + member + "', a string, found none"});
      noString(member);
    }
    for (std::string const& member : row.optional) noString(member);
    std::string const verb = request.at("verb");
    all.push_back(
        {with(request, "unknown", 7), "request: '" + verb + "' takes no member 'unknown'"});
  }
  expectRefused(all);
}

TEST_F(BadRequest, HasMembersThatItsVerbDoesNotTake) {
  std::string const actions =
      "request: expected one of 'log', 'dump', 'state', 'fault', 'flip' as 'action', found ";
  expectRefused({
      {R"({"verb":"get","path":"config","from":"text"})",
       "request: 'get' takes no member 'from' [form]"},
      {R"({"verb":"get","path":"config","":1})", "request: 'get' takes no member ''"},
      {R"({"verb":"complete","pa\u0000th":""})",
       R"(request: 'complete' takes no member 'pa\x00th' [path])"},
      {R"({"verb":"get","path":"config","form":"txt"})",
       "request: expected one of 'json', 'text' as 'form', found 'txt' [text]"},
      {R"({"verb":"dump","format":"yaml"})",
       "request: expected one of 'slice', 'json' as 'format', found 'yaml'"},
      {R"({"verb":"driver","action":"flap"})", actions + "'flap' [flip]"},
      {R"({"verb":"driver","action":"log\u0000"})", actions + R"('log\x00' [log])"},
      {R"({"verb":"driver","action":"log","file":"x"})",
       "request: 'driver' takes no member 'file'"},
      {R"({"verb":"set","path":"config/sliceId"})",
       "request: expected one of the members 'value' and 'text'"},
      {R"({"verb":"set","path":"config/sliceId","value":"a","text":"a"})",
       "request: expected one of the members 'value' and 'text'"},
      {R"({"verb":"call","handler":"doVerify","args":null})",
       "request: expected a list as 'args', found null"},
  });
}

TEST_F(BadRequest, LeadsNowhere) {
  expectRefused({
      {R"({"verb":"get","path":"confg"})",
       "path: a path begins with one of config, status, sm, not with 'confg' [config]"},
      {R"({"verb":"get","path":"config\u0000/sliceId"})",
       R"(path: a path begins with one of config, status, sm, not with 'config\x00' [config])"},
      {R"({"verb":"get","path":"config/nativeVlan/et3/1:vlan"})",
       "path: there is no config/nativeVlan/et3/1:vlan"},
      {R"({"verb":"get","path":"config/nativeVlan/et3/1\u0000"})",
       R"(path: there is no config/nativeVlan/et3/1\x00)"},
      {R"({"verb":"get","path":"config/device/\u00e9\ud83d\ude00"})",
       "path: there is no config/device/é😀"},
      {R"({"verb":"describe","type":""})", "path: there is no type ''"},
      {R"({"verb":"describe","type":"kestSliceDmaSM"})",
       "path: there is no type 'kestSliceDmaSM' [KestSliceDmaSm]"},
      {R"({"verb":"call","handler":"doVerfy"})", "path: sm has no attribute 'doVerfy' [doVerify]"},
      {R"({"verb":"call","handler":"sn/doVerify"})",
       "path: a path begins with one of config, status, sm, not with 'sn'"},
      {R"({"verb":"driver","action":"flip","device":"fap0\u0000"})",
       R"(path: there is no device 'fap0\x00' to flip)"},
  });
}

TEST_F(BadRequest, HoldsBytesThatAreNoJson) {
  std::string const request = R"({"verb":"get","path":"config/device/)";
  std::string const at = "request: expected a JSON object; at byte ";
  std::string const found = ": syntax error while parsing value - invalid string: ";
  expectRefused({
      {request + "\xff\"}",
       at + "37" + found + "ill-formed UTF-8 byte; last read: '\"config/device/\xff'"},
      {request + '\0' + "\"}", at + "37: found a zero byte"},
  });
}

TEST_F(BadRequest, NestsTooDeep) {
  auto const nested = [](std::size_t depth, char const* open, char const* close) {
    std::string text;
    for (std::size_t at = 0; at < depth; ++at) text += open;
    for (std::size_t at = 0; at < depth; ++at) text += close;
    return text;
  };
  auto const typed = [](std::string const& text) {
    return Json{{"verb", "set"}, {"path", "config/switchPort/et3/1"}, {"text", text}}.dump();
  };
  std::string const tooDeep = "expected at most 16 nested arrays and objects, found more";
  std::string const value = R"({"verb":"set","path":"config/sliceId","value":)";
  expectRefused({
      {value + nested(15, "[", "]") + "}",
       "value: expected a string, found " + nested(15, "[", "]")},
      {value + nested(16, "[", "]") + "}", "request: " + tooDeep},
      {typed("{\"destId\":" + nested(15, "[", "]") + "}"),
       "value: destId: expected a whole number from 0, found " + nested(15, "[", "]")},
      {typed("{\"destId\":" + nested(16, "[", "]") + "}"), "value: " + tooDeep},
      {typed(std::string(100000, '{')),
       "value: expected a JSON object; at byte 2: syntax error while parsing object key - "
       "unexpected '{'; expected string literal"},
  });
}

TEST_F(BadRequest, IsToldInFullHoweverLong) {
  std::string const name(100000, 'x');
  std::string const get = R"({"verb":"get","path":")";
  expectRefused({
      {R"({"verb":")" + name + "\"}", "request: there is no verb '" + name + "'"},
      {get + name + "\"}",
       "path: a path begins with one of config, status, sm, not with '" + name + "'"},
      {get + "config/device/" + name + "\"}", "path: there is no config/device/" + name},
      {R"({"verb":"set","path":"config/nativeVlan/et3/1","value":")" + name + "\"}",
       "value: expected a whole number from 0, found \"" + std::string(59, 'x') + "..."},
      {R"({"verb":"set","path":"config/nativeVlan/)" + name + R"(","value":1})",
       "value: expected an interface name with 'et' in it, found '" + name + "'"},
  });
}

}  // namespace
}  // namespace Kest::Agent
