#pragma once

#include "xml/stream/InStream.h"
#include "xml/stream/internal/Cursor.h"
#include "xml/stream/internal/Tokenizer.h"
#include <cstdint>
#include <string>
#include <string_view>

namespace Xml {

// What the readers use of a stream beside its public operations, and the guards that return what it has borrowed.
struct StreamAccess {
    // One operation under way. When it is the outermost thing under way, its end gives the window back.
    class Operation {
    public:
        explicit Operation(InStream& stream) : in(stream), isOutermost(stream.nesting.work == Nesting::Work::None) {
            if (isOutermost) in.nesting.work = Nesting::Work::Operation;
        }
        ~Operation() {
            if (isOutermost) end(in);
        }
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;

    private:
        InStream& in;
        bool isOutermost;
    };

    // A reader at work. Lets the stream keep its window over many operations: the positions below cost no look at the
    // source then.
    class Session {
    public:
        explicit Session(InStream& stream) : in(stream), before(stream.nesting.work) {
            const bool isFirst = before == Nesting::Work::None;
            if (isFirst) in.nesting.readerBegin = tell(in);
            in.nesting.work = isFirst ? Nesting::Work::Reader : Nesting::Work::InnerReader;
        }
        ~Session() {
            if (before == Nesting::Work::None) {
                end(in);
            } else {
                in.nesting.work = before;
            }
        }
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;

    private:
        InStream& in;
        Nesting::Work before;
    };

    // Whether the reader at work is the outermost one.
    static bool isOutermost(const InStream& in) { return in.nesting.work == Nesting::Work::Reader; }

    // Gives the window back before code of callers may look at the source.
    static void release(const InStream& in) { in.releaseWindow(); }

    // InStream::eof, without giving the window back where it shows that there is more.
    static bool atEnd(InStream& in) {
        if (in.window.cursor != in.window.end) return false;
        return in.window.loan == Window::Loan::ForGood || in.eof();
    }

    static int tell(const InStream& in) { return Cursor::positionIn(in); }
    static void seek(InStream& in, int position) { Cursor(in).seek(position); }

    // How far the outermost session has come.
    static std::int64_t bytesRead(const InStream& in) { return std::int64_t{tell(in)} - in.nesting.readerBegin; }

    // How far it has come where the source stands at the position; 0 without a session.
    static std::int64_t bytesReadAt(const InStream& in, std::int64_t position) {
        return in.nesting.isReaderAtWork() ? position - in.nesting.readerBegin : 0;
    }

    // As InStream::getToken, with the token left in the parse buffer; good until the next operation.
    static bool getToken(InStream& in) {
        in.parseBuffer.clear();
        const Operation operation(in);
        return Tokenizer(in).readToken();
    }
    static void clear(InStream& in) { in.parseBuffer.clear(); }
    static void setToken(InStream& in, char token) {
        in.parseBuffer.clear();
        in.parseBuffer += token;
    }
    static const std::string& token(const InStream& in) { return in.parseBuffer; }

    // The token with which a piece of content begins, as getToken. A reference takes in everything up to the next ';',
    // so that many '&' before a far one would be read over and over: one that begins before `referenceEnd`, the end of
    // the last reference read, is not read again, and the token is "&" alone.
    static bool getContentToken(InStream& in, int& referenceEnd) {
        in.parseBuffer.clear();
        const Operation operation(in);
        return Tokenizer(in).readContentToken(referenceEnd);
    }

    // --- The lent bytes, for what takes whole constructs from them ---

    static const Window& window(const InStream& in) { return in.window; }

    // The same; has bytes lent where there are none.
    static const Window& lend(InStream& in) {
        if (!in.window.isLent() && in.window.loan != Window::Loan::Never) in.lendBytes(in.window);
        return in.window;
    }

    // The position of a byte of the window.
    static int positionOf(const InStream& in, const char* byte) { return Cursor::positionOf(in, byte); }

    // Has the bytes from the cursor on lent again, and more of them, for what does not end in the window. False where
    // no more came.
    static bool lendMore(InStream& in) {
        Window& window = in.window;
        if (window.loan != Window::Loan::ForNow) return false;
        const auto count = window.end - window.cursor;
        in.releaseWindow();
        // The hint is for this one time, also where memory runs out.
        struct Hint {
            Window& window;
            ~Hint() {
                if (window.loan == Window::Loan::TooFew) window.loan = Window::Loan::None;
            }
        };
        const Hint hint{window};
        window.loan = Window::Loan::TooFew;
        return in.lendBytes(window) && window.end - window.cursor > count;
    }

    // Goes on at a byte of the window. What is passed over is not noted.
    static void moveTo(InStream& in, const char* byte) { in.window.cursor = byte; }

    // Notes in the line breaks that these bytes of the window were consumed.
    static void note(InStream& in, const char* from, const char* to) { Cursor::noteRun(in, from, to); }

    // Notes that CR LF before there was consumed, after a byte that is no CR.
    static void noteLineEnd(InStream& in, const char* after) { in.lineBreaks.record(positionOf(in, after)); }
    static void noteOther(InStream& in) { in.lineBreaks.noteOthers(); }  // one byte that is neither CR nor LF
    static bool isAfterReturn(const InStream& in) { return in.lineBreaks.isAfterReturn(); }

    // Leaves a message as the tokenizer does, a text that stays.
    static void setLastingError(InStream& in, std::string_view text) { Tokenizer(in).setLastingError(text); }

private:
    // Nothing is under way any more: what is borrowed goes back, and what was read ahead goes where the bytes may
    // change.
    static void end(InStream& in) {
        in.nesting.work = Nesting::Work::None;
        const bool bytesStay = in.window.loan == Window::Loan::ForGood;
        in.releaseWindow();
        if (in.readAhead == nullptr) return;
        if (!in.readAhead->isMessageComplete()) in.readAhead->completeMessage(in.error.string());
        if (!bytesStay) in.readAhead.reset();
    }
};

}  // namespace Xml
