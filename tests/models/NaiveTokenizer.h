#pragma once

#include "xml/stream/InStream.h"
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {

// A second tokenizer, to compare the library's with: every operation of InStream, byte by byte over nothing but the
// four primitives of a source. It is slow on purpose: no window, no table, no search that is cleverer than a loop.
//
//     StringInStream bytes(text);
//     NaiveTokenizer tokenizer(bytes);
//
// The source must outlive it. Lines, parse buffer and message are its own; those of the source are not used.
class NaiveTokenizer {
public:
    explicit NaiveTokenizer(InStream& bytes);

    // The primitives, as the source has them.
    bool getChar(char& c);
    int getPosition() const;
    void setPosition(int position);
    bool eof();

    bool getToken(std::string& token);
    bool getTokenInParseBuffer();
    bool getName(std::string& name);
    bool getNameInParseBuffer();
    bool getString(std::string& text);
    bool getStringInParseBuffer();
    bool getTokenltInParseBuffer();
    bool getCharData(DataHolder& data);
    bool get(char& c);
    void putBackChar();
    bool checkToken(const std::string& expected);
    bool checkTokenInParseBuffer(const char* expected, int length);
    void eatWhite();
    bool skip(const std::string& terminator);
    bool CheckParseBufferEnd(const char* text, int length) const;
    std::pair<int, int> StorePosition() const;
    void RestorePosition(const std::pair<int, int>& saved);
    int getLine() const;
    int getColumn() const;
    const std::string& getErrorMessage() const;

    // The parse buffer, which the library's stream only lets be asked about.
    const std::string& parseBuffer() const { return buffer; }

private:
    bool read(char& c);
    bool readOrFail(char& c);
    void track(char c);
    bool fail(const std::string& message);
    bool readDeclarationOpener();
    bool copyBuffer(bool ok, std::string& result) const;

    InStream& source;
    std::string buffer;
    std::string message;
    std::vector<int> breaks;
    bool previousWasCR = false;
};

}  // namespace Xml::test
