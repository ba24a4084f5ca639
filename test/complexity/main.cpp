#include <cstdio>
#include <iostream>
#include <string_view>
#include <utility>

#include "test/complexity/Texts.h"

// Lists the readers and their cases; or, under callgrind, reads: a line "CASE BYTES" of the
// standard input, CASE its number in the list, is answered with the bytes that were read, once
// callgrind has written what it counted. See complexity.py, which runs this.

namespace Kest::Complexity {
namespace {

std::vector<Reader> allReaders() {
  std::vector<Reader> all;
  for (auto const readers : {requestReaders, sliceReaders, simFileReaders, valueReaders,
                             replyReaders, keyReaders, plantedReaders}) {
    for (Reader& reader : readers()) all.push_back(std::move(reader));
  }
  return all;
}

void list() {
  for (Reader const& reader : allReaders()) {
    for (Case const& one : reader.cases) {
      std::printf("%s\t%s\n", reader.name.c_str(), one.name.c_str());
    }
  }
}

/// Reads a text of about so many bytes; returns how many they are.
std::size_t count(Reader const& reader, Case const& one, std::size_t bytes) {
  std::string const text = one.text(bytes);
  reader.read(one.text(100));  // work of the first use alone does not count
  CALLGRIND_ZERO_STATS;
  reader.read(text);
  CALLGRIND_DUMP_STATS;
  return text.size();
}

void serve() {
  std::vector<std::pair<Reader, Case>> cases;
  for (Reader const& reader : allReaders()) {
    for (Case const& one : reader.cases) cases.emplace_back(reader, one);
  }
  prepareKeys();
  CALLGRIND_START_INSTRUMENTATION;
  std::size_t number = 0, bytes = 0;
  while (std::cin >> number >> bytes) {
    auto const& [reader, one] = cases.at(number);
    std::cout << count(reader, one, bytes) << std::endl;
  }
}

}  // namespace
}  // namespace Kest::Complexity

int main(int argc, char** argv) {
  using namespace Kest::Complexity;
  bool const isListing = argc == 2 && std::string_view(argv[1]) == "--list";
  if (argc != 1 && !isListing) {
    std::fprintf(stderr, "usage: %s [--list]\n", argv[0]);
    return 2;
  }
  isListing ? list() : serve();
  return 0;
}
