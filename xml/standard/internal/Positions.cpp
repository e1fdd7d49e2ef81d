#include "xml/standard/internal/Positions.h"

#include "xml/standard/internal/Utf8.h"

namespace Xml {

void Positions::release(std::size_t byteCount) {
    const std::int64_t to = first + static_cast<std::int64_t>(byteCount);
    places.forget(to, window, first);
    window.remove_prefix(byteCount);
    first = to;
}

Place Positions::of(std::int64_t offset) const {
    const TextPosition& place = places.at(offset, window, first);
    return {place.offset, static_cast<int>(place.line), static_cast<int>(place.column)};
}

std::string excerptOf(std::string_view text, std::size_t at) {
    constexpr std::size_t kMost = 160;
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    std::size_t from = at;
    std::size_t before = 0;  // characters
    while (from > 0 && !isLineEnd(text[from - 1])) {
        std::size_t next = from - 1;
        while (next > 0 && Utf8::goesOn(text[next])) --next;
        if (before == kMost / 2) break;
        ++before;
        from = next;
    }
    std::string line;
    std::string below;
    std::size_t count = 0;
    for (std::size_t i = from; i < text.size() && !isLineEnd(text[i]) && count < kMost; ++count) {
        std::size_t next = i + 1;
        while (next < text.size() && Utf8::goesOn(text[next])) ++next;
        const bool isHidden = (static_cast<unsigned char>(text[i]) < 0x20 && text[i] != '\t') || text[i] == '\x7F';
        if (isHidden) {
            line += "\xEF\xBF\xBD";
        } else {
            line += text.substr(i, next - i);
        }
        if (i < at) below += text[i] == '\t' ? '\t' : ' ';
        i = next;
    }
    return line + "\n" + below + "^";
}

}  // namespace Xml
