#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "agent/wire/Protocol.h"
#include "ctl/Client.h"
#include "ctl/CommandLine.h"
#include "ctl/Complete.h"
#include "ctl/Present.h"
#include "ctl/Text.h"

namespace {

using namespace Kest::Ctl;

bool isColourful() {
  auto const variable = [](char const* name) {
    char const* const value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  return isatty(STDOUT_FILENO) == 1 && variable("NO_COLOR").empty() && variable("TERM") != "dumb";
}

/// Whether everything could be written.
bool print(std::string const& text) {
  std::cout << text << std::flush;
  return static_cast<bool>(std::cout);
}

std::string document(Json const& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string socketOf(Options const& options) {
  if (options.socket) return *options.socket;
  if (auto const path = Kest::Wire::defaultSocketPath()) return *path;
  throw Failure(Exit::noAgent, "no-agent",
                "no socket is known: name one with --socket or in KEST_SLICE_AGENT_SOCKET");
}

/// Replaces the file as a whole, so that it is never half written.
void write(std::string const& file, std::string const& content) {
  std::string const fresh = file + ".new";
  std::FILE* const stream = std::fopen(fresh.c_str(), "wb");
  bool good = stream != nullptr;
  good = good && std::fwrite(content.data(), 1, content.size(), stream) == content.size();
  if (stream != nullptr) good = std::fclose(stream) == 0 && good;
  good = good && std::rename(fresh.c_str(), file.c_str()) == 0;
  if (good) return;
  std::string const why = std::strerror(errno);
  std::remove(fresh.c_str());
  throw usageFailure(file + " cannot be written: " + why);
}

/// Events, until there have been enough or nobody reads them any more.
void showEvents(Client& client, Options const& options) {
  for (std::size_t shownSoFar = 0; options.count == 0 || shownSoFar < options.count; ++shownSoFar) {
    Json const event = client.receive(std::nullopt);
    if (!print(options.json ? event.dump() + "\n" : eventLine(event))) return;
  }
}

Exit carryOut(Command const& command) {
  Verb const& verb = *command.verb;
  Options const& options = command.options;
  Json request{{"verb", verb.name}};
  request.update(verb.request(options));
  Client::Deadline const deadline = Client::after(options.timeout.value_or(verb.timeout));
  Client client(socketOf(options), deadline);
  Json const result = client.ask(request, deadline);
  if (verb.isWatch) {
    showEvents(client, options);
    return Exit::done;
  }
  Shown const shown = verb.present(result, options, isColourful());
  if (verb.isDump && !options.output.empty()) {
    write(options.output, shown.text);
  } else {
    print(options.json ? document(result) : shown.text);
  }
  return shown.isGood ? Exit::done : Exit::failed;
}

Exit complain(Failure const& failure, bool asJson) {
  if (asJson) {
    Json error{{"kind", failure.kind()}, {"message", failure.what()}};
    if (!failure.suggestion().empty()) error["suggestion"] = failure.suggestion();
    print(document({{"error", error}}));
    return failure.exit();
  }
  // The agent's reports on files have several lines.
  std::string text = failure.what();
  std::cerr << "kestctl: ";
  for (std::size_t end = 0; end != std::string::npos;) {
    end = text.find('\n');
    std::cerr << escaped(std::string_view(text).substr(0, end)) << '\n';
    text.erase(0, end == std::string::npos ? end : end + 1);
  }
  if (!failure.suggestion().empty()) {
    std::cerr << "did you mean '" << escaped(failure.suggestion()) << "'?\n";
  }
  return failure.exit();
}

Exit run(std::vector<std::string> const& words) {
  if (!words.empty() && words.front() == "complete") {
    std::vector<std::string> rest(words.begin() + 1, words.end());
    if (!rest.empty() && rest.front() == "--") rest.erase(rest.begin());
    for (std::string const& candidate : completions(rest)) print(candidate + "\n");
    return Exit::done;
  }
  bool const asJson = std::find(words.begin(), words.end(), "--json") != words.end();
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
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a reader that has gone shows when something is printed
  try {
    return static_cast<int>(run({argv + 1, argv + argc}));
  } catch (std::exception const& error) {  // no memory, most likely
    std::fprintf(stderr, "kestctl: %s\n", error.what());
    return static_cast<int>(Exit::failed);
  }
}
