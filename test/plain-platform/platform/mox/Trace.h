#pragma once

#include <iosfwd>
#include <set>
#include <string>
#include <string_view>

#include "platform/mox/String8.h"

namespace Mox {

class TraceHandle {
 public:
  explicit TraceHandle(String8 facility);
  ~TraceHandle();
  TraceHandle(TraceHandle const&) = delete;
  TraceHandle& operator=(TraceHandle const&) = delete;

  String8 const& facility() const { return facility_; }
  bool enabled(unsigned level) const { return levels_.count(level) > 0; }

 private:
  friend void traceSettingIs(std::string_view setting);
  void take(std::string const& item);  // FACILITY/LEVELS

  String8 facility_;
  std::set<unsigned> levels_;
};

void traceSettingIs(std::string_view setting);
void traceStreamIs(std::ostream* stream);
std::ostream* traceCoverageStream();
void traceCoverageStreamIs(std::ostream* stream);
bool traceWanted(TraceHandle const& handle, unsigned level);
void traceHelper(TraceHandle const& handle, String8 const& message, unsigned level,
                 char const* source, unsigned line, char const* function);

}  // namespace Mox
