#include "test/support/RecordingDriver.h"

#include <cstdlib>

#include "test/support/DriverLine.h"

namespace Hardware::Kest {

namespace {

RecordingDriver* currentDriver = nullptr;

int driven(char const* operation, auto*, auto const& name, auto const&... others) {
  std::string line = Support::driverLine(operation, name, others...);
  return RecordingDriver::current().call(operation, Mox::String8(name).charPtr(), std::move(line));
}

int driven(char const* operation, auto* address, Mox::String8 const& devName, bool* up) {
  int const answer = driven(operation, address, devName);
  RecordingDriver::current().storeUp(devName.charPtr(), up);
  return answer;
}

int driven(char const* operation, auto*) {
  return RecordingDriver::current().call(operation, "", "kestDmaDump()");
}

}  // namespace

RecordingDriver::RecordingDriver(Support::Journal& journal) : journal_(journal) {
  currentDriver = this;
}

RecordingDriver::~RecordingDriver() {
  currentDriver = nullptr;
}

RecordingDriver& RecordingDriver::current() {
  if (currentDriver == nullptr) std::abort();
  return *currentDriver;
}

void RecordingDriver::answersIs(std::string const& operation, std::string const& name,
                                Answers answers) {
  answers_[{operation, name}] = std::move(answers);
}

int RecordingDriver::call(std::string const& operation, std::string const& name, std::string line) {
  journal_.add(std::move(line));
  if (reaction) reaction();
  auto const found = answers_.find({operation, name});
  if (found == answers_.end() || found->second.empty()) return 0;
  int const answer = found->second.front();
  found->second.pop_front();
  return answer;
}

void RecordingDriver::storeUp(std::string const& devName, bool* up) const {
  auto const found = up_.find(devName);
  if (found != up_.end()) *up = found->second;
}

}  // namespace Hardware::Kest

#include "test/support/DriverOperations.h"
