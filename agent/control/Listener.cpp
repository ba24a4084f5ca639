#include "agent/control/Listener.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

namespace Kest::Agent {

namespace {

/// A short backlog: its last client is taken within a few rounds of the loop.
constexpr int backlog = 256;

Text::Descriptor openSpare() {
  return Text::Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

/// @param path short enough
sockaddr_un addressOf(std::string const& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

Text::Descriptor openSocket() {
  return Text::Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

/// @param probe a socket to try it with
bool isListenedTo(std::string const& path, Text::Descriptor const& probe) {
  sockaddr_un const address = addressOf(path);
  int const result =
      connect(probe.fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address);
  return result == 0 || errno != ECONNREFUSED;
}

/// Sets the process's umask as long as it lives. There is only one thread.
class FileMask {
 public:
  explicit FileMask(mode_t mask) noexcept : before_(umask(mask)) {}
  ~FileMask() { umask(before_); }
  FileMask(FileMask const&) = delete;
  FileMask& operator=(FileMask const&) = delete;

 private:
  mode_t before_;
};

}  // namespace

Listener::Listener(std::string path, SocketAccess const& access)
    : path_(std::move(path)), spare_(openSpare()) {
  checkPath();
  lock();
  removeStale();
  bind(access);
}

Listener::~Listener() {
  struct stat file {};
  bool const isOurs =
      lstat(path_.c_str(), &file) == 0 && file.st_dev == device_ && file.st_ino == inode_;
  if (isOurs) unlink(path_.c_str());
}

void Listener::refuse(std::string const& why) const {
  throw ControlSocketError("control socket " + path_ + " " + why);
}

void Listener::refuseErrno(char const* what) const {
  refuse(std::string(what) + ": " + std::strerror(errno));
}

void Listener::checkPath() const {
  constexpr std::size_t longest = sizeof(sockaddr_un::sun_path) - 1;
  if (path_.empty()) refuse("cannot be made: the path is empty");
  if (path_.size() > longest) {
    refuse("cannot be made: the path has more than " + std::to_string(longest) + " bytes");
  }
}

void Listener::lock() {
  constexpr mode_t ownerOnly = 0600;
  std::string const file = path_ + ".lock";
  lock_ =
      Text::Descriptor(open(file.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, ownerOnly));
  if (!lock_.isOpen()) refuseErrno("cannot be locked");
  if (flock(lock_.fd(), LOCK_EX | LOCK_NB) == 0) return;
  if (errno == EWOULDBLOCK) refuse("is in use by another agent");
  refuseErrno("cannot be locked");
}

/// Holds the lock, so that no other agent makes or removes the file meanwhile.
void Listener::removeStale() const {
  struct stat file {};
  if (lstat(path_.c_str(), &file) != 0) return;
  if (!S_ISSOCK(file.st_mode)) refuse("cannot be made: there is a file that is no socket");
  Text::Descriptor const probe = openSocket();
  if (!probe.isOpen()) refuseErrno("cannot be made");
  if (isListenedTo(path_, probe)) refuse("is in use by another agent");
  if (unlink(path_.c_str()) != 0) refuseErrno("cannot be replaced");
}

void Listener::bind(SocketAccess const& access) {
  sockaddr_un const address = addressOf(path_);
  socket_ = openSocket();
  if (!socket_.isOpen()) refuseErrno("cannot be made");
  // The file takes the socket's mode, less the mask.
  FileMask const mask(0);
  bool const isBound =
      fchmod(socket_.fd(), access.mode) == 0 &&
      ::bind(socket_.fd(), reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0;
  if (!isBound) refuseErrno("cannot be made");
  try {
    struct stat file {};
    if (lstat(path_.c_str(), &file) != 0) refuseErrno("cannot be made");
    // Nobody can connect before the socket listens.
    if (!access.group.empty()) groupIs(access.group);
    if (listen(socket_.fd(), backlog) != 0) refuseErrno("cannot be made");
    device_ = file.st_dev;
    inode_ = file.st_ino;
  } catch (ControlSocketError const&) {
    unlink(path_.c_str());
    throw;
  }
}

void Listener::groupIs(std::string const& group) const {
  gid_t number = 0;
  char const* const end = group.data() + group.size();
  auto const read = std::from_chars(group.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) {
    struct group const* const known = getgrnam(group.c_str());
    if (known == nullptr) refuse("cannot be made: there is no group '" + group + "'");
    number = known->gr_gid;
  }
  constexpr auto sameOwner = static_cast<uid_t>(-1);
  if (lchown(path_.c_str(), sameOwner, number) == 0) return;
  refuseErrno(("cannot be given to the group '" + group + "'").c_str());
}

Text::Descriptor Listener::accept(std::string_view refusal) {
  constexpr int mostTurnedAway = 16;
  isStuck_ = false;
  if (!spare_.isOpen()) spare_ = openSpare();  // the last attempt may have failed
  for (int turnedAway = 0; turnedAway < mostTurnedAway;) {
    Text::Descriptor client(accept4(fd(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (client.isOpen()) return client;
    int error = errno;
    bool const isGone = error == ECONNABORTED || error == EINTR;
    if (isGone) continue;
    bool const isOut = error == EMFILE || error == ENFILE;
    if (isOut) error = turnOneAway(refusal);
    isStuck_ = error != 0 && error != EAGAIN;
    if (error != 0) break;
    ++turnedAway;
  }
  return Text::Descriptor();
}

/// Turns a client away, with the spare descriptor.
/// @return 0, or the error that prevented it
int Listener::turnOneAway(std::string_view refusal) {
  spare_ = Text::Descriptor();
  Text::Descriptor client(accept4(fd(), nullptr, nullptr, SOCK_CLOEXEC));
  int const error = client.isOpen() ? 0 : errno;
  if (error == 0) send(client.fd(), refusal.data(), refusal.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  client = Text::Descriptor();
  spare_ = openSpare();
  return error;
}

}  // namespace Kest::Agent
