#pragma once

#include <sys/types.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Kest::Agent {

/// They look at memory through pipes, and take for broken what they cannot look at.
#ifdef KEST_ADDRESS_SANITIZER
inline constexpr bool sanitizersNeedDescriptors = true;
#else
inline constexpr bool sanitizersNeedDescriptors = false;
#endif

/// The agent as a process of its own, in a given directory. Whatever waits for it gives up, and
/// throws, after a deadline that no working agent comes near. A process that is still there at the
/// end is killed.
class AgentProcess {
 public:
  enum class Output { pipes, terminal };
  using Environment = std::map<std::string, std::string>;

  /// On a terminal both outputs are one and the lines end as they were written. The environment
  /// holds `environment` and `TERM=xterm` alone, beside what the sanitizers want, and the control
  /// socket `control.sock` in the directory.
  /// @param mostDescriptors the process may never have more; 0: as many as this one may
  AgentProcess(std::string const& directory, std::vector<std::string> arguments,
               Output output = Output::pipes, Environment environment = {},
               std::size_t mostDescriptors = 0);
  AgentProcess(AgentProcess const&) = delete;
  AgentProcess& operator=(AgentProcess const&) = delete;
  ~AgentProcess();

  pid_t pid() const { return pid_; }
  void signalIs(int number) const;

  /// Waits until standard output holds `text`; returns the output to its end and takes it.
  std::string outputUntil(std::string const& text);

  /// From now on nobody can read the standard output, or the standard error, of an agent on pipes.
  void outputIsClosed();
  void errorsAreClosed();
  /// Waits until the process has ended, and reads nothing meanwhile.
  void awaitEndUnread() const;

  /// How the process ended: its exit code, or minus the signal that killed it. Its output is whole.
  int ended();

  /// What has not been taken of the output.
  std::string const& output() const { return output_.text; }
  std::string const& errors() const { return errors_.text; }

 private:
  struct Stream {
    int fd = -1;
    std::string text;
  };
  struct Start {
    std::string directory;
    std::vector<std::string> command;
    Environment environment;
    std::size_t mostDescriptors;
    [[noreturn]] void become() const;
  };
  void startOnPipes(Start const& start);
  void startOnTerminal(Start const& start);
  bool readMore();

  pid_t pid_ = -1;
  Stream output_;
  Stream errors_;
};

}  // namespace Kest::Agent
