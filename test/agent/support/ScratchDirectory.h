#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "test/support/Files.h"

namespace Kest::Agent {

/// A test with a directory of its own, empty at the start and gone at the end.
class ScratchDirectory : public testing::Test {
  Support::TempFolder const scratch_;

 protected:
  /// Puts a file there whole, in place of an earlier one.
  void fileIs(std::string const& name, std::string const& text) const {
    std::string const path = directory + "/" + name;
    std::ofstream(path + ".new", std::ios::binary) << text;
    std::filesystem::rename(path + ".new", path);
  }

  std::string const directory = scratch_.path();
};

}  // namespace Kest::Agent
