#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace Kest::Agent {

/// A test with a directory of its own, empty at the start and gone at the end.
class ScratchDirectory : public testing::Test {
 protected:
  ScratchDirectory() {
    if (mkdtemp(directory.data()) == nullptr) throw std::runtime_error("mkdtemp: " + directory);
  }
  ~ScratchDirectory() override { std::filesystem::remove_all(directory); }

  /// Puts a file there whole, in place of an earlier one.
  void fileIs(std::string const& name, std::string const& text) const {
    std::string const path = directory + "/" + name;
    std::ofstream(path + ".new", std::ios::binary) << text;
    std::filesystem::rename(path + ".new", path);
  }

  std::string directory = testing::TempDir() + "kest-agent-XXXXXX";
};

}  // namespace Kest::Agent
