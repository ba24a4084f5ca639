#include "test/ctl/KestctlRun.h"
#include "test/support/SocketClient.h"
#include "test/support/UnixSocket.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace Kest::Ctl {

/// A descriptor that is closed when this goes, or before.
struct Fd {
  int fd = -1;
  Fd() = default;
  Fd(Fd const&) = delete;
  Fd& operator=(Fd const&) = delete;
  ~Fd() { end(); }
  void end() {
    if (fd >= 0) close(fd);
    fd = -1;
  }
};

namespace {

constexpr int deadlineMilliseconds = 60000;  // for anything to happen

int check(int result, char const* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

struct Pipe {
  Fd read;
  Fd write;
  Pipe() {
    std::array<int, 2> ends{};
    check(pipe2(ends.data(), O_CLOEXEC), "pipe2");
    read.fd = ends[0];
    write.fd = ends[1];
  }
};

/// What is written to the terminal's inner side is read from its outer side as it is.
void becomeTerminal(Pipe& pipe) {
  pipe.read.end();
  pipe.write.end();
  pipe.read.fd = check(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "posix_openpt");
  check(grantpt(pipe.read.fd), "grantpt");
  check(unlockpt(pipe.read.fd), "unlockpt");
  pipe.write.fd = check(open(ptsname(pipe.read.fd), O_RDWR | O_NOCTTY | O_CLOEXEC), "open");
  termios settings{};
  check(tcgetattr(pipe.write.fd, &settings), "tcgetattr");
  cfmakeraw(&settings);
  check(tcsetattr(pipe.write.fd, TCSANOW, &settings), "tcsetattr");
}

/// Appends what there is to read; false at the end.
bool readInto(std::string& text, int fd) {
  std::array<char, 65536> block;
  ssize_t const bytes = read(fd, block.data(), block.size());
  if (bytes > 0) text.append(block.data(), static_cast<std::size_t>(bytes));
  return bytes > 0;
}

}  // namespace

/// The agent's side: one connection, one reply for each request.
class ScriptedAgent {
 public:
  ScriptedAgent(std::string const& path, std::vector<std::string> const& replies, bool isBusy)
      : replies_(replies) {
    listener_.fd = check(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
    unlink(path.c_str());
    check(Support::bindTo(listener_.fd, path), "bind");
    check(listen(listener_.fd, isBusy ? 0 : 1), "listen");
    if (isBusy) other_.fd = check(Support::connectedTo(path), "connect");
  }

  /// Takes the client that there was no other room for, if there is one, once `process` waits.
  void makeRoom(pid_t process) {
    if (other_.fd < 0) return;
    while (!isAsleep(process)) sched_yield();
    close(check(accept4(listener_.fd, nullptr, nullptr, SOCK_CLOEXEC), "accept4"));
  }

  int fd() const { return client_.fd >= 0 ? client_.fd : listener_.fd; }

  void ready(std::vector<std::string>& requests) {
    if (client_.fd < 0) {
      client_.fd = check(accept4(listener_.fd, nullptr, nullptr, SOCK_CLOEXEC), "accept4");
      return;
    }
    if (!readInto(input_, client_.fd)) {
      isOver_ = true;
      client_.end();
      return;
    }
    for (std::size_t end = wholeRequest(); end <= input_.size() && !isOver_; end = wholeRequest()) {
      requests.push_back(input_.substr(0, end));
      if (requests.back().ends_with('\n')) requests.back().pop_back();
      input_.erase(0, end);
      answer();
    }
  }

  bool isOver() const { return isOver_; }

 private:
  /// Whether kestctl sleeps, or has ended.
  static bool isAsleep(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string const stat{std::istreambuf_iterator<char>(file), {}};
    return stat.find("(kestctl) S") != stat.npos || stat.find("(kestctl) Z") != stat.npos;
  }

  /// Where the first request ends, with the bytes that follow it; beyond the input if they have not
  /// come.
  std::size_t wholeRequest() const {
    std::size_t const end = input_.find('\n');
    if (end == std::string::npos) return input_.size() + 1;
    std::string const member = "\"bytes\":";
    std::size_t const bytes = input_.substr(0, end).find(member);
    std::size_t const following =
        bytes == std::string::npos ? 0 : std::stoul(input_.substr(bytes + member.size()));
    return end + 1 + following;
  }

  void answer() {
    if (replies_.empty()) return;  // it never does
    std::string const& reply = replies_.at(answered_++);
    for (std::size_t sent = 0; sent < reply.size();) {
      ssize_t const bytes =
          send(client_.fd, reply.data() + sent, reply.size() - sent, MSG_NOSIGNAL);
      if (bytes < 0) break;  // it has gone
      sent += static_cast<std::size_t>(bytes);
    }
    if (answered_ < replies_.size()) return;
    isOver_ = true;
    client_.end();
  }

  std::vector<std::string> const& replies_;
  Fd listener_;
  Fd other_;  // a client that waits
  Fd client_;
  std::string input_;
  std::size_t answered_ = 0;
  bool isOver_ = false;
};

namespace {

/// Starts `command` in `directory`; its input holds `input`.
pid_t start(std::string const& directory, std::vector<std::string> command,
            std::map<std::string, std::string> const& environment, std::string const& input,
            Pipe& out, Pipe& errors) {
  Pipe in;
  check(static_cast<int>(write(in.write.fd, input.data(), input.size())), "write");
  std::vector<std::string> variables;
  for (auto const& [name, value] : environment) variables.push_back(name + "=" + value);
  auto const pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    return all;
  };
  auto const arguments = pointers(command);
  auto const settings = pointers(variables);
  pid_t const pid = check(fork(), "fork");
  if (pid != 0) return pid;
  dup2(in.read.fd, STDIN_FILENO);
  dup2(out.write.fd, STDOUT_FILENO);
  dup2(errors.write.fd, STDERR_FILENO);
  if (chdir(directory.c_str()) == 0) execve(arguments[0], arguments.data(), settings.data());
  _exit(127);
}

/// Serves until the process has closed both of its outputs.
Outcome finish(pid_t pid, Pipe& out, Pipe& errors, ScriptedAgent* agent) {
  Outcome outcome;
  out.write.end();
  errors.write.end();
  if (agent != nullptr) agent->makeRoom(pid);
  while (out.read.fd >= 0 || errors.read.fd >= 0) {
    bool const serves = agent != nullptr && !agent->isOver();
    std::array<pollfd, 3> waiting{pollfd{out.read.fd, POLLIN, 0}, pollfd{errors.read.fd, POLLIN, 0},
                                  pollfd{serves ? agent->fd() : -1, POLLIN, 0}};
    if (poll(waiting.data(), waiting.size(), deadlineMilliseconds) <= 0) {
      kill(pid, SIGKILL);
      throw std::runtime_error("kestctl does not come to an end");
    }
    if (waiting[0].revents != 0 && !readInto(outcome.out, out.read.fd)) out.read.end();
    if (waiting[1].revents != 0 && !readInto(outcome.errors, errors.read.fd)) errors.read.end();
    if (waiting[2].revents != 0) agent->ready(outcome.requests);
  }
  int status = 0;
  check(waitpid(pid, &status, 0), "waitpid");
  outcome.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return outcome;
}

}  // namespace

Outcome KestctlRun::run(std::vector<std::string> const& arguments, Replies const& replies,
                        std::string const& input) {
  std::vector<std::string> command{KEST_CTL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return runServed(command, replies, input);
}

Outcome KestctlRun::runServed(std::vector<std::string> const& command, Replies const& replies,
                              std::string const& input) {
  ScriptedAgent agent(socket(), replies, isBusy);
  return serve(command, input, &agent);
}

Outcome KestctlRun::runAlone(std::vector<std::string> const& command) {
  unlink(socket().c_str());
  return serve(command, "", nullptr);
}

Outcome KestctlRun::serve(std::vector<std::string> const& command, std::string const& input,
                          ScriptedAgent* agent) {
  auto all = environment;
  all.emplace("KEST_SLICE_AGENT_SOCKET", socket());
  Pipe out;
  if (isOnTerminal) becomeTerminal(out);
  Pipe errors;
  pid_t const pid = start(directory, command, all, input, out, errors);
  return finish(pid, out, errors, agent);
}

}  // namespace Kest::Ctl
