#include "xml/standard/internal/Decoder.h"

#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <utility>

namespace Xml {

namespace {

std::int64_t countOf(std::size_t size) { return static_cast<std::int64_t>(size); }

std::string hexOf(std::string_view bytes) {
    constexpr std::size_t kMost = 8;
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes.substr(0, kMost)) {
        const auto byte = static_cast<unsigned char>(c);
        if (!text.empty()) text += ' ';
        text += {kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    return text;
}

// A name may be as long as the source.
std::string shortened(const std::string& name) {
    constexpr std::size_t kMost = 40;
    return name.size() > kMost ? name.substr(0, kMost) + "..." : name;
}

// Whether ASCII is the same in the other encoding.
bool isSameIn(const std::string& encoding, std::string_view ascii) {
    const auto converter = Converter::makeForeign(encoding);
    std::string text;
    return converter != nullptr && converter->convert(ascii, text).taken == ascii.size() && text == ascii;
}

// A declaration is read as ASCII.
constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding='";

// A "<" in UTF-7. Whoever looks at the bytes of a document before it is read must see the same markup in them.
constexpr std::string_view kHiddenMarkup = "+ADw-";

}  // namespace

Decoder::Decoder(std::string_view known) : given(known) {}

bool Decoder::decode(std::string_view bytes, std::string& to) { return take(bytes, to, false); }

bool Decoder::finish(std::string& to) { return take({}, to, true); }

std::string_view Decoder::textWithin(std::string_view source, bool isWhole) {
    rest.clear();
    const std::string_view bytes = source.substr(static_cast<std::size_t>(sourceTaken));
    const std::size_t size = check(bytes);
    if (isWhole && !failed && size != bytes.size()) failAt(bytes.substr(size), true);
    return source.substr(markSize, static_cast<std::size_t>(textGiven));
}

bool Decoder::take(std::string_view bytes, std::string& to, bool isLast) {
    if (failed) return false;
    const std::string_view fresh = bytes;
    const bool wasForeign = encoding == Encoding::Other;
    std::string joined;
    if (!rest.empty()) {
        joined.swap(rest);
        joined += bytes;
        bytes = joined;
    }
    if (stage == Stage::Opening) {
        if (bytes.size() < kOpeningSize && !isLast) {
            rest = bytes;
            return true;
        }
        if (!open(bytes)) return false;
    }
    if (stage == Stage::DeclarationBytes && !readDeclarationBytes(bytes, to)) return false;
    if (stage == Stage::DeclarationText && !readDeclarationText(bytes, to)) return false;
    if (encoding == Encoding::Other) map.took(wasForeign ? fresh : bytes);
    return convert(bytes, to) && (!isLast || end(to));
}

bool Decoder::end(std::string& to) {
    if (!rest.empty()) return failAt(rest, true);
    if (converter == nullptr) return true;
    const std::size_t before = to.size();
    converter->finish(to);
    return accept(to, before);
}

bool Decoder::open(std::string_view& bytes) {
    if (!given.empty()) return openGiven(bytes);
    const Opening opening = openingOf(bytes);
    if (opening.kind == Opening::Kind::Unreadable)
        return failToOpen(opening.name, std::string("the source is in ") + opening.name + ", which cannot be read");
    stage = opening.kind == Opening::Kind::Bytes ? Stage::DeclarationBytes : Stage::DeclarationText;
    start(opening, bytes);
    return true;
}

bool Decoder::openGiven(std::string_view& bytes) {
    const Encoding named = encodingNamed(given);
    stage = Stage::Content;
    if (named != Encoding::Other) {
        start(openingOf(bytes, named), bytes);
        return true;
    }
    if (isEncodingName(given)) converter = Converter::makeForeign(given);
    if (converter == nullptr) return failToOpen(given, "the encoding " + shortened(given) + " is not known");
    encoding = Encoding::Other;
    foreignName = given;
    map.beginForeign(given, 0, 0);
    return true;
}

void Decoder::start(const Opening& opening, std::string_view& bytes) {
    encoding = opening.encoding;
    converter = Converter::make(encoding);
    markSize = opening.markSize;
    map.begin(encoding, markSize);
    bytes.remove_prefix(markSize);
    sourceTaken = countOf(markSize);
}

// What the declaration takes is ASCII, so it may be given before it is known how the source goes on.
bool Decoder::readDeclarationBytes(std::string_view& bytes, std::string& to) {
    const std::size_t size = declaration.take(bytes);
    to += bytes.substr(0, size);
    bytes.remove_prefix(size);
    textGiven += countOf(size);
    sourceTaken += countOf(size);
    if (!declaration.isDecided()) return true;
    stage = Stage::Content;
    return declaration.name().empty() || switchTo(std::string(declaration.name()));
}

// In an encoding that is certain the declaration may confirm that, or else comes before all that is wrong after it.
bool Decoder::readDeclarationText(std::string_view& bytes, std::string& to) {
    const std::size_t before = to.size();
    const std::int64_t textBefore = textGiven;
    const bool isConverted = convert(bytes, to);
    bytes = {};
    const std::size_t size = declaration.take(std::string_view(to).substr(before));
    if (!declaration.isDecided()) return isConverted;
    stage = Stage::Content;
    const std::string name(declaration.name());
    if (name.empty() ? isKnown(textBefore + countOf(size)) : confirm(name)) return isConverted;
    to.resize(before + size);
    return false;
}

// What neither a byte order mark nor a declaration names is UTF-8, whatever its first bytes look like.
bool Decoder::isKnown(std::int64_t textOffset) {
    if (markSize > 0) return true;
    failed = DecodingFailure{
        Kind::OtherEncoding,
        textOffset * countOf(unitOf(encoding)),
        textOffset,
        {},
        nameOf(encoding),
        std::string("neither a byte order mark nor a declaration names the encoding, which is ") + nameOf(encoding)};
    return false;
}

bool Decoder::switchTo(const std::string& name) {
    const Encoding named = encodingNamed(name);
    if (named == Encoding::Utf8) return true;
    if (unitOf(named) != 1)
        return failDeclared(Kind::OtherEncoding, "the declaration names " + shortened(name) + ", but is not in it");
    if (named != Encoding::Other) {
        encoding = named;
        converter = Converter::make(named);
        map.begin(named, markSize);
        return true;
    }
    converter = Converter::makeForeign(name);
    if (converter == nullptr)
        return failDeclared(Kind::UnknownEncoding, "the encoding " + shortened(name) + " is not known");
    if (!isSameIn(name, kDeclaration))
        return failDeclared(Kind::OtherEncoding, "the declaration names " + shortened(name) + ", but is not in it");
    if (!isSameIn(name, kHiddenMarkup))
        return failDeclared(Kind::UnknownEncoding,
                            "the encoding " + shortened(name) + " is not supported: it can write ASCII in other bytes");
    encoding = Encoding::Other;
    foreignName = name;
    map.beginForeign(name, textGiven, sourceTaken);
    return true;
}

bool Decoder::confirm(const std::string& name) {
    const Encoding named = encodingNamed(name);
    if (isSameEncoding(named, encoding)) return true;
    if (named == Encoding::Other && Converter::makeForeign(name) == nullptr)
        return failDeclared(Kind::UnknownEncoding, "the encoding " + shortened(name) + " is not known");
    return failDeclared(Kind::OtherEncoding,
                        "the declaration names " + shortened(name) + ", but is in " + nameOf(encoding));
}

bool Decoder::convert(std::string_view bytes, std::string& to) {
    if (bytes.empty()) return true;
    if (converter == nullptr) {
        const std::size_t size = check(bytes);
        to += bytes.substr(0, size);
        if (failed) return false;
        rest = bytes.substr(size);
        return true;
    }
    const std::size_t before = to.size();
    const auto converted = converter->convert(bytes, to);
    sourceTaken += countOf(converted.taken);
    if (!accept(to, before)) return false;
    const std::string_view left = bytes.substr(converted.taken);
    if (converted.ending == Converter::Ending::IllFormed) return failAt(left.substr(0, converted.badSize));
    rest = left;
    return true;
}

// Checks what was converted: the platform may make characters that are none.
bool Decoder::accept(std::string& to, std::size_t before) {
    const char* const from = to.data() + before;
    const auto checked = Utf8::checkForm(from, to.data() + to.size());
    const auto size = static_cast<std::size_t>(checked.end - from);
    textGiven += countOf(size);
    if (checked.ending == Utf8::Ending::Whole) return true;
    to.resize(before + size);
    TextPosition place;
    place.offset = textGiven;
    sourceTaken = map.sourceOffset(place);
    return failAt({});
}

// Notes how many bytes are text of UTF-8, and returns how many.
std::size_t Decoder::check(std::string_view bytes) {
    const auto checked = Utf8::checkForm(bytes.data(), bytes.data() + bytes.size());
    const auto size = static_cast<std::size_t>(checked.end - bytes.data());
    textGiven += countOf(size);
    sourceTaken += countOf(size);
    if (checked.ending == Utf8::Ending::IllFormed)
        failAt(bytes.substr(size, static_cast<std::size_t>(checked.badSize)));
    return size;
}

bool Decoder::failToOpen(const std::string& name, std::string text) {
    failed = DecodingFailure{Kind::UnknownEncoding, 0, 0, {}, name, std::move(text)};
    return false;
}

bool Decoder::failDeclared(Kind kind, std::string text) {
    const std::int64_t place = countOf(declaration.nameOffset());
    const std::int64_t offset = countOf(markSize + declaration.nameOffset() * unitOf(encoding));
    failed = DecodingFailure{kind, offset, place, {}, std::string(declaration.name()), std::move(text)};
    return false;
}

bool Decoder::failAt(std::string_view bytes, bool isEnd) {
    const std::string name = encoding == Encoding::Other ? foreignName : nameOf(encoding);
    const std::string hex = hexOf(bytes);
    std::string text;
    if (isEnd) {
        text = "the source ends within a character of " + name + ": " + hex;
    } else if (bytes.empty()) {
        text = "no character is here in " + name;
    } else {
        text = hex + (bytes.size() == 1 ? " is not " : " are not ") + name;
    }
    failed = DecodingFailure{Kind::IllFormed, sourceTaken, textGiven, hex, name, std::move(text)};
    return false;
}

}  // namespace Xml
