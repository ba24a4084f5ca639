#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/mox/PtrInterface.h"

namespace Test {

using Events = std::vector<std::string>;

/// A counted object that writes down when it goes.
class Journaled : public Mox::PtrInterface {
 public:
  Journaled(Events& events, std::string name) : events_(events), name_(std::move(name)) {}
  ~Journaled() override { events_.push_back(name_ + " gone"); }

  std::string const& name() const { return name_; }

 protected:
  Events& events_;

 private:
  std::string name_;
};

}  // namespace Test
