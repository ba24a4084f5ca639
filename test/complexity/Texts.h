#pragma once

#include "test/complexity/Reader.h"

/// Makers of texts. In each piece `@` stands for the piece's number, `%` and `^` for the key of
/// that number among some that have one hash, and among some whose hashes follow each other.
namespace Kest::Complexity {

/// `piece` again and again between `start` and `end`.
Case pieces(char const* name, std::string start, std::string piece, std::string end = "");
/// `piece` again and again up to half of the text, then `more`: one long thing before many short
/// ones.
Case halves(char const* name, std::string start, std::string piece, std::string middle,
            std::string more, std::string end = "");
/// As many `open` as `close`, `middle` between them.
Case nested(char const* name, std::string start, std::string open, std::string middle,
            std::string close, std::string end = "");

/// `more` after `cases`.
std::vector<Case> both(std::vector<Case> cases, std::vector<Case> more);
/// JSON objects that are large or broken in the ways that JSON can be.
/// @param field the start of an object, up to the value of a member
/// @param end what follows the object
std::vector<Case> jsonTexts(std::string const& field, std::string const& end = "");

/// Makes the keys that `%` and `^` stand for now rather than at the first use.
void prepareKeys();

}  // namespace Kest::Complexity
