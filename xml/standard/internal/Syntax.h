#pragma once

#include "xml/standard/internal/EntityStack.h"
#include "xml/standard/internal/Runs.h"
#include <string>
#include <string_view>

// What declarations, tags and content are made of, read from the innermost entity. Each reads from `at` on, moves it,
// and fails by returning false.
namespace Xml::Syntax {

inline bool isWhite(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

inline const char* whiteEnd(const char* from, const char* to) {
    while (from != to && isWhite(*from)) ++from;
    return from;
}

// Whether there was white space.
inline bool skipWhite(EntityStack& in) {
    const char* const from = in.at;
    in.at = whiteEnd(from, in.end);
    return in.at != from;
}

inline std::string_view viewOf(const char* from, const char* to) { return {from, static_cast<std::size_t>(to - from)}; }

inline bool startsWith(const EntityStack& in, std::string_view text) {
    return viewOf(in.at, in.end).substr(0, text.size()) == text;
}

// Whether what is left may become that text when there is more.
inline bool mayBecome(const EntityStack& in, std::string_view text) {
    const std::string_view left = viewOf(in.at, in.end);
    return in.isGrowing() && left.size() < text.size() && text.substr(0, left.size()) == left;
}

// White space that has to be there.
bool readWhite(EntityStack& in, const char* rule);

// The byte, which `what` describes.
bool readByte(EntityStack& in, char byte, const char* rule, const char* what);

// A name. Name is the rule of what is none.
bool readName(EntityStack& in, std::string_view& name, const char* what);

// The same without a colon where there are namespaces: of an entity, a notation, an instruction.
bool readPlainName(EntityStack& in, std::string_view& name, const char* what, bool hasNamespaces);
bool checkPlainName(EntityStack& in, std::string_view name, const char* what);

// The same for the name of an element or attribute: a QName where there are namespaces.
bool readQName(EntityStack& in, std::string_view& name, const char* what, bool hasNamespaces);
bool checkQName(EntityStack& in, std::string_view name, const char* colon);

// The run up to there is of allowed characters, and the one there is not.
bool failAtCharacter(EntityStack& in, const char* where);

// A literal in quotes, of characters. Line ends are LF.
bool readSystemLiteral(EntityStack& in, std::string& text);
bool readPubidLiteral(EntityStack& in, std::string& text);

// What ExternalID stands for; with `isNotation` the system literal may be missing. `found` says whether one was there.
struct ExternalId {
    bool isPresent = false;
    std::string publicId, systemId;
};
bool readExternalId(EntityStack& in, ExternalId& id, bool isNotation);

// From "&#" on: the character is appended.
bool readCharacterReference(EntityStack& in, std::string& to);

// From '&' or '%' on: a reference by name.
bool readReferenceName(EntityStack& in, std::string_view& name, bool hasNamespaces);

// The character of a predefined entity, 0 for other names.
char predefined(std::string_view name);

// From "<!--", "<?", "<![CDATA[" on. What is between the ends, line ends as they are.
bool readComment(EntityStack& in, std::string_view& text, bool& hasReturn);
bool readInstruction(EntityStack& in, std::string_view& target, std::string_view& content, bool& hasReturn,
                     bool hasNamespaces);
bool readSection(EntityStack& in, std::string_view& text, bool& hasReturn);

// Appends with each line end as LF.
void appendLines(std::string& to, std::string_view text);

}  // namespace Xml::Syntax
