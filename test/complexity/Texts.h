#pragma once

#include "test/complexity/Reader.h"

/// Makers of texts. In each piece `@` stands for the piece's number, `%` and `^` for the key of
/// that number among some that have one hash, and among some whose hashes follow each other.
namespace Kest::Complexity {

/// `piece` again and again between `start` and `end`.
Case pieces(char const* name, std::string start, std::string piece, std::string end = "");
/// `piece` again and again up to half of the text, then `more`: what is long once meets what is
/// many.
Case halves(char const* name, std::string start, std::string piece, std::string middle,
            std::string more, std::string end = "");
/// As many `open` as `close`, `middle` between them.
Case nested(char const* name, std::string start, std::string open, std::string middle,
            std::string close, std::string end = "");

/// The keys that `%` and `^` stand for are made now instead of at the first use.
void prepareKeys();

}  // namespace Kest::Complexity
