#include "xml/stream/internal/Markup.h"

#include "xml/stream/internal/Bytes.h"
#include "xml/text/Names.h"

// Tokens that begin with '<'. What follows "<!" and "<?" is found by trial: read a name; if that fails come back and try "[";
// behind that try "CDATA" and "["; come back and try "--". Each trial reads a token, which may begin with '<' itself, so the
// told way calls itself, and calls itself twice for each "<!": "<!<!<!" would cost a doubling and a level of stack each.
//
// Here the open trials stand on a stack of their own, and a nested '<' token is read once: reading it again from the same
// place gives the same token and records the same line breaks, but for one. Coming back does not restore whether the last
// byte was a CR, so that a line end at the very start of the second reading may count as the second half of a pair
// (trackAgain). Tokens of other kinds are short work and really are read again.

namespace Xml {

bool InStream::readMarkup() {
    // Empty between operations, also where memory runs out in one: what reads a reference looks at it.
    struct Closing {
        std::vector<OpenMarkup>& open;
        ~Closing() { open.clear(); }
    };
    const Closing closing{openMarkup};
    int failedTail =
        -1;  // where a trial for "CDATA[" failed last; enclosing trials come to the same place right after it
    for (;;) {
        bool ok = true;
        char c;
        Next what = Next::Done;
        if (recallMarkup(ok)) {
            // nothing to read
        } else if (!next(c)) {
            endOfData();
        } else if (c == '/') {
            parseBuffer += c;
        } else if (c == '!' || c == '?') {
            OpenMarkup::Place begin(*this);
            --begin.position;
            parseBuffer += c;
            openMarkup.emplace_back(c, begin, *this);
            what = Next::Token;
        } else {
            stepBack();
        }

        for (;;) {
            if (what == Next::Token) {
                const Plain plain = readPlainToken();
                openMarkup.back().nested = plain == Plain::Markup;
                if (plain == Plain::Markup) break;
                ok = plain == Plain::Read;
            } else if (openMarkup.empty()) {
                return ok;
            }
            what = resumeMarkup(openMarkup.back(), ok, failedTail);
            if (what == Next::Done) {
                rememberMarkup(openMarkup.back(), ok);
                openMarkup.pop_back();
            }
        }
    }
}

// Goes on with the innermost open trial, whose token has been read or has failed (`ok`). Done: it is a token now, or has
// failed as a whole (`ok`).
InStream::Next InStream::resumeMarkup(OpenMarkup& open, bool& ok, int& failedTail) {
    switch (open.state) {
    case OpenMarkup::Name: return resumeAfterName(open, ok, failedTail);
    case OpenMarkup::Bracket: return beginTail(open, ok, failedTail);
    case OpenMarkup::Cdata:
        if (ok && (CheckParseBufferEnd("CDATA", 5) || expected("CDATA", 5))) {
            open.state = OpenMarkup::CdataBracket;
            return Next::Token;
        }
        break;
    case OpenMarkup::CdataBracket:
        if (ok && (CheckParseBufferEnd("[", 1) || expected("[", 1))) return Next::Done;
        break;
    }
    open.saved.comeBack(*this);
    failedTail = open.saved.position;
    ok = true;
    return Next::Done;
}

InStream::Next InStream::resumeAfterName(OpenMarkup& open, bool& ok, int& failedTail) {
    const std::size_t begin = open.saved.length;
    const char* const token = parseBuffer.data() + begin;
    const std::size_t length = parseBuffer.size() - begin;
    if (ok && isName(token, static_cast<int>(length))) {
        if (open.kind == '?' && !CheckParseBufferEnd("xml", 3)) open.saved.comeBack(*this);
        return Next::Done;
    }
    // Of a long token behind "<!" the text would be replaced by the next trial's before anybody could see it.
    if (ok && open.kind == '?' && token[0] == '&' && remembers() && readReference.text != nullptr) {
        setReferenceError();
    } else if (ok && (open.kind == '?' || length == 1)) {
        setError("not a name: ");
        errorMessage.append(token, length);
    }
    if (open.kind == '?') {
        open.saved.comeBack(*this);
        ok = true;
        return Next::Done;
    }

    open.state = OpenMarkup::Bracket;
    const bool readOnce = open.nested && !ended && isPlace(open.saved.position);
    const int end = readOnce ? tell() : -1;
    seek(open.saved.position);
    if (readOnce && tell() == open.saved.position) {
        trackAgain(open.saved.position);
        seek(end);
        return beginTail(open, ok, failedTail);
    }
    // A file stream that met its end cannot come back: what the second reading finds there is its own affair.
    parseBuffer.resize(begin);
    return Next::Token;
}

// The token behind "<!" has been read the second time: it should end with "[".
InStream::Next InStream::beginTail(OpenMarkup& open, bool& ok, int& failedTail) {
    if (ok && (CheckParseBufferEnd("[", 1) || expected("[", 1))) {
        open.saved = OpenMarkup::Place(*this);
        open.state = OpenMarkup::Cdata;
        if (isPlace(open.saved.position) && open.saved.position == failedTail) {
            trackAgain(failedTail);
            return Next::Done;
        }
        return Next::Token;
    }
    open.saved.comeBack(*this);
    ok = false;
    for (int i = 0; i < 2; ++i) {
        char c;
        if (!next(c)) {
            endOfData();
            return Next::Done;
        }
        if (c != '-') break;
        ok = i == 1;
    }
    if (ok) {
        parseBuffer += "--";
    } else {
        open.saved.comeBack(*this);
        ok = true;
    }
    return Next::Done;
}

// A nested token that is given up will mostly be read again as a token of its own, and those in it too: "<!<!<!" read token by
// token would cost the square of its length. While a reader is at work, or over bytes that nobody can change, the outcome is kept.
void InStream::rememberMarkup(const OpenMarkup& open, bool ok) {
    constexpr std::size_t kLongest = 64;  // long ones are not given up one by one
    const std::size_t begin = open.begin.length - 1;
    const bool nested = openMarkup.size() > 1;
    if (!remembers() || !nested || ended || !isPlace(open.begin.position) || errorReference != nullptr) return;
    const bool hasError = errorCount != open.errorCount;
    if (parseBuffer.size() - begin > kLongest || (hasError && errorMessage.size() > kLongest)) return;
    readMarkups[open.begin.position] = {ok, previousWasCR, tell(), parseBuffer.substr(begin),
                                        hasError ? errorMessage : ""};
}

// The token whose '<' has just been read, from what is remembered.
bool InStream::recallMarkup(bool& ok) {
    if (readMarkups.empty()) return false;
    const auto found = readMarkups.find(tell());
    if (found == readMarkups.end()) return false;
    const ReadMarkup& markup = found->second;
    ok = markup.ok;
    previousWasCR = markup.previousWasCR;
    if (!markup.error.empty()) setError(markup.error);
    parseBuffer.append(markup.text, 1);
    seek(markup.end);
    return true;
}

// The difference that reading again from `position` would make.
void InStream::trackAgain(int position) {
    if (!previousWasCR) return;
    const int here = tell();
    seek(position);
    char c = 0;
    if (readRaw(c) && (c == '\r' || c == '\n')) recordBreak(tell());
    seek(here);
}

}  // namespace Xml
