#include "xml/standard/internal/TextWindows.h"

#include <algorithm>

namespace Xml {

bool WholeText::advance(Lexer& lexer) {
    if (how != Ending::None) return false;
    if (limit > 0 && source.size() > static_cast<std::uint64_t>(limit)) {
        how = Ending::TooLong;
        return false;
    }
    text.emplace(source, encoding);
    how = text->decoder().failure() ? Ending::Undecodable : Ending::Whole;
    lexer.setWindow(text->text(), how == Ending::Whole);
    return true;
}

const char* WholeText::newline() {
    if (text && !isLookedAt) {
        lineEnd.look(text->text());
        isLookedAt = true;
    }
    return lineEnd.text();
}

bool StreamText::advance(Lexer& lexer) {
    constexpr std::size_t kShort = 4096;  // where it costs little to try again
    constexpr int kTries = 16;
    constexpr int kTriesOfLong = 2;
    if (how != Ending::None) return false;
    const std::size_t done = lexer.release();
    begin += done;
    tries = done > 0 ? 0 : tries + 1;
    dropRead(lexer);

    const std::size_t before = text.size();
    const std::size_t left = before - begin;
    const std::size_t wanted = before + (tries <= (left < kShort ? kTries : kTriesOfLong) ? 1 : left);
    while (how == Ending::None && text.size() < wanted) read();
    lexer.setWindow(std::string_view(text).substr(begin), how == Ending::Whole);
    return how == Ending::None || how == Ending::Whole || text.size() > before;
}

// What is moved is no longer than what goes.
void StreamText::dropRead(const Lexer& lexer) {
    constexpr std::size_t kContext = 512;  // has the line before a place, as far as a message shows it
    constexpr std::size_t kFew = 4096;
    if (begin < kContext + std::max(kFew, text.size() - begin)) return;
    text.erase(0, begin - kContext);
    begin = kContext;
    decoding.forget(lexer.windowBegin());
}

void StreamText::read() {
    const StreamBytes::Ending ending = bytes.read(piece);
    const std::size_t before = text.size();
    if (ending == StreamBytes::Ending::Unreadable) {
        how = Ending::Unreadable;
    } else if (ending == StreamBytes::Ending::End) {
        how = decoding.finish(text) ? Ending::Whole : Ending::Undecodable;
    } else {
        taken += static_cast<std::int64_t>(piece.size());
        if (limit > 0 && taken > limit) {
            piece.resize(piece.size() - static_cast<std::size_t>(taken - limit));
            how = Ending::TooLong;
        }
        if (!decoding.decode(piece, text)) how = Ending::Undecodable;
    }
    lineEnd.look(std::string_view(text).substr(before));
}

}  // namespace Xml
