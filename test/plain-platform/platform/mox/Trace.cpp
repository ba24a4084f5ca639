#include "platform/mox/Trace.h"

#include <cstdlib>
#include <iostream>
#include <list>
#include <sstream>
#include <string>
#include <vector>

#include "platform/mox/RangeException.h"

namespace Mox {

namespace {

std::list<TraceHandle*>& handles() {
  static std::list<TraceHandle*> all;
  return all;
}

/// Items FACILITY/LEVELS as they were set, later ones last.
std::vector<std::string>& settings() {
  static std::vector<std::string> all;
  return all;
}

bool names(std::string const& pattern, String8 const& facility) {
  if (!pattern.ends_with('*')) return facility == pattern.c_str();
  return facility.view().starts_with(pattern.substr(0, pattern.size() - 1));
}

std::set<unsigned> levelsOf(std::string const& text) {
  std::set<unsigned> levels;
  for (std::size_t at = 0; at < text.size(); ++at) {
    bool const isRange = text[at] == '*' || text.substr(at + 1, 1) == "-";
    char const first = text[at] == '*' ? '0' : text[at];
    char const last = text[at] == '*' ? '9' : isRange ? text.at(at += 2) : first;
    if (first < '0' || last > '9') throwRangeException("no trace levels");
    for (char level = first; level <= last; ++level) {
      levels.insert(static_cast<unsigned>(level - '0'));
    }
  }
  return levels;
}

std::ostream* stream = nullptr;
std::ostream* coverage = nullptr;

}  // namespace

TraceHandle::TraceHandle(String8 facility) : facility_(std::move(facility)) {
  for (std::string const& item : settings()) take(item);
  handles().push_back(this);
}

TraceHandle::~TraceHandle() {
  handles().remove(this);
}

void TraceHandle::take(std::string const& item) {
  std::size_t const slash = item.find('/');
  if (slash == std::string::npos) throwRangeException("no trace setting");
  if (names(item.substr(0, slash), facility_)) levels_ = levelsOf(item.substr(slash + 1));
}

void traceSettingIs(std::string_view setting) {
  std::istringstream items{std::string(setting)};
  for (std::string item; std::getline(items, item, ',');) {
    for (TraceHandle* handle : handles()) handle->take(item);
    settings().push_back(item);
  }
}

void traceStreamIs(std::ostream* newStream) {
  stream = newStream;
}

std::ostream* traceCoverageStream() {
  return coverage;
}

void traceCoverageStreamIs(std::ostream* newStream) {
  coverage = newStream;
}

bool traceWanted(TraceHandle const& handle, unsigned level) {
  return handle.enabled(level) || coverage != nullptr;
}

void traceHelper(TraceHandle const& handle, String8 const& message, unsigned level,
                 char const* source, unsigned line, char const* function) {
  std::ostringstream text;
  text << handle.facility() << ' ' << level << ' ' << source << ':' << line << ' ' << function
       << ' ' << message << '\n';
  if (handle.enabled(level)) (stream != nullptr ? *stream : std::cerr) << text.str() << std::flush;
  if (coverage != nullptr) *coverage << text.str() << std::flush;
}

}  // namespace Mox
