#pragma once

#include "xml/stream/InStream.h"
#include <cstdint>
#include <string>

namespace Xml {

class InStream::Use {
public:
    explicit Use(InStream& stream) : in(stream) { ++in.uses; }
    ~Use() {
        if (--in.uses > 0) return;
        const bool bytesStay = in.window.held && in.windowSource->bytesStay;
        in.releaseWindow();
        if (!bytesStay) in.forgetWhatWasRead();
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

private:
    InStream& in;
};

// What the readers use of a stream beside its public operations.
struct StreamAccess {
    // A reader at work. Lets the stream keep its window over many operations: the positions below cost no look at the source
    // then.
    class Session {
    public:
        explicit Session(InStream& in) : use(in) {
            if (isOutermost(in)) in.sessionBegin = in.tell();
        }

    private:
        InStream::Use use;
    };

    // Whether no other session or operation is under way around this one.
    static bool isOutermost(const InStream& in) { return in.uses == 1; }

    // Gives the window back before code of callers may look at the source.
    static void release(const InStream& in) { in.releaseWindow(); }

    // InStream::eof, without giving the window back where it shows that there is more.
    static bool atEnd(InStream& in) { return in.window.cursor == in.window.end && in.eof(); }

    static int tell(const InStream& in) { return in.tell(); }
    static void seek(InStream& in, int position) { in.seek(position); }

    // How far the outermost session has come.
    static std::int64_t bytesRead(const InStream& in) { return std::int64_t{in.tell()} - in.sessionBegin; }

    // As InStream::getToken, with the token left in the parse buffer; good until the next operation.
    static bool getToken(InStream& in) {
        in.parseBuffer.clear();
        return in.getTokenInParseBuffer();
    }
    static void clear(InStream& in) { in.parseBuffer.clear(); }
    static const std::string& token(const InStream& in) { return in.parseBuffer; }

    // The token with which a piece of content begins, as getToken. A reference takes in everything up to the next ';', so
    // that many '&' before a far one would be read over and over: one that begins before `referenceEnd`, the end of the last
    // reference read, is not read again, and the token is "&" alone.
    static bool getContentToken(InStream& in, int& referenceEnd);
};

}  // namespace Xml
