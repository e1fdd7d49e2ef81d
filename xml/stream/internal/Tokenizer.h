#pragma once

#include "xml/stream/InStream.h"
#include "xml/stream/internal/Cursor.h"
#include "xml/stream/internal/ReadAhead.h"
#include <string>
#include <string_view>

namespace Xml {

// The rules for tokens: a byte is read and looked at, and stepped back over where it belongs to what follows.
//
// Each function does the work of the operation of InStream that is like it. It appends to the stream's parse buffer,
// leaves its message there, and keeps the window.
class Tokenizer {
public:
    explicit Tokenizer(InStream& stream) : in(stream) {}

    bool readToken();
    bool readName();
    bool readString();
    bool readMarkup();  // the rest of a token whose '<' is in the parse buffer
    bool readData(std::string& data);
    bool readThrough(std::string_view terminator);
    bool readByte(char& c) { return Cursor(in).read(c) || endOfData(); }
    bool expectToken(const char* text, int length);
    void skipWhite();

    // See StreamAccess::getContentToken.
    bool readContentToken(int& referenceEnd);

    void setError(std::string_view text);
    void setLastingError(std::string_view text);

private:
    friend class Openers;

    enum class Plain { Read, Failed, LessThan };
    enum class Purpose { Token, Trial };

    // Reads a token that does not begin with '<'; of one that does, only that.
    Plain readPlain(Purpose purpose);
    Plain readReference(Purpose purpose);
    void readSlash();
    void readWord();

    std::string& buffer() { return in.parseBuffer; }

    // Whether the parse buffer ends with the text, which has at least one byte; leaves a message when it does not.
    bool expectEnd(const char* text, int length);

    bool endOfData();

    // What was read ahead, to add to it; null when nothing may be remembered.
    ReadAhead* readAhead();

    InStream& in;
};

}  // namespace Xml
