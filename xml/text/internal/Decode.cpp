#include "xml/text/internal/Decode.h"

#include "xml/text/internal/ClassicNumbers.h"
#include "xml/text/internal/Escape.h"
#include "xml/text/internal/Words.h"
#include <array>
#include <cstring>

namespace Xml {

namespace {

constexpr char kStandardValues[] = {'&', '<', '>', '"', '\''};

// --- References of the usual forms: found out by the bytes that they begin with, without a look for their end ---

using Words::Word;

constexpr Word wordOf(std::string_view text) {
    Word word = 0;
    for (std::size_t i = 0; i < text.size(); ++i) word |= Word{static_cast<unsigned char>(text[i])} << (8 * i);
    return word;
}

struct StandardReference {
    Word word;
    Word mask;  // of the bytes that it has
    std::size_t size;
    char value;
};

// Each of the five has a place of its own, by the two bytes after its '&'.
constexpr std::size_t kPlaces = 8;

constexpr std::size_t placeOf(Word word) { return ((word >> 8) ^ (word >> 17)) % kPlaces; }

constexpr std::array<StandardReference, kPlaces> makeStandardReferences() {
    std::array<StandardReference, kPlaces> table{};
    for (auto& entry : table) entry.word = 1;  // is none: nothing masked by 0 is that
    for (const char value : kStandardValues) {
        const std::string_view text = referenceFor(value);
        table[placeOf(wordOf(text))] = {wordOf(text), (Word{1} << (8 * text.size())) - 1, text.size(), value};
    }
    return table;
}

constexpr std::array<StandardReference, kPlaces> kStandardReferences = makeStandardReferences();

constexpr bool haveOwnPlaces() {
    for (const char value : kStandardValues) {
        if (kStandardReferences[placeOf(wordOf(referenceFor(value)))].value != value) return false;
    }
    return true;
}
static_assert(haveOwnPlaces(), "two of the five share a place");

// Where a reference ends, and its value; 0 for one that is not of the usual forms.
struct Usual {
    const char* end;
    char value;
};

// "&#" and few digits, or "&#x" and few hexadecimal ones. No number out of range has so few.
Usual usualCharReference(const char* from, const char* end) {
    if (end - from <= 2 || from[1] != '#') return {from, 0};
    constexpr int kMostDigits = 8;
    const char* at = from + 2;
    const bool hexadecimal = *at == 'x';
    if (hexadecimal) ++at;
    const unsigned base = hexadecimal ? 16 : 10;
    unsigned code = 0;
    for (int i = 0; i < kMostDigits && at != end; ++i, ++at) {
        const unsigned digit = Classic::digitOf(*at);
        if (digit >= base) break;
        code = code * base + digit;
    }
    if (at == end || *at != ';') return {from, 0};
    return {at + 1, static_cast<char>(static_cast<unsigned char>(code))};
}

// --- Text with such references, a stretch at a time ---

constexpr std::ptrdiff_t kAtOnce = 16;
constexpr std::ptrdiff_t kStretch = 64;
constexpr std::ptrdiff_t kLook = kStretch + kAtOnce;  // what is looked at of a stretch and after it

// A bit for each byte of a stretch: whether it is '&'.
std::uint64_t ampersandsIn(const char* stretch) {
    std::uint64_t marks = 0;
    for (std::ptrdiff_t i = 0; i < kStretch; i += Words::kBlockSize)
        marks |= std::uint64_t{Words::marksOf<'&'>(stretch + i)} << i;
    return marks;
}

// Copies [from, to), and some bytes after it that do not count. Returns the end of the copy.
char* copied(const char* from, const char* to, char* out) {
    char* const end = out + (to - from);
    do {
        std::memcpy(out, from, kAtOnce);
        from += kAtOnce;
        out += kAtOnce;
    } while (from < to);
    return end;
}

// Decodes into a block, which is appended to the result whenever it is full. Where the references of a stretch are is
// found at once, and so the look for one does not wait for the end of the last.
class UsualText {
public:
    explicit UsualText(std::string& itsResult) : result(itsResult) {}

    // Takes stretches of the text that ends at `end`, as long as they begin before `to`, up to a reference that is not
    // of the usual forms. After the beginning of each kLook bytes may be looked at; those from `end` on are zeros.
    // Returns the end of what was taken.
    const char* take(const char* from, const char* to, const char* end) {
        while (from < to) {
            if (block + kBlock - filled < kLook) flush();
            char* at = filled;  // a local one: bytes that are stored could be those of a field
            const char* const stretch = from;
            for (std::uint64_t marks = ampersandsIn(stretch); marks != 0; marks &= marks - 1) {
                const char* const reference = stretch + __builtin_ctzll(marks);
                at = copied(from, reference, at);
                from = reference;
                const Word word = Words::wordAt(from);
                const StandardReference& standard = kStandardReferences[placeOf(word)];
                if ((word & standard.mask) == standard.word) {
                    *at++ = standard.value;
                    from += standard.size;
                    continue;
                }
                const auto [next, value] = usualCharReference(from, end);
                if (value == 0) {
                    filled = at;
                    return from;
                }
                *at++ = value;
                from = next;
            }
            const char* const stretchEnd = std::min(stretch + kStretch, end);
            if (from < stretchEnd) {
                at = copied(from, stretchEnd, at);
                from = stretchEnd;
            }
            filled = at;
        }
        return from;
    }

    void flush() {
        result.append(block, filled);
        filled = block;
    }

private:
    static constexpr std::ptrdiff_t kBlock = 1024;

    std::string& result;
    char block[kBlock];
    char* filled = block;
};

}  // namespace

char standardValue(std::string_view name) {
    if (isCharReference(name)) {
        const bool hexadecimal = name[1] == 'x';
        const unsigned code = Classic::extractUnsigned(name.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10);
        return static_cast<char>(static_cast<unsigned char>(code));
    }
    for (const char value : kStandardValues) {
        if (standardNameFor(value) == name) return value;
    }
    return 0;
}

std::size_t appendUsual(std::string& result, std::string_view text) {
    UsualText usual(result);
    const char* const end = text.data() + text.size();
    const char* from = text.data();
    if (end - from >= kLook) from = usual.take(from, end - kLook + 1, end);

    // So little is left that a stretch would look past the end; or it ends before.
    std::ptrdiff_t more = 0;
    if (end - from < kLook) {
        std::array<char, 2 * kLook> padded{};
        const char* const paddedEnd = std::copy(from, end, padded.data());
        more = usual.take(padded.data(), paddedEnd, paddedEnd) - padded.data();
    }
    usual.flush();
    return static_cast<std::size_t>(from - text.data() + more);
}

}  // namespace Xml
