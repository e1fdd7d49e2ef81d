#include "xml/stream/OutStream.h"

#include "xml/stream/internal/OutStreamAccess.h"
#include <cstring>

namespace Xml {

OutStream::OutStream() = default;

OutStream::~OutStream() = default;

bool OutStream::isValid() const { return true; }

void OutStream::put(char c) { putIndented(&c, 1); }

void OutStream::put(const std::string& text) { putIndented(text.data(), text.size()); }

OutStream& OutStream::operator<<(char c) {
    put(c);
    return *this;
}

OutStream& OutStream::operator<<(const std::string& text) {
    put(text);
    return *this;
}

OutStream& OutStream::writeDataHolder(const DataHolder& data) {
    OutStreamAccess::putAsIs(*this, data);
    return *this;
}

void OutStream::incTab() { OutStreamAccess::incTab(*this); }

void OutStream::decTab() { OutStreamAccess::decTab(*this); }

bool OutStream::putChars(const char*, std::size_t) { return false; }

std::int64_t OutStream::countFrom() const { return -1; }

// Writes in runs: tabs are due only where a line begins, so a run reaches to the end of its line, or of the text when
// there are no tabs to write. A sink that takes one byte at a time may look at the stream with each, so it gets them by
// the rule.
void OutStream::putIndented(const char* bytes, std::size_t count) {
    const char* const end = bytes + count;
    while (bytes != end) {
        const char* runEnd = end;
        if (tabLevel > 0) {
            if (atLineStart && *bytes != '\n' && !putTabs()) return putByBytes(bytes, end);
            const auto* const lineEnd =
                static_cast<const char*>(std::memchr(bytes, '\n', static_cast<std::size_t>(end - bytes)));
            if (lineEnd != nullptr) runEnd = lineEnd + 1;
        }
        if (!putChars(bytes, static_cast<std::size_t>(runEnd - bytes))) return putByBytes(bytes, end);
        bytes = runEnd;
        atLineStart = bytes[-1] == '\n';
    }
}

bool OutStream::putTabs() {
    return OutStreamAccess::eachRunOfTabs(*this,
                                          [this](std::string_view tabs) { return putChars(tabs.data(), tabs.size()); });
}

// The rule for each byte. The sink may change the level, or put more, from within any putChar.
void OutStream::putByBytes(const char* bytes, const char* end) {
    for (; bytes != end; ++bytes) {
        if (*bytes == '\n') {
            atLineStart = true;
        } else if (atLineStart) {
            atLineStart = false;
            for (std::int32_t i = 0; i < tabLevel; ++i) putChar('\t');
        }
        putChar(*bytes);
    }
}

}  // namespace Xml
