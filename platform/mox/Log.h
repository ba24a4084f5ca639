#pragma once

#include <string_view>
#include <vector>

#include "platform/mox/String8.h"

namespace Mox {

/// The standard recommended action of a message that asks nothing of the operator.
inline constexpr char NoActionRequired[] = "No action is required.";

/// Definition of one log message. Made once, at load time.
class MOX_API LogHandle {
 public:
  /// @param severity as in syslog: 0 emergency to 7 debug
  /// @param format text with one `%s` for each argument of the log call
  /// @param first, second, flag passed through to the log collector unchanged
  LogHandle(char const* name, unsigned severity, char const* format, char const* explanation,
            char const* recommendedAction, double first, double second, int flag);

  String8 const& name() const noexcept { return name_; }
  unsigned severity() const noexcept { return severity_; }
  String8 const& format() const noexcept { return format_; }
  String8 const& explanation() const noexcept { return explanation_; }
  String8 const& recommendedAction() const noexcept { return recommendedAction_; }
  double first() const noexcept { return first_; }
  double second() const noexcept { return second_; }
  int flag() const noexcept { return flag_; }

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

/// Receives each log message as it is emitted.
using LogSink = void (*)(LogHandle const& message, String8 const& text);

/// Null brings back the default: the system log, and standard error when that is a terminal.
MOX_API void logSinkIs(LogSink sink);

namespace detail {

inline std::string_view logArgument(String8 const& argument) {
  return argument.view();
}
inline std::string_view logArgument(char const* argument) {
  return argument;
}

MOX_API void logArguments(LogHandle const& message, std::vector<std::string_view> const& arguments);

}  // namespace detail

/// The typed log call: emits "NAME: " and the format with its `%s` replaced by the arguments, in
/// order. Arguments are strings. A `%s` without an argument stays as it is; arguments without a
/// `%s` follow the format, a blank before each.
template <class... Arguments>
void log(LogHandle const& message, Arguments const&... arguments) {
  detail::logArguments(message, {detail::logArgument(arguments)...});
}

}  // namespace Mox
