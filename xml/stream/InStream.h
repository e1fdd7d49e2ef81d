#pragma once

#include "xml/Export.h"
#include "xml/stream/ErrorText.h"
#include "xml/stream/LineBreaks.h"
#include "xml/stream/Nesting.h"
#include "xml/stream/Window.h"
#include "xml/text/DataHolder.h"
#include <memory>
#include <string>
#include <utility>

namespace Xml {

class ReadAhead;

// A source of bytes with the tokenizer that every reader uses.
//
// A source of your own overrides exactly the four primitives; everything else (tokens, backtracking, lines and columns,
// error texts) stands on them. Positions are 0-based byte offsets from the start of the data.
//
//     class MemorySource : public Xml::InStream {
//     public:
//         bool getChar(char& c) override { if (eof()) return false; c = bytes[position++]; return true; }
//         int getPosition() const override { return position; }
//         void setPosition(int p) override { position = p; }
//         bool eof() override { return position >= size; }
//         ...
//     };
//
// Unless said otherwise an operation returns true on success; when it returns false getErrorMessage() says why. Every
// operation leaves the source standing right after what it consumed. Tokens are assembled in a parse buffer that is
// kept between calls: operations named ...InParseBuffer append to it, those that fill a caller's string empty it first.
class ORVXML_API InStream {
public:
    // Reads the next byte into `c` and advances; false at the end of the data.
    virtual bool getChar(char& c) = 0;

    // The offset of the next byte, -1 when there is no position.
    virtual int getPosition() const = 0;
    virtual void setPosition(int position) = 0;

    // True when no byte is left.
    virtual bool eof() = 0;

    virtual ~InStream();

    InStream(const InStream&) = delete;
    InStream& operator=(const InStream&) = delete;

    // Skips white space, then reads one token: a quoted string with its quotes; "&" up to and including the next ";";
    // "<", "</", "<?", "<?xml", "<!", "<!--", "<![", "<![CDATA[" or "<!" with the name after it; "/" or "/>"; one of
    // the bytes ! ( ) * + , = > ? [ \ ] |; else a word, which ends before white space and punctuation. A word that the
    // data ends in is a token although the error message says so. On failure `token` is left as it was.
    bool getToken(std::string& token);
    bool getTokenInParseBuffer();

    // Reads one token that must be a name.
    bool getName(std::string& name);
    bool getNameInParseBuffer();

    // Reads one quoted string; the result includes both quotes. Nothing escapes: only the quote that opened it ends it.
    bool getString(std::string& text);
    bool getStringInParseBuffer();

    // Goes on with a token whose "<" stands in the parse buffer.
    bool getTokenltInParseBuffer();

    // Appends raw bytes to `data` up to the next '<', which stays unread. Without one: all that is left, and false.
    bool getCharData(DataHolder& data);

    // Reads one byte. At the end of the data `c` is left as it was.
    bool get(char& c);

    // Steps back by one byte, at the start not at all.
    void putBackChar();

    // Reads one token and tests whether the parse buffer then ends with `expected`. It is the end that is compared:
    // "TYPE" accepts the token "DOCTYPE".
    bool checkToken(const std::string& expected);
    bool checkTokenInParseBuffer(const char* expected, int length);

    // Skips white space. The end of the data leaves its error message.
    void eatWhite();

    // Appends to the parse buffer up to and including the first `terminator`. An empty one reads nothing.
    bool skip(const std::string& terminator);

    // Whether the parse buffer ends with the `length` bytes of `text`; always true for a length below 1.
    bool CheckParseBufferEnd(const char* text, int length) const;

    // Position and length of the parse buffer, to come back to. Coming back does not forget line breaks.
    std::pair<int, int> StorePosition() const;
    void RestorePosition(const std::pair<int, int>& saved);

    // Line and column of the current position, for reports. A line break is the second byte of CR LF or CR CR where it
    // was read; text with bare line feeds is one line. Lines count recorded breaks, never below 1; columns count bytes
    // from the last break before the position, from the start of the data without one.
    int getLine() const;
    int getColumn() const;

    // The text of the last failure; attempts that failed within an operation that succeeded leave theirs too. The
    // reference shows the text of later failures as well, once the operation or the reader has returned. Needs memory
    // where the text is long.
    const std::string& getErrorMessage() const;

protected:
    using Window = internal::Window;

    InStream();

    // A source that has its bytes in memory may lend them, so that they need not be asked for one by one. A library
    // source does so only in objects of exactly its class: one that is derived from it has its own primitives called.
    // Each operation names the window, so that none of a caller's is taken for it.

    // Fills the empty window, with at least one byte at the cursor; false where there is nothing to lend. Where the
    // loan says that the last bytes were too few, more of them from the same byte on are welcome.
    virtual bool lendBytes(Window& lent);

    // Makes the source stand where the cursor of the window stands.
    virtual void takeBytesBack(const Window& lent) const;

    // The position of the first byte of a window that came without it.
    virtual int positionOfBytes(const Window& lent) const;

    // Whether there are bytes whose positions an int cannot hold: reads fail then, with a message of their own.
    virtual bool isTooLarge(const Window& lent) const;

    // Whether the source has met its end in a way from which setPosition does not lead back.
    virtual bool cannotComeBack(const Window& lent) const;

    // Gives the bytes back. Every primitive of a source that lends bytes does this first.
    void releaseWindow() const {
        if (!window.isLent()) return;
        takeBytesBack(window);
        window = Window();
    }

private:
    friend struct StreamAccess;
    friend class Cursor;
    friend class Openers;
    friend class Tokenizer;

    mutable Window window;
    std::string parseBuffer;
    mutable internal::ErrorText error;
    internal::LineBreaks lineBreaks;
    internal::Nesting nesting;
    std::unique_ptr<ReadAhead> readAhead;  // null until there is something to remember
};

}  // namespace Xml
