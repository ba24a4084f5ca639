#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "bench/Workload.h"

/// Other libraries' text forms of a record: how they print and read it.
namespace Kest::Bench {

/// {fmt} with a compiled format: the library's own text form. It does not look for characters that
/// would have to be escaped.
std::string fmtPrinted(Port const& port);

/// The record as JSON.
std::string jsonOf(Port const& port);

/// simdjson on demand, with one parser for all texts.
class SimdJsonReader {
 public:
  SimdJsonReader();
  SimdJsonReader(SimdJsonReader const&) = delete;
  SimdJsonReader& operator=(SimdJsonReader const&) = delete;
  ~SimdJsonReader();

  /// `json` must have `padding` bytes after it that may be read.
  Port read(std::string_view json);
  static std::size_t padding();

 private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
};

}  // namespace Kest::Bench
