#include "driver/sim/FaultFile.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "driver/sim/Devices.h"
#include "driver/sim/Names.h"
#include "platform/mox/RangeException.h"
#include "platform/mox/Strep.h"
#include "text/FileError.h"

namespace Hardware::Kest::Sim {

using Mox::String8;

namespace {

constexpr unsigned lastErrorNumber = 4095;  // the kernel's

[[noreturn]] void throwExpected(String8 const& expected, String8 const& found) {
  Mox::throwRangeException(
      Mox::format("expected %s, found %s", expected.charPtr(), found.charPtr()));
}

/// Reads the pieces of one line, which must outlive it. What it refuses it does not take.
class LineReader {
 public:
  explicit LineReader(String8 const& line) : it_(line.begin()), end_(line.end()) {}

  /// From 0, in bytes.
  std::size_t column() const { return it_.pos(); }

  void skipBlanks() { Mox::needString(it_, end_, " "); }

  bool atEnd() {
    skipBlanks();
    return it_ == end_ || *it_ == '#';
  }

  bool took(std::string_view keyword) {
    if (word() != keyword) return false;
    it_ = wordEnd();
    return true;
  }

  String8 name(char const* what = "a name in apostrophes") {
    if (atEnd() || *it_ != '\'') refuse(what);
    String8::IteratorConst const start = it_;
    String8 name = Mox::sequenceToValue(it_, end_, static_cast<String8*>(nullptr));
    if (name.bytes() <= longestName) return name;
    it_ = start;
    throwExpected(Mox::format("a name of at most %zu bytes", longestName), "a longer one");
  }

  unsigned number(char const* what, unsigned most = std::numeric_limits<unsigned>::max()) {
    skipBlanks();
    String8::IteratorConst const start = it_;
    unsigned const value = Mox::sequenceToValue(it_, end_, static_cast<unsigned*>(nullptr));
    if (value >= 1 && value <= most) return value;
    it_ = start;
    throwExpected(Mox::format("%s from 1 to %u", what, most), Mox::format("%u", value));
  }

  Operation operation() {
    std::optional<Operation> const operation = operationNamed(word());
    if (!operation) refuse("the name of a driver operation");
    it_ = wordEnd();
    return *operation;
  }

  Operation operationWithResult() {
    std::optional<Operation> const named = operationNamed(word());
    if (named && !hasResult(*named)) refuse("a driver operation that has a result");
    return operation();
  }

  [[noreturn]] void refuse(char const* expected) {
    throwExpected(expected, atEnd() ? "the end of the line" : Mox::valueToStrep(String8(word())));
  }

 private:
  /// The next blank, or the end.
  String8::IteratorConst wordEnd() {
    skipBlanks();
    String8::IteratorConst at = it_;
    while (!(at == end_) && *at != ' ' && *at != '\t' && *at != '\r') ++at;
    return at;
  }
  std::string word() {
    std::string chars;
    String8::IteratorConst const end = wordEnd();
    for (String8::IteratorConst at = it_; !(at == end); ++at) chars += *at;
    return chars;
  }

  String8::IteratorConst it_;
  String8::IteratorConst end_;
};

CallPattern readPattern(LineReader& line, Operation operation) {
  if (line.took("*")) return {operation, std::nullopt};
  return {operation, line.name("a name in apostrophes or *")};
}

Fault readFault(LineReader& line) {
  CallPattern const calls = readPattern(line, line.operationWithResult());
  int const answer = static_cast<int>(line.number("an error number", lastErrorNumber));
  if (line.took("always")) return {calls, answer, std::nullopt};
  if (!line.took("times")) line.refuse("times or always");
  return {calls, answer, line.number("a count")};
}

void readFlip(LineReader& line, Devices const& devices, Faults& faults) {
  line.skipBlanks();
  LineReader const start = line;
  String8 const devName = line.name();
  if (line.took("after")) {
    unsigned const after = line.number("a count");
    faults.table.add(Flip{devName, after, readPattern(line, line.operation())});
    return;
  }
  if (!line.atEnd()) line.refuse("after or the end of the line");
  if (devices.named(devName) == nullptr) {
    line = start;
    throwExpected("the name of a device that there is", Mox::valueToStrep(devName));
  }
  faults.flips.push_back(devName);
}

void readStatement(LineReader& line, Devices const& devices, Faults& faults) {
  if (line.atEnd()) return;
  if (line.took("fail")) {
    faults.table.add(readFault(line));
  } else if (line.took("flip")) {
    readFlip(line, devices, faults);
  } else {
    line.refuse("fail or flip");
  }
  if (!line.atEnd()) line.refuse("the end of the line");
}

}  // namespace

Faults readFaults(std::string_view text, std::string const& source, Devices const& devices) {
  Faults faults;
  for (unsigned number = 1; !text.empty(); ++number) {
    String8 const line(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(text.size(), line.bytes() + 1));
    LineReader reader(line);
    try {
      readStatement(reader, devices, faults);
    } catch (Mox::RangeException const& exception) {
      Text::Place const place(number, reader.column(), line.view());
      Mox::throwRangeException(String8(place.headline(source, exception.text().view())));
    }
  }
  return faults;
}

}  // namespace Hardware::Kest::Sim
