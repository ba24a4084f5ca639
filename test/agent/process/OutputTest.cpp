#include "agent/process/Output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <ostream>
#include <utility>

#include "test/agent/support/ScratchDirectory.h"

namespace Kest::Agent {
namespace {

using std::chrono::milliseconds;

/// Both ends of something that is read from and written to.
class Ends {
 public:
  explicit Ends(std::array<int, 2> ends) : ends_(ends) {}
  Ends(Ends const&) = delete;
  Ends& operator=(Ends const&) = delete;
  ~Ends() {
    readerIsGone();
    close(ends_[1]);
  }

  int writer() const { return ends_[1]; }
  void readerIsGone() {
    if (ends_[0] >= 0) close(std::exchange(ends_[0], -1));
  }
  /// All that can be read now.
  std::string text() const {
    std::string all;
    std::array<char, 65536> block{};
    ssize_t bytes;
    while ((bytes = read(ends_[0], block.data(), block.size())) > 0) {
      all.append(block.data(), static_cast<std::size_t>(bytes));
    }
    return all;
  }

 private:
  std::array<int, 2> ends_;
};

/// The reader's end alone does not block.
std::array<int, 2> pipeEnds() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("pipe2");
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return ends;
}

std::array<int, 2> socketEnds() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw std::runtime_error("socketpair");
  }
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return ends;
}

/// A line of 100 bytes.
std::string line(unsigned number) {
  std::string const digits = std::to_string(number);
  return std::string(99 - digits.size(), '.') + digits + "\n";
}

std::string lines(unsigned from, unsigned to) {
  std::string all;
  for (unsigned number = from; number <= to; ++number) all += line(number);
  return all;
}

/// A stream that leads to a pipe or a socket, and keeps so many bytes that are not taken.
struct Way {
  explicit Way(std::array<int, 2> const& both = pipeEnds(), std::size_t bytes = 1000,
               milliseconds patience = milliseconds(0))
      : ends(both), output(ends.writer(), {bytes, patience}) {}

  std::string text() const { return ends.text(); }

  Ends ends;
  Output output;
  std::ostream out{&output};
};

class OutputTest : public ScratchDirectory {
 protected:
  OutputTest() { std::signal(SIGPIPE, SIG_IGN); }
  ~OutputTest() override { std::signal(SIGPIPE, SIG_DFL); }

  static constexpr unsigned plenty = 10000;  // lines, more than the system keeps

  static unsigned linesIn(std::string const& text) {
    return static_cast<unsigned>(std::count(text.begin(), text.end(), '\n'));
  }

  /// How many lines an empty pipe keeps; it is empty again.
  static unsigned capacityOf(Way& pipe) {
    writeLines(pipe.out, 1, plenty);
    unsigned const taken = linesIn(pipe.text());
    pipe.out.flush();
    pipe.text();
    return taken;
  }

  static void writeLines(std::ostream& out, unsigned from, unsigned to) {
    for (unsigned number = from; number <= to; ++number) out << line(number) << std::flush;
  }
};

TEST_F(OutputTest, WritesWhatIsFlushedAtOnce) {
  Way pipe;
  pipe.out << "one " << 1;
  EXPECT_EQ(pipe.text(), "");
  pipe.out << '\n' << std::flush;
  EXPECT_EQ(pipe.text(), "one 1\n");
}

TEST_F(OutputTest, KeepsWhatIsNotTakenInOrderAndSaysHowMuchIsLost) {
  for (auto const& ends : {pipeEnds(), socketEnds()}) {
    Way way(ends);
    writeLines(way.out, 1, plenty);
    std::string const first = way.text();
    unsigned const taken = linesIn(first);
    EXPECT_EQ(first, lines(1, taken));
    way.out << "later\n" << std::flush;
    EXPECT_EQ(way.text(), lines(taken + 1, taken + 10) + std::to_string(plenty - taken - 10) +
                              " lines lost: could not be written in time\nlater\n");
    EXPECT_TRUE(way.out.good());
  }
}

TEST_F(OutputTest, SaysThatALineIsLostWhenTheReaderHasCaughtUp) {
  Way pipe(pipeEnds(), 150);
  unsigned const taken = capacityOf(pipe);
  writeLines(pipe.out, 1, taken + 2);
  EXPECT_EQ(pipe.text(), lines(1, taken));
  pipe.out << "ports [....]" << std::flush;  // not a line
  EXPECT_EQ(pipe.text(),
            line(taken + 1) + "1 line lost: could not be written in time\nports [....]");
}

TEST_F(OutputTest, IsWrittenByTheLoopOnceThereIsRoom) {
  ActivityLoop loop(nullptr);
  Way pipe;
  pipe.output.loopIs(&loop);
  unsigned const taken = capacityOf(pipe);
  writeLines(pipe.out, 1, taken + 12);
  EXPECT_EQ(pipe.text(), lines(1, taken));
  loop.runOnce(0);
  EXPECT_EQ(pipe.text(),
            lines(taken + 1, taken + 10) + "2 lines lost: could not be written in time\n");
  writeLines(pipe.out, 1, taken + 1);
  EXPECT_EQ(pipe.text(), lines(1, taken));
  pipe.output.loopIs(nullptr);
  loop.runOnce(0);
  EXPECT_EQ(pipe.text(), "");
}

TEST_F(OutputTest, LosesWhatNobodyCanReadAnyMoreAndGoesOn) {
  for (auto const& ends : {pipeEnds(), socketEnds()}) {
    ActivityLoop loop(nullptr);
    Way way(ends);
    way.output.loopIs(&loop);
    writeLines(way.out, 1, plenty);
    way.ends.readerIsGone();
    loop.runOnce(0);
    writeLines(way.out, 1, 10);
    EXPECT_TRUE(way.out.good());
    auto const start = std::chrono::steady_clock::now();
    way.output.drain(start + std::chrono::hours(1));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::minutes(1));
  }
}

TEST_F(OutputTest, CountsWhatADeviceRefusesUntilItTakesIt) {
  int const full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  Output output(full, {1000, milliseconds(0)});
  std::ostream out(&output);
  writeLines(out, 1, 3);
  out << "two\nlines\n" << std::flush;
  Ends const pipe(pipeEnds());
  ASSERT_EQ(dup2(pipe.writer(), full), full);
  out << "end\n" << std::flush;
  EXPECT_EQ(pipe.text(), "5 lines lost: could not be written in time\nend\n");
  close(full);
}

TEST_F(OutputTest, AppendsToAFile) {
  std::string const path = directory + "/file";
  fileIs("file", "before\n");
  int const file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  Output output(file);
  std::ostream out(&output);
  std::string const much(1 << 20, 'x');
  out << much.substr(0, 200000) << std::flush << "end\n" << std::flush;
  close(file);
  std::ifstream in(path);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}),
            "before\n" + much.substr(0, 200000) + "end\n");
}

TEST_F(OutputTest, WaitsOnceForAReaderWhoIsLate) {
  milliseconds const patience(20);
  Way pipe(pipeEnds(), 1000, patience);
  auto const start = std::chrono::steady_clock::now();
  writeLines(pipe.out, 1, plenty);
  EXPECT_GE(std::chrono::steady_clock::now() - start, patience);
  EXPECT_LT(std::chrono::steady_clock::now() - start, plenty / 10 * patience);
}

TEST_F(OutputTest, IsForgottenByAProcessThatItIsNotOf) {
  Way pipe(pipeEnds(), 100);
  unsigned const taken = capacityOf(pipe);
  writeLines(pipe.out, 1, taken + 2);
  EXPECT_EQ(pipe.text(), lines(1, taken));
  pipe.output.forget();
  pipe.out << "mine\n" << std::flush;
  EXPECT_EQ(pipe.text(), "mine\n");
}

}  // namespace
}  // namespace Kest::Agent
