#pragma once

#include <sstream>

#include "test/support/Journal.h"

namespace Support {

/// Stream buffer that writes what is flushed to a journal, after "trace ".
class TraceJournal : public std::stringbuf {
 public:
  explicit TraceJournal(Journal& journal) : journal_(journal) {}

 protected:
  int sync() override {
    std::string line = str();
    str("");
    if (line.empty()) return 0;
    line.pop_back();  // the line's end
    journal_.add("trace " + line);
    return 0;
  }

 private:
  Journal& journal_;
};

}  // namespace Support
