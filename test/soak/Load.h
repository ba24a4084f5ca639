#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include "test/support/SocketClient.h"

namespace Kest::Soak {

using Support::SocketClient;

/// More bytes of requests than the system and the agent keep for a client that does not read.
inline constexpr std::size_t mostTakenFromStalled = std::size_t{4} << 20;

/// Clients that ask an agent all the time: readers of several kinds, each of which asks again as
/// soon as it has its answer; one that changes the configuration, and one that watches it; one that
/// asks and asks and never reads.
class Load {
 public:
  /// Connects; the client that never reads begins at once.
  /// @param clients 4 at least, of all kinds together
  Load(std::string const& path, std::size_t clients);

  /// All others begin to ask.
  void start();
  /// Handles what has come, waiting for it a moment at most. Throws on a wrong answer, or when
  /// nothing has come for a time that no working agent needs.
  void turn();
  /// Waits for the answers that are due and for the events of all changes.
  void finish();

  std::size_t answered() const noexcept { return answered_; }
  std::size_t changes() const noexcept { return changes_; }
  /// Bytes of requests that the agent, or the system, took from the client that never reads.
  std::size_t takenFromStalled() const noexcept { return takenFromStalled_; }

 private:
  struct Reader {
    explicit Reader(std::string const& path, std::size_t first) : connection(path), asked(first) {}

    SocketClient connection;
    std::size_t asked;  // index of the request
    bool waits = false;
  };

  bool isSettled() const;
  void ask(Reader& reader) const;
  void change();
  bool readReplies(Reader& reader);
  bool readChanges();
  bool readEvents();
  void stallAlone();
  void stall();

  std::vector<std::string> replies_;  // to the readers' requests
  std::string stalledRequests_;
  std::deque<Reader> readers_;
  SocketClient changing_;
  SocketClient watching_;
  SocketClient stalled_;
  bool isEnding_ = false;
  bool changeIsDue_ = false;
  std::size_t answered_ = 0;
  std::size_t changes_ = 0;
  std::size_t events_ = 0;
  std::size_t takenFromStalled_ = 0;
  std::size_t quietTurns_ = 0;
};

}  // namespace Kest::Soak
