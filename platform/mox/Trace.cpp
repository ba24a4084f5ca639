#include "platform/mox/Trace.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "platform/mox/RangeException.h"

namespace Mox {

namespace {

constexpr unsigned levelCount = 10;
constexpr std::uint16_t allLevels = (1U << levelCount) - 1;

struct Rule {
  std::string facility;  // or its beginning
  bool isPrefix;
  std::uint16_t levels;

  bool replaces(Rule const& other) const {
    return facility == other.facility && isPrefix == other.isPrefix;
  }
  bool names(String8 const& other) const {
    return isPrefix ? other.view().starts_with(facility) : other == facility;
  }
};

std::string levelsText(std::uint16_t levels) {
  if (levels == allLevels) return "*";
  std::string text;
  for (unsigned level = 0; level < levelCount; ++level) {
    if ((levels >> level & 1U) != 0) text += std::to_string(level);
  }
  return text;
}

/// Reads a setting; keeps its place for messages.
class SettingReader {
 public:
  explicit SettingReader(std::string_view setting) : setting_(setting) {}

  std::vector<Rule> rules() {
    std::vector<Rule> all;
    while (at_ < setting_.size()) {
      all.push_back(rule());
      if (at_ == setting_.size()) break;
      ++at_;  // the comma
      if (at_ == setting_.size()) refuse("a facility");
    }
    return all;
  }

 private:
  Rule rule() {
    std::size_t const slash = setting_.find_first_of("/,", at_);
    std::string_view name = setting_.substr(at_, slash - at_);
    if (name.empty()) refuse("a facility");
    at_ += name.size();
    if (at_ == setting_.size() || setting_[at_] != '/') refuse("'/' and levels");
    ++at_;
    bool const isPrefix = name.back() == '*';
    if (isPrefix) name.remove_suffix(1);
    return {std::string(name), isPrefix, levels()};
  }

  std::uint16_t levels() {
    if (at_ < setting_.size() && setting_[at_] == '*') {
      ++at_;
      if (!atItemEnd()) refuse("',' or the end");
      return allLevels;
    }
    std::uint16_t all = 0;
    while (!atItemEnd()) {
      unsigned const first = digit();
      unsigned last = first;
      if (at_ < setting_.size() && setting_[at_] == '-') {
        ++at_;
        last = digit(first);
      }
      for (unsigned level = first; level <= last; ++level) {
        all = static_cast<std::uint16_t>(all | 1U << level);
      }
    }
    return all;
  }

  bool atItemEnd() const { return at_ == setting_.size() || setting_[at_] == ','; }

  unsigned digit(unsigned least = 0) {
    bool const any = at_ < setting_.size() && setting_[at_] >= '0' && setting_[at_] <= '9';
    auto const level = any ? static_cast<unsigned>(setting_[at_] - '0') : 0;
    if (!any || level < least) refuse(format("a level, %u to 9", least).charPtr());
    ++at_;
    return level;
  }

  [[noreturn]] void refuse(char const* expected) const {
    std::string const found =
        at_ < setting_.size() ? std::string("'") + setting_[at_] + "'" : std::string("the end");
    throwRangeException(format("trace setting '%s': expected %s at column %zu, found %s",
                               std::string(setting_).c_str(), expected, at_, found.c_str()));
  }

  std::string_view setting_;
  std::size_t at_ = 0;
};

/// The facilities and what has been said of their levels, in order.
struct Facilities {
  std::vector<TraceHandle*> handles;
  std::vector<Rule> rules;

  Facilities() {
    char const* const setting = std::getenv("MOX_TRACE");
    if (setting == nullptr) return;
    try {
      rules = SettingReader(setting).rules();
    } catch (RangeException const& refused) {
      std::cerr << "MOX_TRACE is not used: " << refused.text() << '\n';
    }
  }
};

/// Made at the first use, so that handles may be made by static initialisers.
Facilities& facilities() {
  static Facilities all;
  return all;
}

std::ostream* traceStream = nullptr;

}  // namespace

std::ostream* detail::traceCoverageStream = nullptr;

TraceHandle::TraceHandle(String8 facility) : facility_(std::move(facility)) {
  for (Rule const& rule : facilities().rules) {
    if (rule.names(facility_)) levels_ = rule.levels;
  }
  facilities().handles.push_back(this);
}

TraceHandle::~TraceHandle() {
  std::erase(facilities().handles, this);
}

void traceSettingIs(std::string_view setting) {
  auto& [handles, rules] = facilities();
  for (Rule const& rule : SettingReader(setting).rules()) {
    for (TraceHandle* handle : handles) {
      if (rule.names(handle->facility_)) handle->levels_ = rule.levels;
    }
    std::erase_if(rules, [&](Rule const& older) { return rule.replaces(older); });
    rules.push_back(rule);
  }
}

String8 traceSetting() {
  std::string text;
  for (Rule const& rule : facilities().rules) {
    text.append(text.empty() ? "" : ",").append(rule.facility).append(rule.isPrefix ? "*/" : "/");
    text += levelsText(rule.levels);
  }
  return String8(text);
}

void traceStreamIs(std::ostream* stream) {
  traceStream = stream;
}

void traceCoverageStreamIs(std::ostream* stream) {
  detail::traceCoverageStream = stream;
}

void traceHelper(TraceHandle const& handle, String8 const& message, unsigned level,
                 char const* source, unsigned line, char const* function) {
  std::string const text =
      format("%s %u %s:%u %s ", handle.facility().charPtr(), level, source, line, function)
          .charPtr() +
      std::string(message.view()) + '\n';
  if (handle.enabled(level)) {
    (traceStream != nullptr ? *traceStream : std::cerr) << text << std::flush;
  }
  if (std::ostream* const coverage = traceCoverageStream()) *coverage << text << std::flush;
}

}  // namespace Mox
