#include "agent/slice/SliceFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "agent/slice/FileError.h"
#include "agent/slice/SliceJson.h"
#include "agent/slice/SliceStatements.h"

namespace Kest::Agent {

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20U;

/// At most one byte more than a slice file may have: enough to see that it is too large.
std::string fileText(std::string const& path) {
  auto const refuse = [&] {
    throw FileError(path, std::string("cannot be read: ") + std::strerror(errno));
  };
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> const file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (!file) refuse();
  std::string text;
  std::array<char, 4096> block{};
  while (std::size_t const bytes = std::fread(
             block.data(), 1, std::min(block.size(), largestSlice + 1 - text.size()), file.get())) {
    text.append(block.data(), bytes);
  }
  if (std::ferror(file.get()) != 0) refuse();
  return text;
}

}  // namespace

Slice parseSlice(std::string_view name, std::string_view text) {
  if (text.size() > largestSlice) {
    throw FileError(
        name, "expected at most " + std::to_string(largestSlice / mebibyte) + " MiB, found more");
  }
  return name.ends_with(".json") ? parseJsonSlice(name, text) : parseStatements(name, text);
}

Slice readSliceFile(std::string const& path) {
  return parseSlice(path, fileText(path));
}

}  // namespace Kest::Agent
