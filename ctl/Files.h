#pragma once

#include <string>

/// What the command line reads and writes besides the agent. `Failure` of kind `usage` when a file
/// cannot be read or written.
namespace Kest::Ctl {

/// A file as it is, to follow a request.
std::string bytesOf(std::string const& file);
/// The same of standard input.
std::string bytesOfInput();

/// A text file that fits into a request, in UTF-8.
std::string contentOf(std::string const& file);
/// The same from standard input.
std::string contentOfInput();

/// Replaces the file as a whole, so that it is never half written; keeps its mode, and follows
/// symbolic links. What is no regular file, such as a device, is written to instead.
void replaceFile(std::string const& file, std::string const& content);

/// Writes to standard output at once; false when nobody reads it any more. `Failure` of kind
/// `output` when it cannot be written, as on a full disk.
bool print(std::string const& text);

}  // namespace Kest::Ctl
