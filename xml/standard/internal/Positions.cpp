#include "xml/standard/internal/Positions.h"

#include "xml/stream/internal/Scan.h"
#include <algorithm>

namespace Xml {

namespace {

bool beginsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }

}  // namespace

void Positions::advance(Mark& mark, std::int64_t to) const {
    const char* at = window.data() + (mark.offset - first.offset);
    const char* const end = window.data() + (to - first.offset);
    while (at != end) {
        const char* const lineEnd = Scan::findAny<'\n', '\r'>(at, end);
        mark.column += static_cast<int>(std::count_if(at, lineEnd, beginsCharacter));
        if (lineEnd != at) mark.isAfterReturn = false;
        at = lineEnd;
        if (at == end) break;
        if (*at == '\r' || !mark.isAfterReturn) {
            ++mark.line;
            mark.column = 1;
        }
        mark.isAfterReturn = *at == '\r';
        ++at;
    }
    mark.offset = to;
}

void Positions::release(std::size_t byteCount) {
    const std::int64_t to = first.offset + static_cast<std::int64_t>(byteCount);
    Mark mark = last.offset <= to ? last : first;
    advance(mark, to);
    first = last = mark;
    window.remove_prefix(byteCount);
}

Place Positions::of(std::int64_t offset) const {
    if (offset < last.offset) last = first;
    advance(last, offset);
    return {last.offset, last.line, last.column};
}

std::string excerptOf(std::string_view text, std::size_t at) {
    constexpr std::size_t kMost = 160;
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    std::size_t from = at;
    std::size_t before = 0;  // characters
    while (from > 0 && !isLineEnd(text[from - 1])) {
        std::size_t next = from - 1;
        while (next > 0 && !beginsCharacter(text[next])) --next;
        if (before == kMost / 2) break;
        ++before;
        from = next;
    }
    std::string line;
    std::string below;
    std::size_t count = 0;
    for (std::size_t i = from; i < text.size() && !isLineEnd(text[i]) && count < kMost; ++count) {
        std::size_t next = i + 1;
        while (next < text.size() && !beginsCharacter(text[next])) ++next;
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
