#pragma once

#include "xml/standard/internal/Converter.h"
#include "xml/standard/internal/EncodingDeclaration.h"
#include "xml/standard/internal/Encodings.h"
#include "xml/standard/internal/Places.h"
#include "xml/standard/internal/SourceMap.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

// Why a source is no text.
struct DecodingFailure {
    enum class Kind : std::uint8_t {
        UnknownEncoding,  // it cannot be read here
        OtherEncoding,    // the declaration names another one than the source is in
        IllFormed,        // bytes that are nothing in the encoding
    };

    Kind kind;
    std::int64_t offset;      // of the first byte in question, or of the encoding's name; in bytes of the source
    std::int64_t textOffset;  // the same place in the text: its end, or the encoding's name in it
    std::string bytes;        // ill-formed ones in hexadecimal: C3 28
    std::string encoding;     // the name that is not known, or wrong; otherwise what the source is read as
    std::string text;         // all that in a line
};

// The bytes of a source in any encoding as UTF-8, in pieces of any size, and where places of the text are in the
// source. It keeps a few bytes that wait for those after them; where the platform converts, also those that are not
// forgotten.
//
// The encoding is the one that is given, whatever the source says. Without one it is that of the byte order mark;
// UTF-16 or UTF-32 where the source begins with "<" in it; that which the declaration names; else UTF-8. A declaration
// that names another encoding than the mark or the first bytes show is a failure: 4.3.3 of XML makes it a fatal error
// to be in another encoding than the one that is named. That goes for ISO-8859-1 after a mark of UTF-8 too, which some
// parsers let pass. UTF-16 and UTF-32 need no mark where a declaration names them: with "<" as the first character the
// bytes leave no doubt. Named by neither they are a failure by the same section, which some parsers let pass as well.
//
//     Decoder decoder;
//     while (auto piece = ...)
//         if (!decoder.decode(piece, text)) break;
//     decoder.finish(text);                              // no more bytes
//     if (const auto& failure = decoder.failure()) ...   // the text ends before what failed
class Decoder {
public:
    // `encoding` is known from outside; empty: it is not known.
    explicit Decoder(std::string_view encoding = {});

    // Appends the text of the next bytes, whole characters, as they are: line ends stay. False: it has failed, and what
    // comes after is not looked at. What is appended up to there does not depend on how the bytes come in pieces.
    bool decode(std::string_view bytes, std::string& to);
    bool finish(std::string& to);

    const std::optional<DecodingFailure>& failure() const { return failed; }

    // Whether the encoding is settled: the declaration, if there is one, has been read.
    bool isSettled() const { return stage == Stage::Content; }
    bool isUtf8() const { return encoding == Encoding::Utf8; }

    // The name of the encoding that the source is in, with its order of bytes.
    std::string encodingName() const { return encoding == Encoding::Other ? foreignName : nameOf(encoding); }

    // For a source that is settled, in UTF-8, and in memory from its first byte to its last: checks what has not been
    // decoded, and returns all that is text, where it stands. It takes the place of what is left of decode() and, where
    // it ends as a whole, of finish().
    std::string_view textWithin(std::string_view source, bool isWhole);

    bool hasMark() const { return markSize != 0; }

    // What the declaration names; empty where it names none, and where an encoding was given.
    std::string_view declaredEncoding() const { return declaration.name(); }

    // For sourceOffset(): the source stays in memory as a whole.
    void keepSource(std::string_view source) { map.useWhole(source); }

    // Where a place of the text that is not forgotten is in the source; a byte order mark counts.
    std::int64_t sourceOffset(const TextPosition& place) { return map.sourceOffset(place); }

    // No place before that offset of the text is asked again. Costs as much as what is not forgotten, so it is for when
    // that is moved anyway.
    void forget(std::int64_t textOffset) { map.forget(textOffset); }

private:
    // The declaration is read as bytes where it may name another encoding, and as text where the encoding is certain.
    enum class Stage : std::uint8_t { Opening, DeclarationBytes, DeclarationText, Content };
    using Kind = DecodingFailure::Kind;

    bool take(std::string_view bytes, std::string& to, bool isLast);
    bool end(std::string& to);

    // How the encoding is found. What they read of the bytes they take away.
    bool open(std::string_view& bytes);
    bool openGiven(std::string_view& bytes);
    void start(const Opening& opening, std::string_view& bytes);
    bool readDeclarationBytes(std::string_view& bytes, std::string& to);
    bool readDeclarationText(std::string_view& bytes, std::string& to);
    bool switchTo(const std::string& name);
    bool confirm(const std::string& name);
    bool isKnown(std::int64_t textOffset);

    bool convert(std::string_view bytes, std::string& to);
    bool accept(std::string& to, std::size_t before);
    std::size_t check(std::string_view bytes);

    bool failToOpen(const std::string& name, std::string text);
    bool failDeclared(Kind kind, std::string text);
    bool failAt(std::string_view bytes, bool isEnd = false);

    const std::string given;
    Stage stage = Stage::Opening;
    Encoding encoding = Encoding::Utf8;
    std::string foreignName;  // where it is another one
    std::size_t markSize = 0;
    EncodingDeclaration declaration;
    std::unique_ptr<Converter> converter;  // none for UTF-8
    std::string rest;                      // bytes that wait for those after them
    std::int64_t sourceTaken = 0;
    std::int64_t textGiven = 0;
    std::optional<DecodingFailure> failed;
    SourceMap map;
};

}  // namespace Xml
