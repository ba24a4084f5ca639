#include "platform/mox/Log.h"

#include <iostream>

namespace Mox {

namespace {

LogSink sink = nullptr;

}  // namespace

void logSinkIs(LogSink newSink) {
  sink = newSink;
}

void detail::logArguments(LogHandle const& message, std::vector<String8> const& arguments) {
  std::string text(message.format().view());
  for (String8 const& argument : arguments) text.replace(text.find("%s"), 2, argument.charPtr());
  text = message.name().charPtr() + (": " + text);
  if (sink != nullptr) {
    sink(message, String8(text));
  } else {
    std::cerr << text << '\n';
  }
}

}  // namespace Mox
