#include "test/fuzz/FuzzedAgent.h"
#include "test/fuzz/FuzzedClient.h"

/// The control protocol: lines from two clients to an agent.
namespace {

using Fuzz::json;

constexpr char otherClient = '>';  // in front of a line
constexpr std::size_t mostRounds = 10000;

/// Two clients of one agent, and how they send.
class Conversation {
 public:
  /// @param manner 0: line by line, each when the last has its reply; otherwise as many bytes at
  /// once, whatever has been replied
  Conversation(Fuzz::FuzzedAgent& agent, std::size_t manner) : agent_(agent), manner_(manner) {}

  void line(std::string_view line, bool isWhole) {
    Fuzz::FuzzedClient& from = line.starts_with(otherClient) ? second_ : first_;
    if (line.starts_with(otherClient)) line.remove_prefix(1);
    json const request = json::parse(line, nullptr, false);
    if (mayEnd(request) || announcesBytes(request)) return;
    if (isWhole) from.asked(idOf(line, request));
    send(from, std::string(line) + (isWhole ? "\n" : ""));
    if (manner_ == 0) awaitReplies(from);
    // Otherwise a planned fault could end the process at a later request.
    Hardware::Kest::Sim::simDriver().faultsAre("");
  }

  /// Everything is replied to, and the agent lets go of who has gone.
  void end() {
    first_.end();
    second_.end();
    rounds([&] { return first_.isEnded() && second_.isEnded() && !agent_.isApplying(); });
    Fuzz::require(first_.hasAllReplies() && second_.hasAllReplies(), "every request has its reply");
    Fuzz::require(agent_.connections() == 0, "the agent lets go of clients that have gone");
  }

 private:
  /// Whether bytes follow that are not requests.
  static bool announcesBytes(json const& request) {
    return request.is_object() && request.contains("bytes");
  }

  static json idOf(std::string_view line, json const& request) {
    bool const isRead = request.is_object() && line.find('\0') == line.npos;
    return isRead ? request.value("id", json(json::value_t::discarded))
                  : json(json::value_t::discarded);
  }

  /// Whether the request may end the process, as it should: a verification that finds something, or
  /// a fault that the machine must not survive. While other requests wait, nobody can know.
  bool mayEnd(json const& request) const {
    if (!request.is_object()) return false;
    std::string const text = request.dump(-1, ' ', false, json::error_handler_t::replace);
    auto const has = [&](char const* word) { return text.find(word) != text.npos; };
    bool const verifies = has("doVerify") || has("handleTimerExpired") || has("stateTimer");
    if (manner_ > 0) return verifies || has("fault");
    if (has("fault") && agent_.isApplying()) return true;
    return verifies && (agent_.isApplying() || !agent_.isClean());
  }

  void send(Fuzz::FuzzedClient& from, std::string const& bytes) {
    std::size_t const atOnce = manner_ == 0 ? bytes.size() : manner_;
    std::size_t sent = 0;
    rounds([&] {
      sent += from.send(std::string_view(bytes).substr(sent), atOnce);
      return sent >= bytes.size();
    });
  }

  void awaitReplies(Fuzz::FuzzedClient const& from) {
    rounds([&] { return from.hasAllReplies(); });
  }

  template <class Done>
  void rounds(Done const& done) {
    for (std::size_t round = 0; !done(); ++round) {
      Fuzz::require(round < mostRounds, "a request is a bounded number of rounds");
      agent_.round();
      first_.receive();
      second_.receive();
    }
  }

  Fuzz::FuzzedAgent& agent_;
  std::size_t manner_;
  Fuzz::FuzzedClient first_{agent_.socket()};
  Fuzz::FuzzedClient second_{agent_.socket()};
};

}  // namespace

/// The first byte is the manner of sending.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
  static Fuzz::FuzzedAgent agent;
  agent.reset();
  Fuzz::Input input(bytes, size);
  Conversation conversation(agent, input.byte());
  while (!input.empty()) {
    std::size_t const before = input.left();
    std::string_view const line = input.takeTo('\n');
    conversation.line(line, before - input.left() > line.size());
  }
  conversation.end();
  return 0;
}
