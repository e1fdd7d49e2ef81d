#include "xml/stream/internal/OutRun.h"

#include "xml/text/internal/Escape.h"
#include <algorithm>

namespace Xml {

void OutRun::putAny(std::string_view text) {
    if (!inRuns()) return OutStreamAccess::put(out, text);
    while (!text.empty()) {
        const std::size_t line = std::min(text.find('\n'), text.size());
        if (line > 0) put(text.substr(0, line));
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

void OutRun::putTabs() {
    out.atLineStart = false;
    OutStreamAccess::eachRunOfTabs(out, [this](std::string_view tabs) {
        append(tabs);
        return true;
    });
}

void OutRun::appendSlowly(std::string_view text) {
    if (bytes == nullptr) bytes = std::make_unique<char[]>(kRoom);
    if (text.size() > kRoom - used) flush();
    if (inRuns() && text.size() <= kRoom) return append(text);
    OutStreamAccess::putAsIs(out, text);
}

}  // namespace Xml
