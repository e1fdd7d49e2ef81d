#include "xml/text/internal/Escape.h"

#include <array>
#include <cstddef>

namespace Xml {

namespace {

constexpr std::array<bool, 256> makeTable() {
    std::array<bool, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte] = byte == '\n' || !referenceFor(static_cast<char>(byte)).empty();
    return table;
}

constexpr std::array<bool, 256> kSpecial = makeTable();

}  // namespace

const char* findSpecial(const char* from, const char* end) {
#ifdef __SSE2__
    constexpr std::ptrdiff_t kAtOnce = 16;
    for (; end - from >= kAtOnce; from += kAtOnce) {
        const unsigned found = specialsAmong(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        if (found != 0) return from + __builtin_ctz(found);
    }
#endif
    while (from != end && !kSpecial[static_cast<unsigned char>(*from)]) ++from;
    return from;
}

void appendEscaped(std::string& result, std::string_view text) {
    const char* done = text.data();
    const char* const end = done + text.size();
    for (const char* at = done;; ++at) {
        at = findSpecial(at, end);
        if (at == end) break;
        const std::string_view reference = referenceFor(*at);
        if (reference.empty()) continue;
        result.append(done, at).append(reference);
        done = at + 1;
    }
    result.append(done, end);
}

}  // namespace Xml
