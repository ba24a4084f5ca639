#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "agent/access/ControlError.h"
#include "agent/control/Account.h"
#include "agent/control/Inbox.h"
#include "agent/control/Outbox.h"
#include "agent/control/Peer.h"
#include "agent/control/Turns.h"
#include "agent/verbs/Answer.h"
#include "platform/mox/Time.h"
#include "text/File.h"

namespace Kest::Agent {

/// One client of the control socket.
///
/// A turn reads a block and serves the requests that are there, or does a piece of a long one; then
/// what there is to read is sent. A turn ends after half a millisecond, with the request that it
/// serves then. The next request is looked at when the last has its reply, and only while the
/// client reads what it is sent. What there is no memory for costs the client its connection.
///
/// Ownership. Shared by its server, which lets go of it when it is told that the client has gone,
/// and by the call that is under way. Whoever replies later keeps a weak reference.
class Connection final : public std::enable_shared_from_this<Connection>, private Turns::Taker {
 public:
  /// Carries a request, an object, out.
  /// @throw std::exception what it is refused with
  using Serve = std::function<Answer(Connection& connection, Json const& request)>;
  /// The client has gone, or has been sent away.
  using Gone = std::function<void(Connection& connection)>;

  /// Sends the reply to a request that could not be read, or to none, as far as there is room.
  static void sendRefusal(int fd, Wire::ErrorKind kind, std::string const& message);

  Connection(Turns& turns, Account& account, Text::Descriptor socket, Peer const& peer, Serve serve,
             Gone gone);
  Connection(Connection const&) = delete;
  Connection& operator=(Connection const&) = delete;

  /// Begins to read.
  void start();

  int fd() const noexcept { return socket_.fd(); }
  Peer const& peer() const noexcept { return peer_; }

  /// The result of a request whose answer was none yet.
  void reply(Json const& result);

  /// Events are sent from now on.
  void watch() noexcept { watching_ = true; }
  bool isWatching() const noexcept { return watching_; }
  /// @param line an event, with its newline; dropped and counted while there is no room
  void event(std::string_view line);
  /// There was no memory for an event.
  void loseEvent() noexcept;

  /// Sends the client away; tells it why if there is room and it is not within a reply.
  void dismiss(std::string const& why);

  /// When the client will have been silent for too long, unless something comes before; the wait
  /// for its reply is not the client's silence.
  Seconds silentAt() const noexcept;
  /// Bytes of memory that the client takes.
  std::size_t share() const noexcept { return share_.bytes(); }

 private:
  template <class Work>
  void atItsOwnCost(Work const& work);
  template <class Step>
  void orRefused(Step const& step);

  void turn() override;
  void work();
  void read();
  bool canServe() const;
  bool canTell() const;
  bool canSkip() const;
  bool wantsInput() const;
  bool isLineTooLong() const;

  void serveNext();
  void serveRequest(std::size_t lineBytes, Json const& request);
  void refuseTooLong();
  void take(Answer answer);
  void takeFollowing();
  void endUpload();
  void tellOn();

  std::size_t longestLine() const noexcept;
  std::string tail() const;
  void tell(std::string_view result);
  void refuse(ControlError const& refused);
  void replied();
  std::size_t held() const;
  void sendSoon();
  void update();
  void end();

  Text::Descriptor socket_;
  Serve serve_;
  Gone gone_;
  Peer peer_;
  Account::Share share_;
  Turns::Member turns_;
  Inbox input_;
  Outbox output_;
  Seconds heardAt_;

  // The request that is being served.
  bool isServing_ = false;          // it waits for its reply
  std::string id_;                  // as JSON text; empty if it has none
  std::uint64_t following_ = 0;     // bytes that are still to come after its line
  std::unique_ptr<Upload> upload_;  // which takes them; null: they are skipped
  std::unique_ptr<LongResult> long_;
  bool isTelling_ = false;  // part of its reply has been told

  bool isStuck_ = false;  // the client has to read before more can be sent
  bool inputEnded_ = false;
  bool closing_ = false;  // once the output has gone
  bool isEnded_ = false;
  bool watching_ = false;
};

}  // namespace Kest::Agent
