#include "xml/stream/internal/OutRun.h"

#include "xml/text/internal/Escape.h"
#include <algorithm>

namespace Xml {

// As OutStream::put; a text that has no line feed.
void OutRun::putOne(std::string_view text) {
    if (text.empty()) return;
    if (!inRuns()) return OutStreamAccess::put(out, text);
    if (out.atLineStart) putTabs();
    append(text);
}

void OutRun::putAny(std::string_view text) {
    if (!inRuns()) return OutStreamAccess::put(out, text);
    while (!text.empty()) {
        const std::size_t line = std::min(text.find('\n'), text.size());
        putOne(text.substr(0, line));
        if (line == text.size()) return;
        putLineFeed();
        text.remove_prefix(line + 1);
    }
}

void OutRun::putEscaped(std::string_view text) {
    const char* done = text.data();
    const char* const end = done + text.size();
    for (;;) {
        const char* const at = findSpecial(done, end);
        if (at != done) put({done, static_cast<std::size_t>(at - done)});
        if (at == end) return;
        if (*at == '\n') {
            putLineFeed();
        } else {
            put(referenceFor(*at));
        }
        done = at + 1;
    }
}

void OutRun::putAttributeInPieces(std::string_view name, std::string_view value) {
    put(" ");
    putAny(name);
    put("=\"");
    putEscaped(value);
    put("\"");
}

void OutRun::putTabs() {
    out.atLineStart = false;
    OutStreamAccess::eachRunOfTabs(out, [this](std::string_view tabs) {
        append(tabs);
        return true;
    });
}

// Room for so many bytes, and the tabs before them. False where there is none: for too many, or where the sink does not
// count any more.
bool OutRun::makeRoom(std::size_t size) {
    if (size > kRoom) return false;
    takeMemory();
    flush();  // a sink may change the level of tabs
    return inRuns() && size + (out.atLineStart ? roomForTabs() : 0) <= kRoom;
}

void OutRun::appendSlowly(std::string_view text) {
    takeMemory();
    if (text.size() > capacity - used) flush();
    if (inRuns() && text.size() <= capacity) return append(text);
    OutStreamAccess::putAsIs(out, text);
}

void OutRun::takeMemory() {
    if (bytes != nullptr) return;
    bytes = std::make_unique<char[]>(kRoom);
    capacity = kRoom;
}

}  // namespace Xml
