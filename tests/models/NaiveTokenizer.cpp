#include "models/NaiveTokenizer.h"

#include <algorithm>

namespace Xml::test {

namespace {

const char* const kEndOfStream = "Unexpected end of stream";

bool isWhiteByte(char c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }

bool isPunctuation(char c) {
    for (const char* p = "!\"'()*+,/<=>?[\\]|"; *p != 0; ++p) {
        if (c == *p) return true;
    }
    return false;
}

bool isNameByte(char c, bool first) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':') return true;
    return !first && ((c >= '0' && c <= '9') || c == '-' || c == '.');
}

bool isNameText(const std::string& text) {
    if (text.empty()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isNameByte(text[i], i == 0)) return false;
    }
    return true;
}

}  // namespace

NaiveTokenizer::NaiveTokenizer(InStream& bytes) : source(bytes) {}

bool NaiveTokenizer::getChar(char& c) { return source.getChar(c); }
int NaiveTokenizer::getPosition() const { return source.getPosition(); }
void NaiveTokenizer::setPosition(int position) { source.setPosition(position); }
bool NaiveTokenizer::eof() { return source.eof(); }

bool NaiveTokenizer::fail(const std::string& text) {
    message = text;
    return false;
}

void NaiveTokenizer::track(char c) {
    if (c != '\r' && c != '\n') {
        previousWasCR = false;
        return;
    }
    if (previousWasCR) {
        const int position = source.getPosition();
        bool known = false;
        for (int recorded : breaks) known = known || recorded == position;
        if (!known) breaks.push_back(position);
    }
    previousWasCR = c == '\r';
}

// The byte is zero beforehand: what a source that says true without a byte hands over.
bool NaiveTokenizer::read(char& c) {
    c = 0;
    if (!source.getChar(c)) return false;
    track(c);
    return true;
}

bool NaiveTokenizer::readOrFail(char& c) { return read(c) || fail(kEndOfStream); }

void NaiveTokenizer::putBackChar() {
    if (source.getPosition() >= 1) source.setPosition(source.getPosition() - 1);
}

bool NaiveTokenizer::get(char& c) {
    if (!source.getChar(c)) return fail(kEndOfStream);
    track(c);
    return true;
}

void NaiveTokenizer::eatWhite() {
    char c;
    do {
        if (!readOrFail(c)) return;
    } while (isWhiteByte(c));
    putBackChar();
}

bool NaiveTokenizer::copyBuffer(bool ok, std::string& result) const {
    if (ok) result = buffer;
    return ok;
}

bool NaiveTokenizer::getToken(std::string& token) {
    buffer.clear();
    return copyBuffer(getTokenInParseBuffer(), token);
}

bool NaiveTokenizer::getName(std::string& name) {
    buffer.clear();
    return copyBuffer(getNameInParseBuffer(), name);
}

bool NaiveTokenizer::getString(std::string& text) {
    buffer.clear();
    return copyBuffer(getStringInParseBuffer(), text);
}

bool NaiveTokenizer::getTokenInParseBuffer() {
    eatWhite();
    char c;
    if (!readOrFail(c)) return false;
    if (c == '"' || c == '\'') {
        putBackChar();
        return getStringInParseBuffer();
    }
    buffer += c;
    if (c == '&') {
        do {
            if (!readOrFail(c)) return false;
            buffer += c;
        } while (c != ';');
        return true;
    }
    if (c == '<') return getTokenltInParseBuffer();
    if (c == '/') {
        if (!readOrFail(c)) return true;
        if (c == '>') {
            buffer += c;
        } else {
            putBackChar();
        }
        return true;
    }
    if (isPunctuation(c)) return true;
    while (readOrFail(c)) {
        if (isPunctuation(c) || isWhiteByte(c)) {
            putBackChar();
            break;
        }
        buffer += c;
    }
    return true;
}

bool NaiveTokenizer::getTokenltInParseBuffer() {
    char c;
    if (!readOrFail(c)) return true;
    if (c == '!') {
        buffer += c;
        return readDeclarationOpener();
    }
    if (c == '?') {
        buffer += c;
        const std::pair<int, int> saved = StorePosition();
        if (getNameInParseBuffer() && CheckParseBufferEnd("xml", 3)) return true;
        RestorePosition(saved);
        return true;
    }
    if (c == '/') {
        buffer += c;
        return true;
    }
    putBackChar();
    return true;
}

// Goes on after "<!".
bool NaiveTokenizer::readDeclarationOpener() {
    const std::pair<int, int> afterMark = StorePosition();
    if (getNameInParseBuffer()) return true;

    RestorePosition(afterMark);
    if (checkTokenInParseBuffer("[", 1)) {
        const std::pair<int, int> afterBracket = StorePosition();
        if (checkTokenInParseBuffer("CDATA", 5) && checkTokenInParseBuffer("[", 1)) return true;
        RestorePosition(afterBracket);
        return true;
    }

    RestorePosition(afterMark);
    char c;
    if (!readOrFail(c)) return false;
    if (c == '-') {
        if (!readOrFail(c)) return false;
        if (c == '-') {
            buffer += "--";
            return true;
        }
    }
    RestorePosition(afterMark);
    return true;
}

bool NaiveTokenizer::getNameInParseBuffer() {
    const std::size_t before = buffer.size();
    if (!getTokenInParseBuffer()) return false;
    const std::string appended = buffer.substr(before);
    return isNameText(appended) || fail("not a name: " + appended);
}

bool NaiveTokenizer::getStringInParseBuffer() {
    eatWhite();
    char quote;
    if (!readOrFail(quote)) return false;
    if (quote != '"' && quote != '\'') return fail("\"\"\" or \"'\" expected");
    buffer += quote;
    char c;
    do {
        if (!readOrFail(c)) return false;
        buffer += c;
    } while (c != quote);
    return true;
}

bool NaiveTokenizer::getCharData(DataHolder& data) {
    char c;
    while (readOrFail(c)) {
        if (c == '<') {
            putBackChar();
            return true;
        }
        data += c;
    }
    return false;
}

bool NaiveTokenizer::checkToken(const std::string& expected) {
    buffer.clear();
    return checkTokenInParseBuffer(expected.data(), static_cast<int>(expected.size()));
}

bool NaiveTokenizer::checkTokenInParseBuffer(const char* expected, int length) {
    const std::string text(expected, static_cast<std::size_t>(std::max(length, 0)));  // may be the message
    if (!getTokenInParseBuffer()) return false;
    if (CheckParseBufferEnd(text.data(), length)) return true;
    return fail("\"" + text + "\" expected");
}

bool NaiveTokenizer::skip(const std::string& terminator) {
    char c;
    for (std::size_t i = 0; i < terminator.size(); ++i) {
        if (!readOrFail(c)) return false;
        buffer += c;
    }
    while (!CheckParseBufferEnd(terminator.data(), static_cast<int>(terminator.size()))) {
        if (!readOrFail(c)) return false;
        buffer += c;
    }
    return true;
}

bool NaiveTokenizer::CheckParseBufferEnd(const char* text, int length) const {
    if (static_cast<int>(buffer.size()) < length) return false;
    if (length < 1) return true;
    const std::size_t count = static_cast<std::size_t>(length);
    return buffer.substr(buffer.size() - count) == std::string(text, count);
}

std::pair<int, int> NaiveTokenizer::StorePosition() const {
    return {source.getPosition(), static_cast<int>(buffer.size())};
}

void NaiveTokenizer::RestorePosition(const std::pair<int, int>& saved) {
    source.setPosition(saved.first);
    buffer.resize(static_cast<std::size_t>(saved.second));
}

int NaiveTokenizer::getLine() const {
    if (breaks.empty()) return 1;
    const int position = source.getPosition();
    for (std::size_t i = 0; i < breaks.size(); ++i) {
        if (breaks[i] == position) return static_cast<int>(i) + 1;
    }
    return static_cast<int>(breaks.size());
}

int NaiveTokenizer::getColumn() const {
    const int position = source.getPosition();
    if (breaks.empty()) return position;
    std::size_t i = 0;
    while (i < breaks.size() && breaks[i] < position) ++i;
    return i == 0 ? position : position - breaks[i - 1];
}

const std::string& NaiveTokenizer::getErrorMessage() const { return message; }

}  // namespace Xml::test
