#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <string_view>

#include "test/complexity/Texts.h"
#include "test/fuzz/FuzzedAgent.h"
#include "test/support/UnixSocket.h"

namespace Kest::Complexity {

namespace {

/// A client that sends a text and then no more, and does not care what it is told.
class Sender {
 public:
  explicit Sender(std::string const& path)
      : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    if (Support::connectTo(fd_, path) != 0) throw std::runtime_error("the agent takes no client");
  }
  Sender(Sender const&) = delete;
  Sender& operator=(Sender const&) = delete;
  ~Sender() { close(fd_); }

  /// Sends what there is room for of the first `most` bytes; once there is nothing left, the agent
  /// is told that this was all.
  void send(std::string_view& rest, std::size_t most) const {
    ssize_t const sent = ::send(fd_, rest.data(), std::min(rest.size(), most), MSG_NOSIGNAL);
    if (sent < 0 && errno != EAGAIN) rest = {};  // it was sent away
    if (sent > 0) rest.remove_prefix(static_cast<std::size_t>(sent));
    if (rest.empty()) shutdown(fd_, SHUT_WR);
  }
  /// Whether the agent has said all and let go.
  bool isThrough() const {
    std::array<char, 65536> block;
    ssize_t bytes = 0;
    while ((bytes = recv(fd_, block.data(), block.size(), 0)) > 0) {
    }
    return bytes == 0 || errno != EAGAIN;
  }

 private:
  int fd_;
};

/// The whole way of requests: transport, parser, verbs, replies. What the client does is not
/// counted.
std::function<void(std::string const&)> asks(std::size_t bytesAtOnce) {
  return [bytesAtOnce](std::string const& text) {
    static Fuzz::FuzzedAgent agent;
    agent.reset();
    Sender const sender(agent.socket());
    std::string_view rest = text;
    do {
      if (!rest.empty()) sender.send(rest, bytesAtOnce);
      Counted const counted;
      agent.round();
    } while (!sender.isThrough());
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
      pieces("many members", R"({"verb":"mode")", R"(,"m@":1)", "}\n"),
      pieces("equal members", R"({"verb":"mode")", R"(,"m":1)", "}\n"),
      pieces("members of one hash", R"({"verb":"mode")", R"(,"%":1)", "}\n"),
      pieces("many members of an id", R"({"verb":"mode","id":{"m":1)", R"(,"m@":1)", "}}\n"),
      pieces("many elements of an id", R"({"verb":"mode","id":[0)", ",0", "]}\n"),
      pieces("many objects in an id", R"({"verb":"mode","id":[0)", R"(,{"m":{}})", "]}\n"),
      pieces("long id", R"({"verb":"mode","id":")", "x", end),
      pieces("id of escapes", R"({"verb":"mode","id":")", "\\u0001", end),
      pieces("number of an id", R"({"verb":"mode","id":)", "1", "}\n"),
      nested("deep", R"({"verb":"mode","id":)", "[", "", "]", "}\n"),
      pieces("unterminated deep", "", R"({"a":)", "\n"),
      pieces("long member", R"({"verb":"mode",")", "x", "\":1}\n"),
      pieces("long verb", R"({"verb":")", "x", end),
      pieces("no JSON", "", "x", "\n"),
      pieces("unterminated string", R"({"verb":")", "x", "\n"),
      pieces("bytes that are no characters", R"({"verb":")", "\x80", end),
      pieces("zero bytes", R"({"verb":")", std::string(1, '\0'), end),
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
  return {{"requests", asks(wholeText), requests()},
          {"requests, 16 bytes at once", asks(16), dribbled()}};
}

}  // namespace Kest::Complexity
