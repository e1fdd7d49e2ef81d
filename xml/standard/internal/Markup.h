#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/internal/Encoder.h"
#include "xml/standard/internal/PlainRuns.h"
#include "xml/standard/internal/WriteBuffer.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

class Dtd;

// What cannot be written, and why.
struct WriteFault {
    Problem::Kind kind = Problem::Kind::Unwritable;
    std::string text;
    const char* rule = "";
};

// Writes the parts of a document: texts, values, names, comments. What XML cannot say, or the encoding, fails: then
// fault() says why, and some of the part may have been put.
//
// Line feeds are written as the line end that was set.
class Markup {
public:
    // Whether texts and values are looked at for bytes that are no UTF-8, or what is put is checked as a whole. Only
    // where every character has a form in the encoding may they be left to that.
    enum class Check : std::uint8_t { Pieces, Whole };

    // Without an encoder the encoding has all characters. Its name is for messages.
    Markup(WriteBuffer& itsOut, Encoder* itsEncoder, std::string_view itsEncodingName, std::string_view itsNewline,
           Check check)
        : out(itsOut),
          encoder(itsEncoder != nullptr && !itsEncoder->hasAll() ? itsEncoder : nullptr),
          encodingName(itsEncodingName),
          newline(itsNewline),
          isLineFeed(newline == "\n"),
          isTrusting(check == Check::Whole) {}

    WriteBuffer& buffer() { return out; }
    std::string_view lineEnd() const { return newline; }

    // Whether line feeds are written as they are, and all characters of ASCII.
    bool keepsLineFeeds() const { return isLineFeed; }
    bool hasAscii() const { return encoder == nullptr || encoder->hasAscii(); }

    bool isChecking() const { return !isTrusting; }

    // A text: as it is meant; as a node holds it, with references, to entities of the Dtd too, if there is one.
    bool putText(std::string_view text);
    bool putHeld(std::string_view held, const Dtd* dtd);

    // What stands between the quotes.
    bool putValue(std::string_view attribute, std::string_view value);

    bool putComment(std::string_view text);
    bool putInstruction(std::string_view target, std::string_view content);

    // As a section, or several where XML cannot say it in one.
    bool putSection(std::string_view text);
    bool putHeldSection(std::string_view held, const Dtd* dtd);

    // Whether it is a name that the encoding can say. `of` is what it would name: an element.
    bool checkName(std::string_view name, const char* of);

    // Puts text without references, which `what` is the name of. The lines may end in any way.
    bool putAsIs(std::string_view text, const std::string& what);

    const WriteFault& fault() const { return *failed; }
    bool fail(std::string text, const char* rule, Problem::Kind kind = Problem::Kind::Unwritable);

private:
    enum class Form : std::uint8_t { Meant, Held };

    template <PlainRuns::Kind Kind>
    bool putEscaped(std::string_view text, Form form, const std::string_view* attribute, const Dtd* dtd);
    template <PlainRuns::Kind Kind>
    bool putReference(std::string_view& rest, const std::string_view* attribute, const Dtd* dtd);

    template <class What>
    bool checkCharacters(std::string_view text, What what);
    bool checkSayable(std::string_view text, const std::string& what);
    bool grow(std::size_t size);

    void putRun(const char* from, const char* to);
    void putCharacterReference(char32_t c);
    void putLines(std::string_view text);
    bool appendMeant(std::string& to, std::string_view held, const Dtd* dtd);

    WriteBuffer& out;
    Encoder* const encoder;  // of one that lacks characters
    const std::string encodingName;
    const std::string newline;
    const bool isLineFeed;
    const bool isTrusting;
    std::int64_t made = 0;  // by references to entities
    std::int64_t heldWithReferences = 0;
    std::optional<WriteFault> failed;
};

}  // namespace Xml
