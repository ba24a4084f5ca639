#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "ctl/Client.h"
#include "ctl/Failure.h"
#include "ctl/ReplyText.h"
#include "ctl/Verbs.h"
#include "test/complexity/Texts.h"
#include "test/support/Files.h"
#include "test/support/Readers.h"
#include "test/support/UnixSocket.h"

namespace Kest::Complexity {

namespace {

/// Sends a text to the first client that connects, and closes the connection.
class Speaker {
 public:
  explicit Speaker(std::string const& text)
      : listener_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (Support::bindTo(listener_, path()) != 0 || listen(listener_, 1) != 0) {
      throw std::runtime_error("no socket for replies");
    }
    thread_ = std::thread([this, &text] { say(text); });
  }
  Speaker(Speaker const&) = delete;
  Speaker& operator=(Speaker const&) = delete;
  ~Speaker() {
    thread_.join();
    close(listener_);
  }

  std::string path() const { return folder_.file("s"); }

 private:
  void say(std::string_view rest) const {
    int const client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    ssize_t sent = 0;
    while (!rest.empty() && (sent = send(client, rest.data(), rest.size(), MSG_NOSIGNAL)) > 0) {
      rest.remove_prefix(static_cast<std::size_t>(sent));
    }
    close(client);
  }

  Support::TempFolder folder_;
  int listener_;
  std::thread thread_;
};

constexpr double aMinute = 60;

/// Reads messages as the client takes them from its socket.
void readMessages(std::string const& text) {
  Speaker const speaker(text);
  Ctl::Client client(speaker.path(), Ctl::Client::after(aMinute));
  Counted const counted;
  try {
    while (true) client.event();
  } catch (Ctl::Failure const&) {  // NOLINT(bugprone-empty-catch): the end, or refused
  }
}

/// Shows results as each verb would, and as events. None is deep: the client refuses those.
void showResult(std::string const& text) {
  Counted const counted;
  Ctl::Json const result = Ctl::jsonFromReply(text);
  Support::showResult(result);
  try {
    Ctl::eventLine(result);
  } catch (Ctl::Json::exception const&) {  // NOLINT(bugprone-empty-catch): of another form
  }
}

std::vector<Case> messages() {
  return {
      pieces("many messages", "", "{\"event\":\"x\"}\n"),
      pieces("empty objects", "", "{}\n"),
      pieces("many members of a result", R"({"ok":true,"result":{"x":1)", ",\"m@\":1", "}}\n"),
      pieces("unterminated line", "", "x"),
  };
}

std::string const side = R"("config":{"devName":"f","nativeVlan":1},"status":null,"driver":null})";

std::vector<Case> results() {
  std::string const device = R"(,{"name":"f@",)" + side, port = R"(,{"name":"et@",)" + side;
  std::string const slice = R"({"devices":[{"name":"f",)" + side;
  std::string const ports = R"({"devices":[],"ports":[{"name":")";
  return {
      pieces("many devices", slice, device, "],\"ports\":[]}"),
      pieces("many ports", ports + "et\"," + side, port, "]}"),
      halves("many ports and a wide one", ports, "x", "\"," + side, port, "]}"),
      pieces("many types", R"([{"name":"x","kind":"y"})", R"(,{"name":"x@","kind":"y"})", "]"),
      halves("many types and a wide one", R"([{"name":")", "x", R"(","kind":"y"})",
             R"(,{"name":"x@","kind":"y"})", "]"),
      pieces("many attributes",
             R"({"name":"x","kind":"y","constructor":[],"attributes":[)"
             R"({"name":"x","id":1,"class":"c","type":"t","flags":[]})",
             R"(,{"name":"x","id":1,"class":"c","type":"t","flags":["a","b"]})", "]}"),
      pieces("many fields", R"({"value":{"x":1)", ",\"m@\":1", "}}"),
      halves("many fields and a long one", R"({"value":{")", "x", "\":1", ",\"m@\":1", "}}"),
      pieces("many differences", R"({"clean":false,"differences":[{"message":"m"})",
             R"(,{"message":"m@"})", "]}"),
      pieces("many steps", R"({"unchanged":1,"steps":["+ a")", R"(,"+ @")", "]}"),
      pieces("long text", R"({"value":")", "x", "\"}"),
      pieces("many controls", R"({"value":")", "\\u0001", "\"}"),
      pieces("many lines", R"({"state":"","text":")", "\\n", "\"}"),
      pieces("state of many members", R"({"state":{"x":1)", ",\"m@\":1", "}}"),
      pieces("long event", R"({"event":"change","path":"p","value":")", "x", "\"}"),
  };
}

}  // namespace

std::vector<Reader> replyReaders() {
  return {{"kestctl: messages", readMessages, both(jsonTexts(R"({"x":)", "\n"), messages())},
          {"kestctl: results", showResult, results()}};
}

}  // namespace Kest::Complexity
