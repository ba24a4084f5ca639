#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "agent/wire/Protocol.h"
#include "ctl/Client.h"
#include "ctl/CommandLine.h"
#include "ctl/Complete.h"
#include "ctl/Files.h"
#include "ctl/Present.h"
#include "text/Escapes.h"

namespace {

using namespace Kest::Ctl;

bool isColourful() {
  auto const variable = [](char const* name) {
    char const* const value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  return isatty(STDOUT_FILENO) == 1 && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

std::string document(Json const& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// JSON on one line, for programs that read line by line.
std::string line(Json const& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string socketOf(Options const& options) {
  if (options.socket) return *options.socket;
  if (auto const path = Kest::Wire::defaultSocketPath()) return *path;
  throw Failure(Exit::noAgent, "no-agent",
                "no socket is known: name one with --socket or in KEST_SLICE_AGENT_SOCKET");
}

/// Shows events until there have been enough, or until nobody reads them any more.
void showEvents(Client& client, Options const& options) {
  for (std::size_t shownSoFar = 0; options.count == 0 || shownSoFar < options.count; ++shownSoFar) {
    Json const event = client.event();
    if (!print(options.json ? line(event) : eventLine(event))) return;
  }
}

Exit carryOut(Command const& command) {
  Verb const& verb = *command.verb;
  Options const& options = command.options;
  Json request{{"verb", verb.name}};
  request.update(verb.request(options));
  std::string const file = verb.file == nullptr ? "" : verb.file(options, request);
  Client::Deadline const deadline = Client::after(options.timeout.value_or(verb.timeout));
  Client client(socketOf(options), deadline);
  Json const result = client.ask(request, deadline, file);
  if (verb.isWatch) {
    showEvents(client, options);
    return Exit::done;
  }
  Shown const shown = verb.present(result, options, isColourful());
  if (verb.isDump && !options.output.empty()) {
    replaceFile(options.output, shown.text);
    if (!options.json) return Exit::done;
  }
  print(options.json ? document(result) : shown.text);
  return shown.isGood ? Exit::done : Exit::failed;
}

/// Returns false when standard output cannot be written.
bool printError(Failure const& failure) {
  Json error{{"kind", failure.kind()}, {"message", failure.what()}};
  if (!failure.suggestion().empty()) error["suggestion"] = failure.suggestion();
  try {
    print(line({{"error", error}}));
  } catch (Failure const&) {
    return false;
  }
  return true;
}

Exit complain(Failure const& failure, bool asJson) {
  if (asJson && printError(failure)) return failure.exit();
  std::cerr << "kestctl: " << Text::visibleLines(failure.what()) << '\n';
  if (!failure.suggestion().empty()) {
    std::cerr << "did you mean '" << Text::visible(failure.suggestion()) << "'?\n";
  }
  return failure.exit();
}

/// Looks for `--json` even in a command line that is wrong otherwise.
bool wantsJson(std::vector<std::string> const& words) {
  auto const end = std::find(words.begin(), words.end(), "--");
  return std::find(words.begin(), end, "--json") != end;
}

Exit run(std::vector<std::string> const& words) {
  if (!words.empty() && words.front() == "complete") {
    std::vector<std::string> rest(words.begin() + 1, words.end());
    if (!rest.empty() && rest.front() == "--") rest.erase(rest.begin());
    for (std::string const& candidate : completions(rest)) print(candidate + "\n");
    return Exit::done;
  }
  bool const asJson = wantsJson(words);
  try {
    auto const read = readCommandLine(words);
    if (auto const* const text = std::get_if<std::string>(&read)) {
      print(*text);
      return Exit::done;
    }
    return carryOut(std::get<Command>(read));
  } catch (Failure const& failure) {
    return complain(failure, asJson);
  } catch (Json::exception const& unexpected) {
    return complain({Exit::failed, "reply",
                     std::string("the agent's reply cannot be used: ") + unexpected.what()},
                    asJson);
  } catch (std::exception const& unexpected) {  // no memory, most likely
    return complain({Exit::failed, "internal", unexpected.what()}, asJson);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // printing then reports that the reader has gone
  try {
    return static_cast<int>(run({argv + 1, argv + argc}));
  } catch (std::exception const& error) {  // no memory for a report, or a failed completion
    std::fprintf(stderr, "kestctl: %s\n", error.what());
    return static_cast<int>(Exit::failed);
  }
}
