#include "xml/stream/OutStream.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Xml {

namespace {

constexpr char kTabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";

}  // namespace

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
    if (!data.empty()) putChars(data.data(), data.size());
    return *this;
}

void OutStream::incTab() {
    if (tabLevel < std::numeric_limits<std::int32_t>::max()) ++tabLevel;
}

void OutStream::decTab() {
    if (tabLevel > 0) --tabLevel;
}

void OutStream::putChars(const char* bytes, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) putChar(bytes[i]);
}

std::int64_t OutStream::countFrom() const { return -1; }

// Writes in runs: tabs are due only where a line begins, so a run reaches to the end of its line, or of the text when there
// are no tabs to write.
void OutStream::putIndented(const char* bytes, std::size_t count) {
    const char* const end = bytes + count;
    while (bytes != end) {
        const char* runEnd = end;
        if (tabLevel > 0) {
            if (*bytes != '\n' && atLineStart) putTabs();
            const auto* const lineEnd =
                static_cast<const char*>(std::memchr(bytes, '\n', static_cast<std::size_t>(end - bytes)));
            if (lineEnd != nullptr) runEnd = lineEnd + 1;
        }
        putChars(bytes, static_cast<std::size_t>(runEnd - bytes));
        bytes = runEnd;
        atLineStart = bytes[-1] == '\n';
    }
}

void OutStream::putTabs() {
    constexpr auto kMost = static_cast<std::int32_t>(sizeof(kTabs) - 1);
    for (std::int32_t left = tabLevel; left > 0; left -= kMost) {
        putChars(kTabs, static_cast<std::size_t>(std::min(left, kMost)));
    }
}

}  // namespace Xml
