#include "xml/stream/internal/Cursor.h"

#include <cstddef>
#include <cstring>

namespace Xml {

bool Cursor::fetch(InStream& in, char& c) {
    if (in.window.loan == Window::Loan::Never) return in.getChar(c);
    if (in.window.loan == Window::Loan::ForGood) return false;
    in.releaseWindow();
    if (!in.lendBytes(in.window)) return in.getChar(c);
    c = *in.window.cursor++;
    return true;
}

bool Cursor::appendThrough(InStream& in, std::string& text, char last) {
    Window& window = in.window;
    for (;;) {
        if (window.cursor != window.end) {
            const char* const from = window.cursor;
            const auto* const found =
                static_cast<const char*>(std::memchr(from, last, static_cast<std::size_t>(window.end - from)));
            const char* const to = found != nullptr ? found + 1 : window.end;
            text.append(from, to);
            window.cursor = to;
            noteRun(in, from, to);
            if (found != nullptr) return true;
        }
        char c;
        if (!Cursor(in).next(c)) return false;
        text += c;
        if (c == last) return true;
    }
}

void Cursor::noteBreakByte(InStream& in, char c) {
    in.lineBreaks.noteBreakByte(c, [&in] { return positionIn(in); });
}

void Cursor::seek(InStream& in, int position) {
    Window& window = in.window;
    if (window.isLent()) {
        const int begin = positionOf(in, window.begin);
        if (position >= begin && position - begin <= window.end - window.begin) {
            window.cursor = window.begin + (position - begin);
            return;
        }
    }
    in.setPosition(position);
}

}  // namespace Xml
