#pragma once

#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace Fuzz {

/// A new directory for the socket, gone with it.
class SocketFolder {
 public:
  SocketFolder() {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp " + path_);
  }
  SocketFolder(SocketFolder const&) = delete;
  SocketFolder& operator=(SocketFolder const&) = delete;
  ~SocketFolder() {
    unlink((socket() + ".lock").c_str());
    rmdir(path_.c_str());
  }
  std::string socket() const { return path_ + "/s"; }

 private:
  static std::string temporary() {
    char const* const path = std::getenv("TMPDIR");
    return path == nullptr ? "/tmp" : path;
  }
  std::string path_ = temporary() + "/kest-fuzz-XXXXXX";
};

}  // namespace Fuzz
