#include "test/agent/support/RefusedRequests.h"

namespace Kest::Agent {
namespace {

using BadRequest = RefusedRequests;

TEST_F(BadRequest, IsNoJsonObject) {
  expectRefused({
      {"", "request: expected a JSON object, found nothing"},
      {" \t\r", "request: expected a JSON object, found nothing"},
      {"{",
       "request: expected a JSON object; at byte 2: syntax error while parsing object key - "
       "unexpected end of input; expected string literal"},
      {"[]", "request: expected an object, found array"},
      {"null", "request: expected an object, found null"},
      {"7", "request: expected an object, found number"},
      {R"("get")", "request: expected an object, found string"},
      {R"({"verb":"get","path":"config"} x)",
       R"(request: expected a JSON object; at byte 32: syntax error while parsing value - invalid literal; last read: '"config"} x'; expected end of input)"},
      {R"({"verb":"get",})",
       "request: expected a JSON object; at byte 15: syntax error while parsing object key - "
       "unexpected '}'; expected string literal"},
      {"{'verb':'get'}",
       "request: expected a JSON object; at byte 2: syntax error while parsing object key - "
       "invalid literal; last read: '{''; expected string literal"},
      {R"({"verb":"get","path":"a\ud800"})",
       R"(request: expected a JSON object; at byte 30: syntax error while parsing value - invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF; last read: '"a\ud800"')"},
      {R"({"verb":"get","path":"a\x"})",
       R"(request: expected a JSON object; at byte 25: syntax error while parsing value - invalid string: forbidden character after backslash; last read: '"a\x')"},
      {R"({"verb":1e400})", "request: expected a JSON object; number overflow parsing '1e400'"},
      {R"({"verb":NaN})",
       R"(request: expected a JSON object; at byte 9: syntax error while parsing value - invalid literal; last read: '"verb":N')"},
  });
}

TEST_F(BadRequest, HasNoVerbThatThereIs) {
  expectRefused({
      {"{}", "request: expected a member 'verb', a string, found none"},
      {R"({"verb":7})", "request: expected a string as 'verb', found number"},
      {R"({"verb":null})", "request: expected a string as 'verb', found null"},
      {R"({"verb":""})", "request: there is no verb ''"},
      {R"({"verb":"GET"})", "request: there is no verb 'GET' [get]"},
      {R"({"verb":"gte","path":"config"})", "request: there is no verb 'gte' [get]"},
      {R"({"verb":"remove","path":"config"})", "request: there is no verb 'remove'"},
      {R"({"verb":"verfy"})", "request: there is no verb 'verfy' [verify]"},
      {R"({"verb":"wach"})", "request: there is no verb 'wach' [watch]"},
      {R"({"verb":"\u0000"})", R"(request: there is no verb '\x00')"},
  });
}

TEST_F(BadRequest, HasMembersThatItsVerbDoesNotTake) {
  expectRefused({
      {R"({"verb":"get"})", "request: expected a member 'path', a string, found none"},
      {R"({"verb":"get","path":7})", "request: expected a string as 'path', found number"},
      {R"({"verb":"get","path":null})", "request: expected a string as 'path', found null"},
      {R"({"verb":"get","path":["config"]})", "request: expected a string as 'path', found array"},
      {R"({"verb":"get","path":"config","from":"text"})",
       "request: 'get' takes no member 'from' [form]"},
      {R"({"verb":"get","path":"config","value":1})", "request: 'get' takes no member 'value'"},
      {R"({"verb":"get","path":"config","":1})", "request: 'get' takes no member ''"},
      {R"({"verb":"get","path":"config","form":"txt"})",
       "request: expected one of 'json', 'text' as 'form', found 'txt' [text]"},
      {R"({"verb":"get","path":"config","form":7})",
       "request: expected a string as 'form', found number"},
      {R"({"verb":"types","type":"U16"})", "request: 'types' takes no member 'type'"},
      {R"({"verb":"describe"})", "request: expected a member 'type', a string, found none"},
      {R"({"verb":"describe","typ":"U16"})", "request: 'describe' takes no member 'typ' [type]"},
      {R"({"verb":"describe","type":{}})", "request: expected a string as 'type', found object"},
      {R"({"verb":"set"})", "request: expected a member 'path', a string, found none"},
      {R"({"verb":"set","path":"config/sliceId"})",
       "request: expected one of the members 'value' and 'text'"},
      {R"({"verb":"set","path":"config/sliceId","value":"a","text":"a"})",
       "request: expected one of the members 'value' and 'text'"},
      {R"({"verb":"set","path":"config/sliceId","text":7})",
       "request: expected a string as 'text', found number"},
      {R"({"verb":"set","path":"config/sliceId","text":null})",
       "request: expected a string as 'text', found null"},
      {R"({"verb":"set","path":"config/sliceId","value":"x","form":"JSON"})",
       "request: expected one of 'json', 'text' as 'form', found 'JSON' [json]"},
      {R"({"verb":"set","path":"config/sliceId","val":"x"})",
       "request: 'set' takes no member 'val' [value]"},
      {R"({"verb":"del"})", "request: expected a member 'path', a string, found none"},
      {R"({"verb":"del","path":"config/nativeVlan/et3/1","value":10})",
       "request: 'del' takes no member 'value'"},
      {R"({"verb":"del","path":"config/nativeVlan/et3/1","form":"xml"})",
       "request: expected one of 'json', 'text' as 'form', found 'xml'"},
      {R"({"verb":"notify"})", "request: expected a member 'path', a string, found none"},
      {R"({"verb":"notify","path":"config/nativeVlan/et3/1","form":"json"})",
       "request: 'notify' takes no member 'form'"},
      {R"({"verb":"call"})", "request: expected a member 'handler', a string, found none"},
      {R"({"verb":"call","handler":7})", "request: expected a string as 'handler', found number"},
      {R"({"verb":"call","handler":"doVerify","argument":[]})",
       "request: 'call' takes no member 'argument'"},
      {R"({"verb":"call","handler":"doVerify","args":{}})",
       "request: expected a list as 'args', found object"},
      {R"({"verb":"call","handler":"doVerify","args":"x"})",
       "request: expected a list as 'args', found string"},
      {R"({"verb":"call","handler":"doVerify","args":null})",
       "request: expected a list as 'args', found null"},
      {R"({"verb":"verify","path":"config"})", "request: 'verify' takes no member 'path'"},
      {R"({"verb":"show","devices":true})", "request: 'show' takes no member 'devices'"},
      {R"({"verb":"apply"})", "request: expected a member 'file', a string, found none"},
      {R"({"verb":"apply","file":"x.slice"})",
       "request: expected a member 'content', a string, found none"},
      {R"({"verb":"apply","content":""})",
       "request: expected a member 'file', a string, found none"},
      {R"({"verb":"apply","file":7,"content":""})",
       "request: expected a string as 'file', found number"},
      {R"({"verb":"apply","file":"x.slice","content":["x"]})",
       "request: expected a string as 'content', found array"},
      {R"({"verb":"apply","file":"x.slice","content":"","form":"xml"})",
       "request: 'apply' takes no member 'form' [format]"},
      {R"({"verb":"diff","file":"x.slice"})",
       "request: expected a member 'content', a string, found none"},
      {R"({"verb":"diff","file":"x.slice","content":7})",
       "request: expected a string as 'content', found number"},
      {R"({"verb":"diff","file":"x.slice","content":"","form":"json"})",
       "request: 'diff' takes no member 'form' [format]"},
      {R"({"verb":"dump","format":"yaml"})",
       "request: expected one of 'slice', 'json' as 'format', found 'yaml'"},
      {R"({"verb":"dump","format":"slic"})",
       "request: expected one of 'slice', 'json' as 'format', found 'slic' [slice]"},
      {R"({"verb":"dump","format":true})", "request: expected a string as 'format', found boolean"},
      {R"({"verb":"dump","form":"json"})", "request: 'dump' takes no member 'form' [format]"},
      {R"({"verb":"trace","setting":7})", "request: expected a string as 'setting', found number"},
      {R"({"verb":"trace","seting":"X/0"})", "request: 'trace' takes no member 'seting' [setting]"},
      {R"({"verb":"driver"})", "request: expected a member 'action', a string, found none"},
      {R"({"verb":"driver","action":7})", "request: expected a string as 'action', found number"},
      {R"({"verb":"driver","action":"reset"})",
       "request: expected one of 'log', 'dump', 'state', 'fault', 'flip' as 'action', found "
       "'reset'"},
      {R"({"verb":"driver","action":"flap"})",
       "request: expected one of 'log', 'dump', 'state', 'fault', 'flip' as 'action', found 'flap' "
       "[flip]"},
      {R"({"verb":"driver","action":"flip"})",
       "request: expected a member 'device', a string, found none"},
      {R"({"verb":"driver","action":"flip","device":7})",
       "request: expected a string as 'device', found number"},
      {R"({"verb":"driver","action":"fault"})",
       "request: expected a member 'text', a string, found none"},
      {R"({"verb":"driver","action":"fault","text":7})",
       "request: expected a string as 'text', found number"},
      {R"({"verb":"driver","action":"log","file":"x"})",
       "request: 'driver' takes no member 'file'"},
      {R"({"verb":"mode","modus":2})", "request: 'mode' takes no member 'modus'"},
      {R"({"verb":"complete"})", "request: expected a member 'path', a string, found none"},
      {R"({"verb":"complete","path":7})", "request: expected a string as 'path', found number"},
      {R"({"verb":"complete","type":7})", "request: expected a string as 'type', found number"},
      {R"({"verb":"complete","handler":[]})",
       "request: expected a string as 'handler', found array"},
      {R"({"verb":"complete","paths":""})", "request: 'complete' takes no member 'paths' [path]"},
      {R"({"verb":"driver","action":"log\u0000"})",
       R"(request: expected one of 'log', 'dump', 'state', 'fault', 'flip' as 'action', found 'log\x00' [log])"},
      {R"({"verb":"complete","pa\u0000th":""})",
       R"(request: 'complete' takes no member 'pa\x00th' [path])"},
  });
}

TEST_F(BadRequest, LeadsNowhere) {
  expectRefused({
      {R"({"verb":"get","path":""})",
       "path: a path begins with one of config, status, sm, not with ''"},
      {R"({"verb":"get","path":"/"})",
       "path: a path begins with one of config, status, sm, not with ''"},
      {R"({"verb":"get","path":"/config"})",
       "path: a path begins with one of config, status, sm, not with ''"},
      {R"({"verb":"get","path":"confg"})",
       "path: a path begins with one of config, status, sm, not with 'confg' [config]"},
      {R"({"verb":"get","path":"Config/sliceId"})",
       "path: a path begins with one of config, status, sm, not with 'Config' [config]"},
      {R"({"verb":"get","path":"config/"})", "path: config has no attribute ''"},
      {R"({"verb":"get","path":"config//sliceId"})", "path: config has no attribute ''"},
      {R"({"verb":"get","path":"config/slicId"})",
       "path: config has no attribute 'slicId' [sliceId]"},
      {R"({"verb":"get","path":"config/sliceId/"})",
       "path: config/sliceId leads no further: it refers to nothing"},
      {R"({"verb":"get","path":"config/sliceId/x"})",
       "path: config/sliceId leads no further: it refers to nothing"},
      {R"({"verb":"get","path":"config/sliceId:x"})",
       "path: config has no attribute 'sliceId:x' [sliceId]"},
      {R"({"verb":"get","path":"config/nativeVlan/"})", "path: there is no config/nativeVlan/"},
      {R"({"verb":"get","path":"config/nativeVlan/et3/9"})",
       "path: there is no config/nativeVlan/et3/9"},
      {R"({"verb":"get","path":"config/nativeVlan/et3/1:vlan"})",
       "path: there is no config/nativeVlan/et3/1:vlan"},
      {R"({"verb":"get","path":"config/switchPort/et3/1:destid"})",
       "path: there is no config/switchPort/et3/1:destid"},
      {R"({"verb":"get","path":"config/switchPort/et3/9:destId"})",
       "path: there is no config/switchPort/et3/9:destId"},
      {R"({"verb":"get","path":"config/nativeVlan/et3/1\u0000"})",
       R"(path: there is no config/nativeVlan/et3/1\x00)"},
      {R"({"verb":"get","path":"config/device/\u00e9\ud83d\ude00"})",
       "path: there is no config/device/é😀"},
      {R"({"verb":"get","path":"config\u0000/sliceId"})",
       R"(path: a path begins with one of config, status, sm, not with 'config\x00' [config])"},
      {R"({"verb":"get","path":"sm/config/sliceID"})",
       "path: sm/config has no attribute 'sliceID' [sliceId]"},
      {R"({"verb":"get","path":"sm/mode/number"})",
       "path: sm/mode leads no further: it refers to nothing"},
      {R"({"verb":"get","path":"sm/moxFwkActivity/name"})",
       "path: sm/moxFwkActivity leads no further: it refers to nothing"},
      {R"({"verb":"get","path":"sm/doVerify/x"})",
       "path: sm/doVerify leads no further: it refers to nothing"},
      {R"({"verb":"get","path":"config/parent/parent"})",
       "path: config/parent leads no further: it refers to nothing"},
      {R"({"verb":"describe","type":""})", "path: there is no type ''"},
      {R"({"verb":"describe","type":"Nothing"})", "path: there is no type 'Nothing'"},
      {R"({"verb":"describe","type":"u16"})", "path: there is no type 'u16' [U16]"},
      {R"({"verb":"describe","type":"kestSliceDmaSM"})",
       "path: there is no type 'kestSliceDmaSM' [KestSliceDmaSm]"},
      {R"({"verb":"describe","type":"SwitchPort"})",
       "path: 'SwitchPort' may be Hardware::Kest::Slice::KestSliceDmaConfig::SwitchPort "
       "Hardware::Kest::Slice::KestSliceDmaStatus::SwitchPort"},
      {R"({"verb":"describe","type":"::Device"})", "path: there is no type '::Device' [Device]"},
      {R"({"verb":"call","handler":""})", "path: sm has no attribute ''"},
      {R"({"verb":"call","handler":"doVerfy"})", "path: sm has no attribute 'doVerfy' [doVerify]"},
      {R"({"verb":"call","handler":"/doVerify"})",
       "path: a path begins with one of config, status, sm, not with ''"},
      {R"({"verb":"call","handler":"sn/doVerify"})",
       "path: a path begins with one of config, status, sm, not with 'sn'"},
      {R"({"verb":"call","handler":"config/doVerify"})",
       "path: config has no attribute 'doVerify'"},
      {R"({"verb":"driver","action":"flip","device":""})", "path: there is no device '' to flip"},
      {R"({"verb":"driver","action":"flip","device":"fap7"})",
       "path: there is no device 'fap7' to flip"},
      {R"({"verb":"driver","action":"flip","device":"fap0\u0000"})",
       R"(path: there is no device 'fap0\x00' to flip)"},
  });
}

TEST_F(BadRequest, HoldsBytesThatAreNoJson) {
  std::string const request = R"({"verb":"get","path":"config/device/)";
  std::string const at = "request: expected a JSON object; at byte ";
  std::string const found = ": syntax error while parsing value - invalid string: ";
  std::string const noUtf8 = found + "ill-formed UTF-8 byte; last read: '\"config/device/";
  expectRefused({
      {request + "\xff\"}", at + "37" + noUtf8 + "\xff'"},
      {request + "\xc3\"}", at + "38" + noUtf8 + "\xc3\"'"},
      {request + "\xed\xa0\x80\"}", at + "38" + noUtf8 + "\xed\xa0'"},
      {request + '\t' + "\"}", at + "37" + found +
                                   "control character U+0009 (HT) must be escaped to \\u0009 or "
                                   "\\t; last read: '\"config/device/<U+0009>'"},
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
      {nested(500000, "[", "]"), "request: " + tooDeep},
      {std::string(1000000, '['), "request: " + tooDeep},
      {typed("{\"destId\":" + nested(15, "[", "]") + "}"),
       "value: destId: expected a whole number from 0, found " + nested(15, "[", "]")},
      {typed("{\"destId\":" + nested(16, "[", "]") + "}"), "value: " + tooDeep},
      {typed("{\"destId\":" + nested(400000, "[", "]") + "}"), "value: " + tooDeep},
      {typed(std::string(100000, '{')),
       "value: expected a JSON object; at byte 2: syntax error while parsing object key - "
       "unexpected '{'; expected string literal"},
  });
}

TEST_F(BadRequest, IsToldInFullHoweverLong) {
  std::string const name(1000000, 'x');
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
