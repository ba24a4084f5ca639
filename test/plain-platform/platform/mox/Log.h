#pragma once

#include <string>
#include <vector>

#include "platform/mox/String8.h"

namespace Mox {

inline constexpr char NoActionRequired[] = "No action is required.";

class LogHandle {
 public:
  LogHandle(char const* name, unsigned severity, char const* format, char const* explanation,
            char const* recommendedAction, double first, double second, int flag)
      : name_(name),
        severity_(severity),
        format_(format),
        explanation_(explanation),
        recommendedAction_(recommendedAction),
        first_(first),
        second_(second),
        flag_(flag) {}

  String8 const& name() const { return name_; }
  unsigned severity() const { return severity_; }
  String8 const& format() const { return format_; }
  String8 const& explanation() const { return explanation_; }
  String8 const& recommendedAction() const { return recommendedAction_; }
  double first() const { return first_; }
  double second() const { return second_; }
  int flag() const { return flag_; }

 private:
  String8 name_;
  unsigned severity_;
  String8 format_;
  String8 explanation_;
  String8 recommendedAction_;
  double first_;
  double second_;
  int flag_;
};

using LogSink = void (*)(LogHandle const& message, String8 const& text);
void logSinkIs(LogSink sink);

namespace detail {
void logArguments(LogHandle const& message, std::vector<String8> const& arguments);
}

template <class... Arguments>
void log(LogHandle const& message, Arguments const&... arguments) {
  detail::logArguments(message, {String8(arguments)...});
}

}  // namespace Mox
