#include "platform/mox/Log.h"

#include <syslog.h>
#include <unistd.h>

#include <iostream>
#include <string>

namespace Mox {

namespace {

/// The system's log collector, and standard error when somebody watches it.
void logToSystem(LogHandle const& message, String8 const& text) {
  syslog(static_cast<int>(message.severity()), "%s", text.charPtr());
  if (isatty(STDERR_FILENO) == 1) std::cerr << std::string(text.view()) + '\n';
}

LogSink sink = logToSystem;

}  // namespace

LogHandle::LogHandle(char const* name, unsigned severity, char const* format,
                     char const* explanation, char const* recommendedAction, double first,
                     double second, int flag)
    : name_(name),
      severity_(severity),
      format_(format),
      explanation_(explanation),
      recommendedAction_(recommendedAction),
      first_(first),
      second_(second),
      flag_(flag) {}

void logSinkIs(LogSink newSink) {
  sink = newSink != nullptr ? newSink : logToSystem;
}

void detail::logArguments(LogHandle const& message,
                          std::vector<std::string_view> const& arguments) {
  std::string text(message.name().view());
  text += ": ";
  std::string_view rest = message.format().view();
  for (std::string_view const argument : arguments) {
    std::size_t const place = rest.find("%s");
    text.append(rest.substr(0, place));
    if (place == std::string_view::npos) {
      rest = {};
      text += ' ';  // nothing that was logged is lost
    } else {
      rest.remove_prefix(place + 2);
    }
    text.append(argument);
  }
  text.append(rest);
  sink(message, String8(text));
}

}  // namespace Mox
