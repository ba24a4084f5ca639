#include <string_view>
#include <system_error>

#include "test/complexity/Texts.h"
#include "test/fuzz/FuzzedAgent.h"
#include "test/support/SocketClient.h"

namespace Kest::Complexity {

namespace {

/// Sends what there is room for of the first `most` bytes. Once nothing is left, the agent is told
/// that this was all.
void sendSome(Support::SocketClient const& sender, std::string_view& rest, std::size_t most) {
  try {
    rest.remove_prefix(sender.sendSome(rest.substr(0, most)));
  } catch (std::system_error const&) {
    rest = {};  // the agent has ended the connection
  }
  if (rest.empty()) sender.halfClose();
}

/// Sends requests to an agent: transport, parser, verbs and replies count, the client does not.
std::function<void(std::string const&)> asks(std::size_t bytesAtOnce) {
  return [bytesAtOnce](std::string const& text) {
    static Fuzz::FuzzedAgent agent;
    agent.reset();
    Support::SocketClient sender(agent.socket());
    std::string_view rest = text;
    do {
      if (!rest.empty()) sendSome(sender, rest, bytesAtOnce);
      Counted const counted;
      agent.round();
    } while (!sender.isEnded());
  };
}

constexpr std::size_t wholeText = std::size_t{1} << 20U;

/// A request for what one verb does.
std::string verb(char const* name, char const* members) {
  return std::string(R"({"verb":")") + name + "\"," + members;
}
/// The start of a request with a file's content, which JSON escapes.
std::string diff(char const* file, char const* start) {
  return verb("diff", R"("file":")") + file + R"(","content":")" + start;
}

std::vector<Case> requests() {
  std::string const end = "\"}\n";
  return {
      pieces("long verb", R"({"verb":")", "x", end),
      pieces("unterminated line", "", "x"),
      pieces("empty lines", "", "\n"),
      pieces("many requests", "", "{\"verb\":\"mode\"}\n"),
      pieces("many bad requests", "", "{}\n"),
      pieces("long path", verb("get", R"("path":")"), "x", end),
      pieces("path of many steps", verb("get", R"("path":"config)"), "/d", end),
      pieces("path of many slashes", verb("get", R"("path":"sm/config)"), "/", end),
      pieces("path through references", verb("get", R"("path":"sm/config)"), "/parent", end),
      pieces("long key", verb("get", R"("path":"config/nativeVlan/)"), "x", end),
      pieces("key of many colons", verb("get", R"("path":"config/switchPort/)"), ":destId", end),
      pieces("beginning of a long path", verb("complete", R"("path":"config/)"), "x", end),
      pieces("beginning of many steps", verb("complete", R"("path":"sm/config)"), "/d", end),
      pieces("beginning of a long type", verb("complete", R"("type":")"), "x", end),
      pieces("long type", verb("describe", R"("type":")"), "x::", end),
      pieces("long handler", verb("call", R"("handler":")"), "x", end),
      pieces("many arguments", verb("call", R"("handler":"doVerify","args":[0)"), ",0", "]}\n"),
      pieces("long mode", verb("mode", R"("mode":")"), "1", end),
      pieces("long setting", verb("trace", R"("setting":")"), "F@/0,", end),
      pieces("long value", verb("set", R"("path":"config/sliceId","value":")"), "x", end),
      pieces("value of escapes", verb("set", R"("path":"config/sliceId","text":"')"), "\\\\x41",
             "'\"}\n"),
      pieces("value of many members",
             verb("set", R"("path":"config/switchPort/et1","value":{"x":1)"), R"(,"m@":1)", "}}\n"),
      pieces("text of many members",
             verb("set", R"("path":"config/switchPort/et1","text":"{\"x\":1)"), R"(,\"m@\":1)",
             "}\"}\n"),
      pieces("reference to a deep path",
             verb("set", R"("path":"config/device/f:pciHam","value":")"), "/d", end),
      pieces("key of a changed entry", verb("set", R"("value":1,"path":"config/nativeVlan/et)"),
             "x", end),
      pieces("key of a removed entry", verb("del", R"("path":"config/nativeVlan/et)"), "x", end),
      pieces("key that is announced", verb("notify", R"("path":"config/nativeVlan/et)"), "x", end),
      pieces("diff of many ports", diff("c.json", R"({\"switchPort\":{\"et\":{})"),
             R"(,\"et@\":{})", "}}\"}\n"),
      pieces("diff of many handles", diff("c.slice", ""), R"(pciHam '/pci/@'\n)", end),
      pieces("diff of a deep handle", diff("c.slice", "pciHam '"), "/d", "'\"}\n"),
      pieces("diff of a deep handle in JSON", diff("c.json", R"({\"pciHam\":[\")"), "/d",
             "\\\"]}\"}\n"),
      pieces("diff of native VLANs", diff("c.slice", ""), R"(nativeVlan 'et@' 10\n)", end),
      pieces("diff of native VLANs of one hash", diff("c.slice", ""), R"(nativeVlan '%' 10\n)",
             end),
      pieces("diff of native VLANs of crowded hashes", diff("c.slice", ""),
             R"(nativeVlan '^' 10\n)", end),
      pieces("diff of one long line", diff("c.slice", ""), "x", end),
      pieces("diff of a long file name", verb("diff", R"("content":"x","file":")"), "x", end),
      pieces("apply of native VLANs", verb("apply", R"("file":"c.slice","content":")"),
             R"(nativeVlan 'et@' 10\n)", end),
      pieces("faults", verb("driver", R"("action":"fault","text":")"),
             R"(fail kestDmaIfadd 'et@' 11 times 1\n)", end),
      pieces("long device", verb("driver", R"("action":"flip","device":")"), "x", end),
      pieces("long action", verb("driver", R"("action":")"), "x", end),
      pieces("long format", verb("dump", R"("format":")"), "x", end),
  };
}

std::vector<Case> dribbled() {
  return {pieces("one long request", R"({"verb":"mode","id":")", "x", "\"}\n"),
          pieces("empty lines", "", "\n"), pieces("unterminated line", "", "x")};
}

}  // namespace

std::vector<Reader> requestReaders() {
  return {
      {"requests", asks(wholeText), both(jsonTexts(R"({"verb":"mode","id":)", "\n"), requests())},
      {"requests, 16 bytes at once", asks(16), dribbled()}};
}

}  // namespace Kest::Complexity
