#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

#include "platform/mox/String8.h"

namespace Mox {

/// A trace facility: a name under which trace points are switched by level, 0 to 9.
///
/// Levels come from `traceSettingIs`, at first from the environment variable `MOX_TRACE`. A setting
/// is a comma-separated list of FACILITY/LEVELS; a later item overrides an earlier one for the
/// facilities that it names. FACILITY may end in `*` to name every facility that starts so. LEVELS
/// is `*` for all, nothing for none, or digits and rising ranges of them: `KestSliceDma/0-28`
/// switches on 0, 1, 2 and 8. A malformed `MOX_TRACE` is reported on standard error and not used.
///
/// A handle stays registered, by address, until it is destroyed.
class MOX_API TraceHandle {
 public:
  explicit TraceHandle(String8 facility);
  ~TraceHandle();
  TraceHandle(TraceHandle const&) = delete;
  TraceHandle& operator=(TraceHandle const&) = delete;

  String8 const& facility() const noexcept { return facility_; }
  bool enabled(unsigned level) const noexcept { return (levels_ >> level & 1U) != 0; }

 private:
  friend MOX_API void traceSettingIs(std::string_view setting);

  String8 facility_;
  std::uint16_t levels_ = 0;  // bit n: level n is on
};

/// Changes the levels of every facility, present and future, as `setting` says (see `TraceHandle`).
/// `RangeException` for a malformed setting, which then changes nothing.
MOX_API void traceSettingIs(std::string_view setting);
/// What has been set so far, as a setting.
MOX_API String8 traceSetting();

/// Where enabled trace points write; not owned. Null: standard error, the default.
MOX_API void traceStreamIs(std::ostream* stream);

namespace detail {
MOX_API extern std::ostream* traceCoverageStream;  // here, so that asking for it calls nobody
}

/// Where every trace point reached writes, whatever its level; not owned. Null, the default: none.
inline std::ostream* traceCoverageStream() {
  return detail::traceCoverageStream;
}
MOX_API void traceCoverageStreamIs(std::ostream* stream);

/// Whether a trace point of that level has anyone to write to: ask before building its message.
inline bool traceWanted(TraceHandle const& handle, unsigned level) {
  return handle.enabled(level) || traceCoverageStream() != nullptr;
}

/// Writes one line, "FACILITY LEVEL SOURCE:LINE FUNCTION MESSAGE", to the trace stream if the level
/// is enabled and to the coverage stream if there is one.
MOX_API void traceHelper(TraceHandle const& handle, String8 const& message, unsigned level,
                         char const* source, unsigned line, char const* function);

}  // namespace Mox
