#include "xml/standard/internal/Excerpt.h"

#include "xml/text/internal/Utf8.h"
#include <algorithm>

namespace Xml {

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";

void appendVisible(std::string& to, const char* character, Utf8::Character c) {
    if (isControl(c.value)) {
        to += kReplacement;
    } else {
        to.append(character, static_cast<std::size_t>(c.size));
    }
}

// Where a character begins, that many before or after `at`.
std::size_t back(std::string_view text, std::size_t at, std::size_t count) {
    for (; count > 0 && at > 0; --count) {
        do {
            --at;
        } while (at > 0 && Utf8::goesOn(text[at]));
    }
    return at;
}
std::size_t forward(std::string_view text, std::size_t at, std::size_t count) {
    for (; count > 0 && at < text.size(); --count) {
        do {
            ++at;
        } while (at < text.size() && Utf8::goesOn(text[at]));
    }
    return at;
}

void appendWord(std::string& to, std::string_view word) {
    constexpr std::size_t kMost = 80;
    constexpr std::size_t kFirst = 45;
    constexpr std::size_t kLast = 30;
    if (forward(word, 0, kMost) == word.size()) {
        to += word;
    } else {
        to.append(word.substr(0, forward(word, 0, kFirst))).append("...");
        to.append(word.substr(back(word, word.size(), kLast)));
    }
}

}  // namespace

bool isControl(char32_t c) {
    const auto isAmong = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
    return c < 0x20 || isAmong(0x7F, 0x9F) || c == 0x061C || isAmong(0x200E, 0x200F) || isAmong(0x2028, 0x202E) ||
           isAmong(0x2066, 0x2069);
}

std::string visible(std::string_view text) {
    std::string result;
    const char* at = text.data();
    for (const char* const end = at + text.size(); at != end;) {
        const char* const good = Utf8::check(at, end).end;
        while (at != good) {
            const Utf8::Character c = Utf8::at(at);
            appendVisible(result, at, c);
            at += c.size;
        }
        if (at == end) break;
        result += kReplacement;
        ++at;
    }
    return result;
}

std::string messageLine(std::string_view text) {
    const std::string shown = visible(text);
    std::string line;
    for (std::size_t from = 0;;) {
        const std::size_t to = std::min(shown.find(' ', from), shown.size());
        appendWord(line, std::string_view(shown).substr(from, to - from));
        if (to == shown.size()) return line;
        line += ' ';
        from = to + 1;
    }
}

std::string excerptOf(std::string_view text, std::size_t at) {
    constexpr std::size_t kMost = 160;
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    const std::size_t earliest = back(text, at, kMost / 2);
    std::size_t from = at;
    while (from > earliest && !isLineEnd(text[from - 1])) --from;
    std::string line;
    std::string below;
    std::size_t count = 0;
    for (std::size_t i = from; i < text.size() && !isLineEnd(text[i]) && count < kMost; ++count) {
        const Utf8::Character c = Utf8::at(text.data() + i);
        if (c.value == '\t') {
            line += '\t';
        } else {
            appendVisible(line, text.data() + i, c);
        }
        if (i < at) below += c.value == '\t' ? '\t' : ' ';
        i += static_cast<std::size_t>(c.size);
    }
    return line + "\n" + below + "^";
}

}  // namespace Xml
