#include "test/soak/Attacker.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <deque>
#include <string_view>
#include <system_error>
#include <utility>

#include "test/support/SocketClient.h"

namespace Kest::Soak {

namespace {

constexpr std::size_t blockBytes = 65536;
constexpr std::size_t kibibyte = 1024;

/// `piece` again and again between `start` and `end`, `bytes` in all; `#` is the piece's number.
std::string filled(std::string text, std::string_view piece, std::size_t bytes,
                   std::string const& end) {
  for (std::size_t number = 0; text.size() + end.size() + piece.size() + 8 < bytes; ++number) {
    for (char const c : piece) text += c == '#' ? std::to_string(number) : std::string(1, c);
  }
  return text + end;
}

std::string withId(std::size_t bytes) {
  return filled(R"({"verb":"mode","id":")", "i", bytes, "\"}\n");
}

/// One connection of an attacker. The agent may end it; then there is a new one.
class Client {
 public:
  Client(std::string const& path, Attacker const& attacker) : path_(path), attacker_(attacker) {}
  Client(Client const&) = delete;
  Client& operator=(Client const&) = delete;
  ~Client() { close(fd_); }

  /// Whether anything could be done.
  bool turn() {
    if (fd_ < 0 && !connected()) return false;
    bool const hasSent = send();
    bool const hasRead = read();
    return hasSent || hasRead;
  }

 private:
  bool connected() {
    sent_ = asked_ = 0;
    fd_ = Support::connectedTo(path_, SOCK_NONBLOCK);
    return fd_ >= 0;
  }

  bool send() {
    bool const isThrough = attacker_.isOnce && asked_ == attacker_.requests.size();
    if (fd_ < 0 || isThrough || attacker_.requests.empty()) return false;
    std::string const& request = attacker_.requests[asked_ % attacker_.requests.size()];
    ssize_t const sent = ::send(fd_, request.data() + sent_, request.size() - sent_, MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN ? false : end();
    sent_ += static_cast<std::size_t>(sent);
    if (sent_ == request.size()) {
      sent_ = 0;
      ++asked_;
    }
    return true;
  }

  bool read() {
    if (fd_ < 0 || attacker_.readAtOnce == 0) return false;
    static std::array<char, blockBytes> bytes;
    ssize_t const read = recv(fd_, bytes.data(), attacker_.readAtOnce, 0);
    if (read < 0) return errno == EAGAIN ? false : end();
    return read > 0 || end();
  }

  /// False, for callers to return.
  bool end() {
    close(std::exchange(fd_, -1));
    return false;
  }

  std::string const& path_;
  Attacker const& attacker_;
  int fd_ = -1;
  std::size_t sent_ = 0;   // bytes of the request that is being sent
  std::size_t asked_ = 0;  // requests
};

[[noreturn]] void attack(std::string const& path, Attacker const& attacker, uid_t user) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (geteuid() == 0 && (setgid(user) != 0 || setuid(user) != 0)) _exit(1);
  if (access(path.c_str(), R_OK | W_OK) != 0) _exit(1);  // it would attack nobody
  std::deque<Client> clients;
  for (std::size_t i = 0; i < attacker.clients; ++i) clients.emplace_back(path, attacker);
  constexpr int pauseMilliseconds = 1;  // when the agent takes nothing and says nothing
  while (true) {
    auto const busy =
        std::count_if(clients.begin(), clients.end(), [](Client& client) { return client.turn(); });
    if (busy == 0) poll(nullptr, 0, pauseMilliseconds);
  }
}

}  // namespace

std::vector<Attacker> attackers() {
  constexpr std::size_t mebibyte = kibibyte * kibibyte;
  std::string const members = filled(R"({"verb":"mode","m":0)", R"(,"m#":0)", mebibyte, "}\n");
  std::string const idMembers =
      filled(R"({"verb":"mode","id":{"m":0)", R"(,"m#":0)", mebibyte, "}}\n");
  std::string const deepDiff = filled(R"({"verb":"diff","file":"c.slice","content":"pciHam ')",
                                      "/d", 10 * kibibyte, "'\"}\n");
  std::string const half = filled(R"({"verb":"mode","id":")", "i", kibibyte, "");
  std::vector<std::string> const reports{
      "{\"verb\":\"show\"}\n", "{\"verb\":\"verify\"}\n",
      "{\"verb\":\"get\",\"path\":\"config\"}\n",
      "{\"verb\":\"diff\",\"file\":\"c.slice\",\"content\":\"\"}\n"};
  return {
      {"tiny members", 1, {members}, blockBytes},
      {"tiny members of an id", 1, {idMembers}, blockBytes},
      {"deep handles", 1, {deepDiff}, blockBytes},
      {"requests of 128 KiB", 50, {withId(128 * kibibyte)}, blockBytes},
      {"half requests", 1000, {half}, blockBytes, true},
      {"large ids", 100, {withId(mebibyte)}, blockBytes},
      {"watchers that never read", 200, {"{\"verb\":\"watch\"}\n"}, 0, true},
      {"reports of everything", 4, reports, blockBytes},
      {"silent connections", 1000, {}, blockBytes},
      {"a byte at a time", 50, reports, 1},
  };
}

Attack::Attack(std::string const& socketPath, Attacker const& attacker, uid_t user) : pid_(fork()) {
  if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (pid_ == 0) attack(socketPath, attacker, user);
}

void Attack::check() const {
  if (waitpid(pid_, nullptr, WNOHANG) != 0) throw std::runtime_error("the attacker has ended");
}

Attack::~Attack() {
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

}  // namespace Kest::Soak
