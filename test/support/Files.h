#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace Support {

/// A new directory, gone at the end with all that is in it.
class TempFolder {
 public:
  TempFolder() {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("mkdtemp " + path_);
  }
  TempFolder(TempFolder const&) = delete;
  TempFolder& operator=(TempFolder const&) = delete;
  ~TempFolder() { std::filesystem::remove_all(path_); }

  std::string const& path() const { return path_; }
  std::string file(std::string const& name) const { return path_ + "/" + name; }
  std::set<std::string> names() const {
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(path_)) {
      names.insert(entry.path().filename());
    }
    return names;
  }

 private:
  std::string path_ = std::filesystem::temp_directory_path() / "kest-test-XXXXXX";
};

/// Empty when there is no such file.
inline std::string contentOf(std::string const& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace Support
