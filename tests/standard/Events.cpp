#include "standard/Events.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

std::string shown(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\n')
            result += "\\n";
        else if (c == '\r')
            result += "\\r";
        else if (c == '\t')
            result += "\\t";
        else
            result += c;
    }
    return result;
}

std::size_t afterCharacters(std::string_view text, std::size_t from, std::size_t count) {
    const auto begins = [&](std::size_t i) { return (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80; };
    while (from < text.size() && count > 0) {
        ++from;
        if (from == text.size() || begins(from)) --count;
    }
    return from;
}

}  // namespace

void EventLines::flush() {
    if (!pending.empty()) lines += "'" + shown(pending) + "'\n";
    pending.clear();
}
void EventLines::start(std::string_view name) {
    flush();
    lines += "<" + std::string(name) + "\n";
}
void EventLines::attribute(std::string_view name, std::string_view value, bool isDefault) {
    lines += "  " + std::string(name) + "='" + shown(value) + "'" + (isDefault ? "*" : "") + "\n";
}
void EventLines::end() {
    flush();
    lines += ">\n";
}
void EventLines::text(std::string_view text) { pending += text; }
void EventLines::comment(std::string_view text) {
    flush();
    lines += "!" + shown(text) + "\n";
}
void EventLines::instruction(std::string_view target, std::string_view content) {
    flush();
    lines += "?" + std::string(target) + " " + shown(content) + "\n";
}
void EventLines::doctype(std::string_view name, std::string_view systemId) {
    lines += "D" + std::string(name) + " '" + shown(systemId) + "'\n";
}
std::string EventLines::take() {
    flush();
    return std::move(lines);
}

Lexed lex(std::string_view text, const Lexer::Options& options, std::size_t chunk) {
    Lexed result;
    EventLines lines;
    Lexer lexer(options);
    std::vector<char> window;  // of exactly the bytes that are there
    std::size_t given = chunk == 0 ? text.size() : afterCharacters(text, 0, chunk);
    const auto show = [&](std::size_t from) {
        window = std::vector<char>(text.begin() + static_cast<std::ptrdiff_t>(from),
                                   text.begin() + static_cast<std::ptrdiff_t>(given));
        lexer.setWindow({window.data(), window.size()}, given == text.size());
    };
    show(0);
    for (;;) {
        switch (lexer.next()) {
        case Lexer::Event::Start:
            result.isInContent = true;
            lines.start(lexer.name());
            for (const TagAttribute& a : lexer.attributes()) lines.attribute(a.name, a.value, a.isDefault);
            break;
        case Lexer::Event::End: lines.end(); break;
        case Lexer::Event::Text:
        case Lexer::Event::CData: lines.text(lexer.text()); break;
        case Lexer::Event::Comment: lines.comment(lexer.text()); break;
        case Lexer::Event::Instruction: lines.instruction(lexer.name(), lexer.text()); break;
        case Lexer::Event::Doctype: lines.doctype(lexer.name(), lexer.doctype().systemId); break;
        case Lexer::Event::More: {
            const std::size_t read = lexer.release();
            const std::size_t from = given - (window.size() - read);
            given = afterCharacters(text, given, chunk);
            show(from);
            break;
        }
        case Lexer::Event::Finished: result.isAccepted = true; [[fallthrough]];
        case Lexer::Event::Failed:
            result.events = lines.take();
            if (!result.isAccepted) result.fault = lexer.fault();
            result.declaredEncoding = lexer.declaration().encoding;
            result.hasUnread = lexer.declarations().hasUnread;
            return result;
        }
    }
}

}  // namespace Xml::test
