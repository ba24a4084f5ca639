#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

namespace Test {

/// A pipe whose ends close with it.
class Pipe {
 public:
  Pipe() {
    if (pipe(ends_) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  }
  ~Pipe() {
    close(ends_[0]);
    closeWriter();
  }
  Pipe(Pipe const&) = delete;
  Pipe& operator=(Pipe const&) = delete;

  int reader() const { return ends_[0]; }
  void write() const { EXPECT_EQ(::write(ends_[1], "x", 1), 1); }
  std::size_t read() const {
    char byte;
    ssize_t const length = ::read(ends_[0], &byte, 1);
    EXPECT_GE(length, 0);
    return static_cast<std::size_t>(length);
  }
  void closeWriter() {
    if (ends_[1] >= 0) close(std::exchange(ends_[1], -1));
  }

 private:
  int ends_[2];
};

}  // namespace Test
