#pragma once

#include "fuzz/Input.h"
#include <cstddef>
#include <optional>
#include <string>

// What XML 1.0 can say, by the letter of its productions, and texts that try it.
namespace Xml::fuzz {

// The characters of UTF-8; none of bytes that are not.
std::optional<std::u32string> charactersOf(const std::string& bytes);

// Whether a document may have them: as a name; as a text, with references; as a comment; as an instruction; as a public
// identifier.
bool isName(const std::string& bytes);
bool isText(const std::string& bytes);
bool isComment(const std::string& bytes);
bool isInstruction(const std::string& target, const std::string& content);
bool isPublicId(const std::string& bytes);

// Whether characters up to that number are all it has.
bool isUpTo(char32_t most, const std::string& bytes);

// A name, a text: mostly of those that make a difference, otherwise some bytes of the input. They may be anything.
std::string nameFrom(Decisions& program);
std::string textFrom(Decisions& program);

}  // namespace Xml::fuzz
