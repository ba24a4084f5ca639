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
/// The same into a buffer that is used again and again; returns what is in it.
std::string_view fmtPrintedInPlace(Port const& port);

/// The record as JSON, as RapidJSON and simdjson read it.
std::string jsonOf(Port const& port);
/// Reads "00:1c:73:0a:0b:0c"; `std::invalid_argument` otherwise.
std::array<std::uint8_t, 6> macAddrOf(std::string_view text);

/// RapidJSON: a document in a buffer that is used again and again, then the record from it.
Port rapidJsonRead(std::string const& json);

/// simdjson on demand, with one parser for all texts.
class SimdJsonReader {
 public:
  SimdJsonReader();
  SimdJsonReader(SimdJsonReader const&) = delete;
  SimdJsonReader& operator=(SimdJsonReader const&) = delete;
  ~SimdJsonReader();

  /// `json` must have `padding` bytes behind it that may be read.
  Port read(std::string_view json);
  static std::size_t padding();

 private:
  struct Parser;
  std::unique_ptr<Parser> parser_;
};

}  // namespace Kest::Bench
