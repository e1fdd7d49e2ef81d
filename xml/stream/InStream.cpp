#include "xml/stream/InStream.h"

#include "xml/stream/internal/Cursor.h"
#include "xml/stream/internal/ReadAhead.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/stream/internal/Tokenizer.h"
#include <algorithm>
#include <cstring>
#include <limits>

// The operations themselves are in internal/Tokenizer.cpp; here the window is given back after each.

namespace Xml {

using Operation = StreamAccess::Operation;

InStream::InStream() = default;

InStream::~InStream() = default;

// --- What a source may override ---

bool InStream::lendBytes(Window& lent) {
    lent.loan = Window::Loan::Never;
    return false;
}

void InStream::takeBytesBack(const Window&) const {}

int InStream::positionOfBytes(const Window&) const { return -1; }

bool InStream::isTooLarge(const Window&) const { return false; }

bool InStream::cannotComeBack(const Window&) const { return false; }

// --- Tokens ---

bool InStream::getToken(std::string& token) {
    parseBuffer.clear();
    if (!getTokenInParseBuffer()) return false;
    token = parseBuffer;
    return true;
}

bool InStream::getTokenInParseBuffer() {
    const Operation operation(*this);
    return Tokenizer(*this).readToken();
}

bool InStream::getName(std::string& name) {
    parseBuffer.clear();
    if (!getNameInParseBuffer()) return false;
    name = parseBuffer;
    return true;
}

bool InStream::getNameInParseBuffer() {
    const Operation operation(*this);
    return Tokenizer(*this).readName();
}

bool InStream::getString(std::string& text) {
    parseBuffer.clear();
    if (!getStringInParseBuffer()) return false;
    text = parseBuffer;
    return true;
}

bool InStream::getStringInParseBuffer() {
    const Operation operation(*this);
    return Tokenizer(*this).readString();
}

bool InStream::getTokenltInParseBuffer() {
    const Operation operation(*this);
    return Tokenizer(*this).readMarkup();
}

bool InStream::checkToken(const std::string& expected) {
    parseBuffer.clear();
    return checkTokenInParseBuffer(expected.data(), static_cast<int>(expected.size()));
}

bool InStream::checkTokenInParseBuffer(const char* expected, int length) {
    const Operation operation(*this);
    return Tokenizer(*this).expectToken(expected, length);
}

bool InStream::CheckParseBufferEnd(const char* text, int length) const {
    if (length < 1) return true;
    const auto count = static_cast<std::size_t>(length);
    return parseBuffer.size() >= count &&
           std::memcmp(parseBuffer.data() + parseBuffer.size() - count, text, count) == 0;
}

// --- Bytes ---

void InStream::eatWhite() {
    const Operation operation(*this);
    Tokenizer(*this).skipWhite();
}

bool InStream::getCharData(DataHolder& data) {
    const Operation operation(*this);
    return Tokenizer(*this).readData(data);
}

bool InStream::get(char& c) {
    const Operation operation(*this);
    return Tokenizer(*this).readByte(c);
}

void InStream::putBackChar() { Cursor(*this).stepBack(); }

bool InStream::skip(const std::string& terminator) {
    if (terminator.empty()) return true;
    const Operation operation(*this);
    return Tokenizer(*this).readThrough(terminator);
}

// --- Places ---

std::pair<int, int> InStream::StorePosition() const {
    constexpr std::size_t kLongest = std::numeric_limits<int>::max();
    return {Cursor::positionIn(*this), static_cast<int>(std::min(parseBuffer.size(), kLongest))};
}

void InStream::RestorePosition(const std::pair<int, int>& saved) {
    Cursor(*this).seek(saved.first);
    parseBuffer.resize(static_cast<std::size_t>(std::max(saved.second, 0)));
}

int InStream::getLine() const { return lineBreaks.empty() ? 1 : lineBreaks.lineAt(Cursor::positionIn(*this)); }

int InStream::getColumn() const { return lineBreaks.columnAt(Cursor::positionIn(*this)); }

// Within a reader the end of a long message may be missing still.
const std::string& InStream::getErrorMessage() const {
    if (readAhead != nullptr) readAhead->completeMessage(error.string());
    return error.show();
}

}  // namespace Xml
