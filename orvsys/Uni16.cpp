#include "orvsys/Uni16.h"
#include <algorithm>
#include <cstdint>
#include <cstring>

namespace OrvSys {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// ASCII, which paths and names nearly always are, is copied at once.
constexpr bool isPlain(char32_t unit) { return unit <= 0x7F; }

// Where the plain bytes at the begin end, eight at a time.
const unsigned char* endOfPlain(const unsigned char* begin, const unsigned char* end) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::uint64_t eight = 0;
    for (; end - begin >= static_cast<std::ptrdiff_t>(sizeof eight); begin += sizeof eight) {
        std::memcpy(&eight, begin, sizeof eight);
        if ((eight & kHighBits) != 0) break;
    }
    return std::find_if_not(begin, end, isPlain);
}

constexpr bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

constexpr bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The well formed UTF-8 sequences by their first byte. The second byte has a narrower range after some first bytes:
// that is what keeps out overlong forms (after E0, F0), surrogates (after ED) and values above U+10FFFF (after F4).
struct LeadByteRow {
    unsigned char first, last;
    std::size_t byteCount;
    unsigned char secondFirst, secondLast;
};

constexpr LeadByteRow kLeadBytes[] = {
    {0x00, 0x7F, 1, 0x00, 0x00}, {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

const LeadByteRow* findLeadByte(unsigned char byte) {
    for (const LeadByteRow& row : kLeadBytes) {
        if (byte >= row.first && byte <= row.last) return &row;
    }
    return nullptr;
}

// The number of bytes of the well formed sequence at the start of the `available` bytes, 0 when there is none;
// `character` is set to what it encodes.
std::size_t decode(const unsigned char* bytes, std::size_t available, char32_t& character) {
    const LeadByteRow* row = findLeadByte(bytes[0]);
    if (row == nullptr || row->byteCount > available) return 0;
    if (row->byteCount == 1) {
        character = bytes[0];
        return 1;
    }
    if (bytes[1] < row->secondFirst || bytes[1] > row->secondLast) return 0;
    // The lead byte of a sequence of n bytes keeps its low 7 - n bits for the character.
    character = bytes[0] & (0x7Fu >> row->byteCount);
    for (std::size_t i = 1; i < row->byteCount; ++i) {
        if ((bytes[i] & 0xC0u) != 0x80u) return 0;
        character = (character << 6) | (bytes[i] & 0x3Fu);
    }
    return row->byteCount;
}

void appendUnits(Uni16String& text, char32_t character) {
    if (character <= 0xFFFF) {
        text += static_cast<uni16char>(character);
    } else {
        text += static_cast<uni16char>(0xD800 + ((character - 0x10000) >> 10));
        text += static_cast<uni16char>(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
}

Uni16String widen(const char* text, std::size_t byteCount) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text);
    const auto* const plainEnd = endOfPlain(bytes, bytes + byteCount);
    Uni16String result(bytes, plainEnd);
    result.reserve(byteCount);  // no sequence has more units than bytes
    for (std::size_t i = result.size(); i < byteCount;) {
        char32_t character = kReplacement;
        const std::size_t used = decode(bytes + i, byteCount - i, character);
        appendUnits(result, used == 0 ? kReplacement : character);
        i += used == 0 ? 1 : used;
    }
    return result;
}

void appendBytes(std::string& text, char32_t character) {
    const auto continuation = [&](unsigned shift) { text += static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
    if (character <= 0x7F) {
        text += static_cast<char>(character);
    } else if (character <= 0x7FF) {
        text += static_cast<char>(0xC0 | (character >> 6));
        continuation(0);
    } else if (character <= 0xFFFF) {
        text += static_cast<char>(0xE0 | (character >> 12));
        continuation(6);
        continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        continuation(12);
        continuation(6);
        continuation(0);
    }
}

}  // namespace

Uni16String UTF8ToUni16Char(const std::string& text) { return widen(text.data(), text.size()); }

std::string Uni16CharToPlatformCString(const Uni16String& text) {
    const auto plainEnd = std::find_if_not(text.begin(), text.end(), isPlain);
    std::string result(text.begin(), plainEnd);
    result.reserve(text.size());  // exact for ASCII, which names and numbers nearly always are
    for (std::size_t i = result.size(); i < text.size(); ++i) {
        char32_t character = text[i];
        if (isHighSurrogate(character) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
            ++i;
            character = 0x10000 + ((character - 0xD800) << 10) + (text[i] - 0xDC00u);
        } else if (isHighSurrogate(character) || isLowSurrogate(character)) {
            character = kReplacement;
        }
        appendBytes(result, character);
    }
    return result;
}

Uni16String PlatformCStringToUni16Char(const char* text) {
    return text == nullptr ? Uni16String() : widen(text, std::strlen(text));
}

std::size_t Uni16CharGetLength(const uni16char* text) {
    return text == nullptr ? 0 : Core::uni16char_traits::length(text);
}

int Uni16CharCompare(const Uni16String& a, const Uni16String& b) {
    const int order = a.compare(b);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

int Uni16CharPartialCompare(const uni16char* a, const uni16char* b, std::size_t units) {
    for (std::size_t i = 0; i < units; ++i) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    }
    return 0;
}

const uni16char* Uni16CharPartialFindCharacter(const uni16char* text, std::size_t units, uni16char wanted) {
    return units == 0 ? nullptr : Core::uni16char_traits::find(text, units, wanted);
}

}  // namespace OrvSys
