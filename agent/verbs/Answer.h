#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <variant>

#include "agent/access/JsonText.h"

namespace Kest::Agent {

class LongResult;
class Upload;

/// Takes a result that comes after `Verbs::carryOut` has returned.
using Later = std::function<void(Json result)>;

/// A result as JSON text on one line.
struct ResultText {
  std::string json;
};

/// The answer to a request: nothing yet (the result comes through `Later`), the result, a result
/// that takes long, or a taker of the bytes that follow the request.
using Answer = std::variant<std::monostate, Json, ResultText, std::unique_ptr<LongResult>,
                            std::unique_ptr<Upload>>;

/// A result that takes long to find or to write. It is written in pieces as the client reads them,
/// so that no reply holds up the activity or is ever in memory as a whole.
class LongResult {
 public:
  enum class Progress {
    more,   // there is more to do
    later,  // the result comes through `Later`; no text has been appended
    done,   // the text is whole
  };

  virtual ~LongResult() = default;

  /// About how many bytes of memory it holds: they count as the client's.
  virtual std::size_t held() const { return std::size_t{16} << 10; }

  /// Goes on for a millisecond at most. Appends the next piece of the result's JSON text, or
  /// nothing while the result is still being found.
  /// @throw std::exception what the request is refused with, before any text has been appended;
  /// after that nothing but `std::bad_alloc`, which costs the client its connection
  virtual Progress goOn(std::string& text) = 0;
};

/// Takes the bytes that follow a request, as they come, so that they are never in memory as a
/// whole.
class Upload {
 public:
  virtual ~Upload() = default;

  /// About how many bytes of memory it holds: they count as the client's.
  virtual std::size_t held() const { return std::size_t{16} << 10; }

  /// The next bytes, cut anywhere; some ten KiB at a time.
  /// @throw std::exception what the request is refused with; the rest of the bytes is skipped
  virtual void take(std::string_view bytes) = 0;
  /// After the last byte. The answer is never another upload.
  /// @throw std::exception what the request is refused with
  virtual Answer end() = 0;
};

}  // namespace Kest::Agent
