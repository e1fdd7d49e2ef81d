#include "xml/standard/internal/OutputForm.h"

#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Encodings.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <cstddef>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Xml {

namespace {

bool isUnicode(Encoding encoding) {
    return encoding != Encoding::Ascii && encoding != Encoding::Latin1 && encoding != Encoding::Other;
}

bool hasOrder(Encoding encoding) {
    return encoding == Encoding::Utf16Le || encoding == Encoding::Utf16Be || encoding == Encoding::Utf32Le ||
           encoding == Encoding::Utf32Be;
}

constexpr std::size_t kStretch = 64;

bool isAscii(std::string_view stretch) {
#ifdef __SSE2__
    if (stretch.size() == kStretch) {
        const auto load = [&](std::size_t at) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(stretch.data() + at));
        };
        return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(load(0), load(16)), _mm_or_si128(load(32), load(48)))) == 0;
    }
#endif
    return std::all_of(stretch.begin(), stretch.end(), Utf8::isAscii);
}

// Control characters are found where they are put: what is ASCII need not be looked at. A character may go on after a
// stretch that is not.
bool hasOnlyChars(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        while (at < text.size() && !isAscii(text.substr(at, kStretch))) at += kStretch;
        if (at == from) {
            at += kStretch;
            continue;
        }
        const std::string_view others = text.substr(from, at - from);
        const Utf8::Checked checked = Utf8::check(others.data(), others.data() + others.size());
        if (checked.ending != Utf8::Ending::Whole || !checked.onlyChars) return false;
    }
    return true;
}

}  // namespace

// Room for all of it is made at once, as what has been put would be copied whenever there is no more room; but only
// when some of it is there, as a short text needs little.
void EncodedText::take(std::string_view text) {
    constexpr std::size_t kSome = WriteBuffer::kRoom;
    if (!isRight) return;
    if (check == Markup::Check::Whole && !hasOnlyChars(text)) {
        isRight = false;
        return;
    }
    if (bytes.size() >= kSome && bytes.capacity() < expected) bytes.reserve(expected);
    if (encoder == nullptr) {
        bytes.append(text);
    } else {
        isRight = encoder->encode(text, bytes);
    }
}

bool EncodedText::finish() {
    if (isRight && encoder != nullptr) encoder->finish(bytes);
    return isRight;
}

bool OutputForm::set(const WriteOptions& options, Problem& problem) {
    const auto refuse = [&](const std::string& text, const char* option) {
        problem = problemOf({}, Problem::Kind::Unsupported, text, option);
        return false;
    };
    if (options.newline != "\n" && options.newline != "\r\n" && options.newline != "\r")
        return refuse("the option newline is no line end", "newline");
    if (options.indent.find_first_not_of(" \t") != std::string::npos)
        return refuse("the option indent has other characters than blanks and tabs", "indent");
    name = options.encoding.empty() ? "UTF-8" : options.encoding;
    const Encoding encoding = encodingNamed(name);
    if (encoding != Encoding::Utf8) {
        if (isEncodingName(name)) encoder = Encoder::make(name);
        if (encoder == nullptr) return refuse("the encoding " + messageLine(name) + " cannot be written", "encoding");
    }
    if (options.mark && !isUnicode(encoding)) return refuse("the encoding " + name + " has no byte order mark", "mark");
    hasMark = options.mark || encoding == Encoding::Utf16 || encoding == Encoding::Utf32;
    return true;
}

std::string declaredEncoding(const WriteOptions& options, const Prolog* prolog) {
    const Encoding encoding = encodingNamed(options.encoding);
    if (prolog == nullptr || !hasOrder(encoding) || encodingNamed(prolog->readAs) != encoding) return options.encoding;
    if (prolog->encoding.empty()) return options.mark && prolog->hasDeclaration ? "" : options.encoding;
    return isSameEncoding(encodingNamed(prolog->encoding), encoding) ? prolog->encoding : options.encoding;
}

}  // namespace Xml
