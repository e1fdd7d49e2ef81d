#include "xml/stream/internal/Tokenizer.h"

#include "xml/stream/internal/Openers.h"
#include "xml/text/Names.h"
#include "xml/text/internal/ByteClasses.h"
#include <functional>
#include <utility>

// Line breaks are noted where bytes are consumed, also by attempts that are undone later, because undoing restores the
// position and the parse buffer only. Shortcuts must leave the same breaks.

namespace Xml {

bool Tokenizer::readToken() {
    const Plain plain = readPlain(Purpose::Token);
    return plain == Plain::LessThan ? readMarkup() : plain == Plain::Read;
}

Tokenizer::Plain Tokenizer::readPlain(Purpose purpose) {
    Cursor cursor(in);
    skipWhite();
    char c;
    if (!cursor.next(c)) {
        endOfData();
        return Plain::Failed;
    }
    if (c == '"' || c == '\'') {
        cursor.stepBack();
        return readString() ? Plain::Read : Plain::Failed;
    }
    buffer() += c;
    if (c == '<') return Plain::LessThan;
    if (c == '&') return readReference(purpose);
    if (c == '/') {
        readSlash();
    } else if (!ByteClass::is(c, ByteClass::kPunctuation)) {
        readWord();
    }
    return Plain::Read;
}

// The rest of a token whose '/' is in the parse buffer.
void Tokenizer::readSlash() {
    Cursor cursor(in);
    char c;
    if (!cursor.next(c)) {
        endOfData();  // the slash counts all the same
    } else if (c == '>') {
        buffer() += c;
    } else {
        cursor.stepBack();
    }
}

// The rest of a reference, whose '&' is in the parse buffer.
Tokenizer::Plain Tokenizer::readReference(Purpose purpose) {
    Cursor cursor(in);
    ReadAhead* const ahead = purpose == Purpose::Trial ? readAhead() : nullptr;
    const int begin = ahead != nullptr ? cursor.tell() - 1 : -1;
    if (isPlace(begin)) {
        if (const ReadAhead::Reference* const known = ahead->referenceFrom(begin)) {
            if (!isPlace(known->end)) {
                in.lineBreaks.setAfterReturn(known->endsInReturn);  // as reading on to the end of the data leaves it
                endOfData();
                return Plain::Failed;
            }
            buffer() += ';';  // what is between decides nothing: no trial goes on with a reference
            return Plain::Read;
        }
    }
    const std::size_t from = buffer().size() - 1;
    const bool ends = cursor.appendThrough(buffer(), ';');
    if (ahead != nullptr) {
        std::shared_ptr<const std::string> text;
        if (ends && isPlace(begin)) text = std::make_shared<const std::string>(buffer(), from);
        ahead->setReference({begin, ends ? cursor.tell() : -1, in.lineBreaks.isAfterReturn(), std::move(text)});
    }
    if (!ends) endOfData();
    return ends ? Plain::Read : Plain::Failed;
}

// The rest of a word, whose first byte is in the parse buffer.
void Tokenizer::readWord() {
    Cursor cursor(in);
    const auto endsWord = [](char c) { return ByteClass::is(c, ByteClass::kWordEnd); };
    for (;;) {
        cursor.appendOthersBefore(buffer(), endsWord);
        char c;
        if (!cursor.next(c)) {
            endOfData();  // the word counts all the same
            return;
        }
        if (endsWord(c)) {
            cursor.stepBack();
            return;
        }
        buffer() += c;
    }
}

bool Tokenizer::readName() {
    const std::size_t before = buffer().size();
    if (!readToken()) return false;
    const char* const token = buffer().data() + before;
    const std::size_t length = buffer().size() - before;
    if (isName(token, static_cast<int>(length))) return true;
    setError("not a name: ");
    in.error.string().append(token, length);
    return false;
}

bool Tokenizer::readString() {
    Cursor cursor(in);
    skipWhite();
    char quote;
    if (!cursor.next(quote)) return endOfData();
    if (quote != '"' && quote != '\'') {
        setLastingError("\"\"\" or \"'\" expected");
        return false;
    }
    buffer() += quote;
    return cursor.appendThrough(buffer(), quote) || endOfData();
}

bool Tokenizer::readMarkup() { return Openers(*this).read(); }

void Tokenizer::skipWhite() {
    Cursor cursor(in);
    char c;
    do {
        if (!cursor.next(c)) {
            endOfData();
            return;
        }
    } while (ByteClass::is(c, ByteClass::kWhite));
    cursor.stepBack();
}

bool Tokenizer::readData(std::string& data) {
    Cursor cursor(in);
    if (!cursor.appendThrough(data, '<')) return endOfData();
    data.pop_back();
    cursor.stepBack();
    return true;
}

bool Tokenizer::readThrough(std::string_view terminator) {
    Cursor cursor(in);
    const int length = static_cast<int>(terminator.size());
    for (std::size_t i = 0; i < terminator.size(); ++i) {
        char c;
        if (!cursor.next(c)) return endOfData();
        buffer() += c;
    }
    while (!in.CheckParseBufferEnd(terminator.data(), length)) {
        if (!cursor.appendThrough(buffer(), terminator.back())) return endOfData();
    }
    return true;
}

bool Tokenizer::readContentToken(int& referenceEnd) {
    Cursor cursor(in);
    skipWhite();
    const int position = cursor.tell();
    char c = 0;
    if (isPlace(position) && position < referenceEnd && cursor.readUnnoted(c)) {
        if (c == '&') {
            in.lineBreaks.noteOthers();
            buffer() = c;
            return true;
        }
        cursor.stepBack();
    }
    if (!readToken()) return false;
    if (buffer()[0] == '&') referenceEnd = cursor.tell();
    return true;
}

bool Tokenizer::expectToken(const char* text, int length) {
    if (length < 1) return readToken();
    // What is expected may lie in the message, which reading a token replaces.
    const std::string_view message = in.error.view();
    std::string kept;
    if (!std::less<>()(text, message.data()) && std::less<>()(text, message.data() + message.size())) {
        kept.assign(text, static_cast<std::size_t>(length));
        text = kept.data();
    }
    return readToken() && expectEnd(text, length);
}

bool Tokenizer::expectEnd(const char* text, int length) {
    if (in.CheckParseBufferEnd(text, length)) return true;
    setError("\"");
    in.error.string().append(text, static_cast<std::size_t>(length)).append("\" expected");
    return false;
}

void Tokenizer::setError(std::string_view text) {
    in.error.set(text);
    if (in.readAhead != nullptr) in.readAhead->messageReplaced();
}

void Tokenizer::setLastingError(std::string_view text) {
    in.error.setLasting(text);
    if (in.readAhead != nullptr) in.readAhead->messageReplaced();
}

bool Tokenizer::endOfData() {
    setLastingError(in.isTooLarge(in.window) ? "Source too large" : "Unexpected end of stream");
    return false;
}

ReadAhead* Tokenizer::readAhead() {
    const bool bytesStay = in.nesting.isReaderAtWork() || in.window.loan == Window::Loan::ForGood;
    if (!bytesStay || !ReadAhead::isEnabled()) return nullptr;
    if (in.readAhead == nullptr) in.readAhead = std::make_unique<ReadAhead>();
    return in.readAhead.get();
}

}  // namespace Xml
