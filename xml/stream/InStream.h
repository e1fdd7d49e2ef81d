#pragma once

#include "xml/Export.h"
#include "xml/text/DataHolder.h"
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Xml {

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
// operation leaves the source standing right behind what it consumed. Tokens are assembled in a parse buffer that is
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
    // "<", "</", "<?", "<?xml", "<!", "<!--", "<![", "<![CDATA[" or "<!" with the name behind it; "/" or "/>"; one of
    // the bytes ! ( ) * + , = > ? [ \ ] |; else a word, which ends before white space and punctuation. A word that the
    // data ends in is a token although the error message says so. On failure `token` is left as it was.
    bool getToken(std::string& token);
    bool getTokenInParseBuffer();

    // Reads one token that must be a name.
    bool getName(std::string& name);
    bool getNameInParseBuffer();

    // Reads one quoted string; the result includes both quotes. There is no escape: only the quote that opened it ends it.
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

    // Reads one token and tests whether the parse buffer then ends with `expected`. It is the end that is compared: "TYPE"
    // accepts the token "DOCTYPE".
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

    // The text of the last failure; attempts that failed within an operation that succeeded leave theirs too.
    const std::string& getErrorMessage() const;

protected:
    // How a source of this library lets the tokenizer read its bytes in memory. The tokenizer takes the bytes
    // [begin, end) over when it needs one, reads on at `cursor`, and gives them back before anybody else can look at the
    // source. Only objects of exactly the source's own class do this: a class derived from one may override the
    // primitives, and those are called then.
    struct Window {
        const char* begin = nullptr;
        const char* cursor = nullptr;
        const char* end = nullptr;
        int base = -1;      // the position of `begin`, -1 when not known yet
        bool held = false;  // taken over and not given back
    };
    struct WindowSource {
        bool (*acquire)(InStream&);  // sets `window` with at least one byte at the cursor; false: use the primitives
        void (*release)(const InStream&);  // makes the source stand where the cursor stands
        int (*base)(const InStream&);      // the position of `begin`, for a window that came without; null if none does
        bool bytesStay;                    // nobody else can change the bytes
    };

    InStream();
    explicit InStream(const WindowSource* windowSource);

    // Every primitive of a source with a window calls this first.
    void releaseWindow() const {
        if (window.held) giveWindowBack();
    }

    mutable Window window;

    // Set by a source whose bytes have positions that an int cannot hold: its reads fail, with a message of their own.
    mutable bool tooLarge = false;

    // Set by a source that has met its end in a way from which setPosition does not lead back.
    bool ended = false;

private:
    friend struct StreamAccess;

    // One operation under way: the window is given back when the outermost one ends.
    class Use;
    struct OpenMarkup;
    enum class Next { Done, Token };
    enum class Plain { Read, Failed, Markup };

    void giveWindowBack() const;

    bool read(char& c);
    bool next(char& c);
    bool readRaw(char& c);
    bool fetch(char& c);
    void stepBack();
    bool appendThrough(std::string& text, char last);

    void track(char c);
    void trackBreak(char c);
    void trackRun(const char* from, const char* to);
    void recordBreak(int position);

    int tell() const;
    int positionOf(const char* byte) const;
    void seek(int position);

    Plain readPlainToken();
    Plain readReferenceToken();
    bool remembers() const { return uses > 1 || (window.held && windowSource->bytesStay); }
    bool readMarkup();
    Next resumeMarkup(OpenMarkup& open, bool& ok, int& failedTail);
    Next resumeAfterName(OpenMarkup& open, bool& ok, int& failedTail);
    Next beginTail(OpenMarkup& open, bool& ok, int& failedTail);
    void trackAgain(int position);
    void rememberMarkup(const OpenMarkup& open, bool ok);
    bool recallMarkup(bool& ok);
    void readWord();
    bool endOfData();
    bool expected(const char* text, int length);

    void setError(std::string_view text);
    void setReferenceError();
    bool isKnownReference(int position);
    void forgetWhatWasRead();

    mutable std::string errorMessage;
    mutable std::shared_ptr<const std::string> errorReference;  // what is still to be added to the message ...
    std::size_t errorReferenceFrom = 0;                         // ... from there on
    unsigned errorCount = 0;                                    // of messages set, to tell whether an attempt left one
    std::vector<int> lineBreaks;                                // positions, in the order met
    bool lineBreaksRise = true;
    std::unordered_set<int> lineBreakSet;  // the same positions, once they do not rise any more
    bool previousWasCR = false;
    std::string parseBuffer;
    std::vector<OpenMarkup> openMarkup;  // empty between operations; kept for its memory

    // What came of a token begun with "<!" or "<?" that was read within a trial and given up again. Kept for as long as a
    // reader is at work, and longer over bytes that stay.
    struct ReadMarkup {
        bool ok;
        bool previousWasCR;
        int end;
        std::string text;
        std::string error;
    };
    std::unordered_map<int, ReadMarkup> readMarkups;  // by the position behind the '<'

    // The last reference that a trial met: many that begin before one far ';' would each be read up to it. Kept as long.
    struct ReadReference {
        int begin = -1;
        int end = -1;                             // behind the ';', -1 when none is ahead
        bool endsInCR = false;                    // whether the last byte that was read for it is a carriage return
        std::shared_ptr<const std::string> text;  // ends with the ';', and begins with the first that was read up to it
    };
    ReadReference readReference;

    const WindowSource* windowSource = nullptr;
    int uses = 0;          // operations under way, of this stream and of readers
    int sessionBegin = 0;  // where the outermost reader that is or was at work began
};

}  // namespace Xml
