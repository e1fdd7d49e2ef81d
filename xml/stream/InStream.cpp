#include "xml/stream/InStream.h"

#include "xml/stream/internal/Bytes.h"
#include "xml/stream/internal/Markup.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/Names.h"
#include "xml/text/internal/ByteClasses.h"
#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <utility>

// The tokenizer. It reads a byte with line tracking, looks at it, and steps back where it went too far; everything is told in
// these terms, and holds for every source. Where a source offers its bytes in memory (the window), runs of bytes are taken at
// once and stepping back moves a pointer: the same results, without a virtual call a byte.
//
// Line breaks are recorded where bytes are consumed, also by attempts that are undone later, because undoing restores the
// position and the parse buffer only. Shortcuts must leave the same breaks behind.

namespace Xml {

InStream::InStream() = default;

InStream::InStream(const WindowSource* source) : windowSource(source) {}

InStream::~InStream() = default;

// --- Bytes ---

void InStream::giveWindowBack() const {
    windowSource->release(*this);
    window = Window();
}

bool InStream::fetch(char& c) {
    releaseWindow();
    if (windowSource == nullptr || !windowSource->acquire(*this)) return getChar(c);
    c = *window.cursor++;
    return true;
}

// Consumes up to and including the next `last`, appending; false at the end of the data.
bool InStream::appendThrough(std::string& text, char last) {
    for (;;) {
        if (window.cursor != window.end) {
            const char* const from = window.cursor;
            const auto* const found =
                static_cast<const char*>(std::memchr(from, last, static_cast<std::size_t>(window.end - from)));
            const char* const to = found != nullptr ? found + 1 : window.end;
            text.append(from, to);
            window.cursor = to;
            trackRun(from, to);
            if (found != nullptr) return true;
        }
        char c;
        if (!next(c)) return false;
        text += c;
        if (c == last) return true;
    }
}

// --- Lines and positions ---

void InStream::trackBreak(char c) {
    if (previousWasCR) recordBreak(tell());
    previousWasCR = c == '\r';
}

// Tracks bytes of the window that have been consumed in a run.
void InStream::trackRun(const char* from, const char* to) {
    while (from != to) {
        if (previousWasCR) {
            const char c = *from++;
            if (c == '\r' || c == '\n') recordBreak(positionOf(from));
            previousWasCR = c == '\r';
        } else {
            from = static_cast<const char*>(std::memchr(from, '\r', static_cast<std::size_t>(to - from)));
            if (from == nullptr) return;
            ++from;
            previousWasCR = true;
        }
    }
}

void InStream::recordBreak(int position) {
    if (lineBreaksRise) {
        if (lineBreaks.empty() || lineBreaks.back() < position) {
            lineBreaks.push_back(position);
            return;
        }
        // What is read again after backtracking is here already.
        if (std::binary_search(lineBreaks.begin(), lineBreaks.end(), position)) return;
        lineBreakSet.insert(lineBreaks.begin(), lineBreaks.end());
        lineBreaksRise = false;
    }
    if (lineBreaks.size() == lineBreaks.capacity()) lineBreaks.reserve(2 * lineBreaks.size());
    if (lineBreakSet.insert(position).second) lineBreaks.push_back(position);  // has room: both or none
}

int InStream::positionOf(const char* byte) const {
    if (window.base < 0) window.base = windowSource->base(*this);
    return window.base + static_cast<int>(byte - window.begin);
}

// getPosition() without giving the window back.
int InStream::tell() const { return window.held ? positionOf(window.cursor) : getPosition(); }

// setPosition() without giving the window back where the position lies in it.
void InStream::seek(int position) {
    if (window.held) {
        const int begin = positionOf(window.begin);
        if (position >= begin && position - begin <= window.end - window.begin) {
            window.cursor = window.begin + (position - begin);
            return;
        }
    }
    setPosition(position);
}

int InStream::getLine() const {
    if (lineBreaks.empty()) return 1;
    const int position = tell();
    const auto end = lineBreaks.end();
    auto found = end;
    if (!lineBreaksRise) {
        found = std::find(lineBreaks.begin(), end, position);
    } else {
        found = std::lower_bound(lineBreaks.begin(), end, position);
        if (found != end && *found != position) found = end;
    }
    return static_cast<int>(found != end ? found - lineBreaks.begin() + 1 : end - lineBreaks.begin());
}

int InStream::getColumn() const {
    const int position = tell();
    const auto first = lineBreaksRise ? std::lower_bound(lineBreaks.begin(), lineBreaks.end(), position)
                                      : std::find_if(lineBreaks.begin(), lineBreaks.end(),
                                                     [position](int b) { return b >= position; });
    return first == lineBreaks.begin() ? position : position - *(first - 1);
}

// --- Failures ---

const std::string& InStream::getErrorMessage() const {
    if (errorReference != nullptr) {
        errorMessage.append(*errorReference, errorReferenceFrom);
        errorReference.reset();
    }
    return errorMessage;
}

void InStream::setError(std::string_view text) {
    errorMessage = text;
    errorReference.reset();
    ++errorCount;
}

// "not a name: " and the reference that was met last. It may be as long as the source, and as often, and is mostly replaced before
// anybody asks: it is put together when somebody does.
void InStream::setReferenceError() {
    setError("not a name: ");
    errorReference = readReference.text;
    const std::size_t size = errorReference->size();
    const int length = std::max(readReference.end - readReference.begin, 0);
    errorReferenceFrom = size - std::min(size, static_cast<std::size_t>(length));
}

// Whether the reference that begins there ends where the last one did, or does not end either.
bool InStream::isKnownReference(int position) {
    return isPlace(readReference.begin) && position >= readReference.begin &&
           (!isPlace(readReference.end) || position < readReference.end);
}

void InStream::forgetWhatWasRead() {
    if (!readMarkups.empty()) readMarkups.clear();
    readReference = {};
}

bool InStream::endOfData() {
    setError(tooLarge ? "Source too large" : "Unexpected end of stream");
    return false;
}

bool InStream::expected(const char* text, int length) {
    setError("\"");
    if (length > 0) errorMessage.append(text, static_cast<std::size_t>(length));
    errorMessage += "\" expected";
    return false;
}

// --- Tokens ---

bool InStream::getToken(std::string& token) {
    parseBuffer.clear();
    if (!getTokenInParseBuffer()) return false;
    token = parseBuffer;
    return true;
}

bool InStream::getTokenInParseBuffer() {
    const Use use(*this);
    const Plain plain = readPlainToken();
    return plain == Plain::Markup ? readMarkup() : plain == Plain::Read;
}

// Reads a token that does not begin with '<'; of one that does, appends only that.
InStream::Plain InStream::readPlainToken() {
    eatWhite();
    char c;
    if (!next(c)) {
        endOfData();
        return Plain::Failed;
    }
    if (c == '"' || c == '\'') {
        stepBack();
        return getStringInParseBuffer() ? Plain::Read : Plain::Failed;
    }
    parseBuffer += c;
    if (c == '<') return Plain::Markup;
    if (c == '&') return readReferenceToken();
    if (c == '/') {
        if (!next(c)) {
            endOfData();
        } else if (c == '>') {
            parseBuffer += c;
        } else {
            stepBack();
        }
        return Plain::Read;
    }
    if (!ByteClass::is(c, ByteClass::kPunctuation)) readWord();
    return Plain::Read;
}

// The rest of a reference, whose '&' is in the parse buffer.
InStream::Plain InStream::readReferenceToken() {
    const bool mayRemember = !openMarkup.empty() && remembers();
    const int begin = mayRemember ? tell() - 1 : -1;
    if (mayRemember && isPlace(begin) && isKnownReference(begin)) {
        if (!isPlace(readReference.end)) {
            previousWasCR = readReference.endsInCR;  // as reading on to the end of the data leaves it
            endOfData();
            return Plain::Failed;
        }
        readReference.begin = begin;
        parseBuffer += ';';  // what is between decides nothing: no trial goes on with a reference
        return Plain::Read;
    }
    const std::size_t from = parseBuffer.size() - 1;
    const bool ends = appendThrough(parseBuffer, ';');
    if (mayRemember) {
        std::shared_ptr<const std::string> text;
        if (ends && isPlace(begin)) text = std::make_shared<const std::string>(parseBuffer, from);
        readReference = {begin, ends ? tell() : -1, previousWasCR, std::move(text)};
    }
    if (!ends) endOfData();
    return ends ? Plain::Read : Plain::Failed;
}

// The rest of a word, whose first byte is in the parse buffer.
void InStream::readWord() {
    for (;;) {
        const char* const from = window.cursor;
        const char* const end = window.end;
        const char* to = from;
        while (to != end && !ByteClass::is(*to, ByteClass::kWordEnd)) ++to;
        if (to != from) {
            parseBuffer.append(from, to);
            window.cursor = to;
            previousWasCR = false;
        }
        char c;
        if (!next(c)) {
            endOfData();  // the word counts all the same
            return;
        }
        if (ByteClass::is(c, ByteClass::kWordEnd)) {
            stepBack();
            return;
        }
        parseBuffer += c;
    }
}

bool InStream::getName(std::string& name) {
    parseBuffer.clear();
    if (!getNameInParseBuffer()) return false;
    name = parseBuffer;
    return true;
}

bool InStream::getNameInParseBuffer() {
    const std::size_t before = parseBuffer.size();
    if (!getTokenInParseBuffer()) return false;
    const char* const token = parseBuffer.data() + before;
    const std::size_t length = parseBuffer.size() - before;
    if (isName(token, static_cast<int>(length))) return true;
    setError("not a name: ");
    errorMessage.append(token, length);
    return false;
}

bool InStream::getString(std::string& text) {
    parseBuffer.clear();
    if (!getStringInParseBuffer()) return false;
    text = parseBuffer;
    return true;
}

bool InStream::getStringInParseBuffer() {
    const Use use(*this);
    eatWhite();
    char quote;
    if (!next(quote)) return endOfData();
    if (quote != '"' && quote != '\'') {
        setError("\"\"\" or \"'\" expected");
        return false;
    }
    parseBuffer += quote;
    return appendThrough(parseBuffer, quote) || endOfData();
}

bool InStream::checkToken(const std::string& text) {
    parseBuffer.clear();
    return checkTokenInParseBuffer(text.data(), static_cast<int>(text.size()));
}

bool InStream::checkTokenInParseBuffer(const char* text, int length) {
    // What is expected may lie in the message, which reading a token replaces.
    std::string kept;
    const char* const end = errorMessage.data() + errorMessage.size();
    if (!std::less<>()(text, errorMessage.data()) && std::less<>()(text, end)) {
        kept.assign(text, static_cast<std::size_t>(std::max(length, 0)));
        text = kept.data();
    }
    if (!getTokenInParseBuffer()) return false;
    return CheckParseBufferEnd(text, length) || expected(text, length);
}

bool InStream::CheckParseBufferEnd(const char* text, int length) const {
    if (length < 1) return true;
    const auto count = static_cast<std::size_t>(length);
    return parseBuffer.size() >= count &&
           std::memcmp(parseBuffer.data() + parseBuffer.size() - count, text, count) == 0;
}

bool InStream::getTokenltInParseBuffer() {
    const Use use(*this);
    return readMarkup();
}

// --- Other operations ---

void InStream::eatWhite() {
    const Use use(*this);
    char c;
    do {
        if (!next(c)) {
            endOfData();
            return;
        }
    } while (ByteClass::is(c, ByteClass::kWhite));
    stepBack();
}

bool InStream::getCharData(DataHolder& data) {
    const Use use(*this);
    const bool found = appendThrough(data, '<');
    if (!found) return endOfData();
    data.pop_back();
    stepBack();
    return true;
}

bool InStream::get(char& c) {
    const Use use(*this);
    return read(c) || endOfData();
}

void InStream::putBackChar() { stepBack(); }

bool InStream::skip(const std::string& terminator) {
    if (terminator.empty()) return true;
    const Use use(*this);
    const int length = static_cast<int>(terminator.size());
    for (std::size_t i = 0; i < terminator.size(); ++i) {
        char c;
        if (!next(c)) return endOfData();
        parseBuffer += c;
    }
    while (!CheckParseBufferEnd(terminator.data(), length)) {
        if (!appendThrough(parseBuffer, terminator.back())) return endOfData();
    }
    return true;
}

std::pair<int, int> InStream::StorePosition() const {
    constexpr std::size_t kLongest = std::numeric_limits<int>::max();
    return {tell(), static_cast<int>(std::min(parseBuffer.size(), kLongest))};
}

void InStream::RestorePosition(const std::pair<int, int>& saved) {
    seek(saved.first);
    parseBuffer.resize(static_cast<std::size_t>(std::max(saved.second, 0)));
}

bool StreamAccess::getContentToken(InStream& in, int& referenceEnd) {
    in.parseBuffer.clear();
    const InStream::Use use(in);
    in.eatWhite();
    const int position = in.tell();
    char c = 0;
    if (position >= 0 && position < referenceEnd && in.readRaw(c)) {
        if (c == '&') {
            in.previousWasCR = false;
            in.parseBuffer = c;
            return true;
        }
        in.stepBack();
    }
    if (!in.getTokenInParseBuffer()) return false;
    if (in.parseBuffer[0] == '&') referenceEnd = in.tell();
    return true;
}

}  // namespace Xml
