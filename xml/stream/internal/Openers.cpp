#include "xml/stream/internal/Openers.h"

#include "xml/text/Names.h"
#include <string_view>

// After "<!" a name is tried; if that fails "[", and after it "CDATA" and "["; if that fails "--". Each trial begins
// where the opener ends. After "<?" only a name is tried. A trial that reads another opener calls for trials of its
// own, and the token after "<!" is read by two of them: read as often as that, "<!<!<!" would cost a doubling and a
// level of stack for each.
//
// So the open ones stand on a stack, and a token that begins with '<' is read once: reading it again from the same
// place gives the same token and the same line breaks, but for one. Going back does not restore whether the last byte
// was a CR, so that a line end at the very start of the second reading may count as the second half of a pair
// (noteAgain). Tokens of other kinds are short and are read again.

namespace Xml {

bool Openers::read() {
    bool ok = true;
    if (!opens(ok)) return ok;
    ok = readAfterInnermost();
    while (outermost) {
        Opener& opener = innermost();
        if (closes(opener, ok)) {
            remember(opener, ok);
            pop();
        } else {
            ok = readAfterInnermost();
        }
    }
    return ok;
}

// Looks at what follows a '<'. An opener is pushed; anything else is a token now, or failed (`ok`).
bool Openers::opens(bool& ok) {
    ok = true;
    if (recall(ok)) return false;
    char c;
    if (!cursor.next(c)) {
        tokenizer.endOfData();
    } else if (c == '/') {
        buffer += c;
    } else if (c == '!' || c == '?') {
        push(c);
        return true;
    } else {
        cursor.stepBack();
    }
    return false;
}

// Reads the token after the innermost opener, which may be one more opener and the token after that.
bool Openers::readAfterInnermost() {
    bool ok = true;
    do {
        const Tokenizer::Plain plain = tokenizer.readPlain(Tokenizer::Purpose::Trial);
        if (plain != Tokenizer::Plain::LessThan) return plain == Tokenizer::Plain::Read;
    } while (opens(ok));
    return ok;
}

// The token that the innermost opener tries has been read, or has failed (`ok`). True when the opener is a token now or
// failed as a whole (`ok`), false when another token is to be read for it.
bool Openers::closes(Opener& opener, bool& ok) {
    switch (opener.trial) {
    case Trial::Name: return closesAsName(opener, ok);
    case Trial::Bracket: return closesAfterBracket(opener, ok);
    case Trial::Cdata:
        if (ok && tokenizer.expectEnd("CDATA", 5)) {
            opener.trial = Trial::CdataBracket;
            return false;
        }
        break;
    case Trial::CdataBracket:
        if (ok && tokenizer.expectEnd("[", 1)) return true;
        break;
    }
    comeBack(opener.saved);
    failedSection = opener.saved.position;
    ok = true;
    return true;
}

bool Openers::closesAsName(Opener& opener, bool& ok) {
    const Place begin = opener.saved;
    const std::string_view token(buffer.data() + begin.length, buffer.size() - begin.length);
    if (ok && isName(token.data(), static_cast<int>(token.size()))) {
        if (opener.kind == '?' && !in.CheckParseBufferEnd("xml", 3)) comeBack(begin);
        return true;
    }
    // A long token after "<!" is not put into the message: the next trial replaces that before it can be seen.
    if (ok && (opener.kind == '?' || token.size() == 1)) setNotAName(token);
    if (opener.kind == '?') {
        comeBack(begin);
        ok = true;
        return true;
    }

    opener.trial = Trial::Bracket;
    const bool holdsMarkup = token.substr(0, 1) == "<";
    const bool readOnce = holdsMarkup && !in.cannotComeBack(in.window) && isPlace(begin.position);
    const int end = readOnce ? cursor.tell() : -1;
    cursor.seek(begin.position);
    if (readOnce && cursor.tell() == begin.position) {
        noteAgain(begin.position);
        cursor.seek(end);
        return closesAfterBracket(opener, ok);
    }
    // A file stream that met its end cannot come back: the second reading finds what there is.
    buffer.resize(begin.length);
    return false;
}

// The token after "<!" has been read the second time: it should end with "[".
bool Openers::closesAfterBracket(Opener& opener, bool& ok) {
    if (!ok || !tokenizer.expectEnd("[", 1)) {
        comeBack(opener.saved);
        ok = closesWithDashes(opener);
        return true;
    }
    opener.saved = place();
    opener.trial = Trial::Cdata;
    // Openers around one another come to the same place after the same bracket.
    if (!isPlace(opener.saved.position) || opener.saved.position != failedSection) return false;
    noteAgain(opener.saved.position);
    return true;
}

// Two dashes belong to the token; what else follows does not. False at the end of the data.
bool Openers::closesWithDashes(Opener& opener) {
    for (int i = 0; i < 2; ++i) {
        char c;
        if (!cursor.next(c)) return tokenizer.endOfData();
        if (c != '-') {
            comeBack(opener.saved);
            return true;
        }
    }
    buffer += "--";
    return true;
}

// A reference may be as long as the source and may be met as often; its text is appended when the message is asked for.
void Openers::setNotAName(std::string_view token) {
    ReadAhead* const ahead = token[0] == '&' ? tokenizer.readAhead() : nullptr;
    tokenizer.setError("not a name: ");
    if (ahead == nullptr || !ahead->continueMessage(in.error.string())) in.error.string().append(token);
}

void Openers::push(char kind) {
    buffer += kind;
    const Place here = place();
    Opener opener{kind, Trial::Name, here, here.position - 1, here.length - 2, std::nullopt};
    if (!outermost) {
        outermost = opener;
        return;
    }
    if (const ReadAhead* const ahead = tokenizer.readAhead()) opener.messageCount = ahead->messageCount();
    inner.push_back(opener);
}

void Openers::pop() {
    if (inner.empty()) {
        outermost.reset();
    } else {
        inner.pop_back();
    }
}

void Openers::comeBack(const Place& saved) {
    cursor.seek(saved.position);
    buffer.resize(saved.length);
}

// The difference that reading again from `position` would make.
void Openers::noteAgain(int position) {
    if (!in.lineBreaks.isAfterReturn()) return;
    const int here = cursor.tell();
    cursor.seek(position);
    char c = 0;
    if (cursor.readUnnoted(c) && (c == '\r' || c == '\n')) in.lineBreaks.record(cursor.tell());
    cursor.seek(here);
}

// Remembers what came of an inner opener, which may be given up and read again as a token of its own.
void Openers::remember(const Opener& opener, bool ok) {
    if (inner.empty()) return;
    ReadAhead* const ahead = tokenizer.readAhead();
    if (ahead == nullptr || in.cannotComeBack(in.window) || !isPlace(opener.begin) || !ahead->isMessageComplete())
        return;
    const std::string_view text(buffer.data() + opener.textBegin, buffer.size() - opener.textBegin);
    const bool hasError = ahead->messageCount() != opener.messageCount;
    const std::string_view error = hasError ? in.error.view() : std::string_view();
    if (!ReadAhead::isShort(text, error)) return;
    ahead->remember(opener.begin,
                    {ok, in.lineBreaks.isAfterReturn(), cursor.tell(), std::string(text), std::string(error)});
}

// The token whose '<' has just been read, from what is remembered.
bool Openers::recall(bool& ok) {
    if (in.readAhead == nullptr || in.readAhead->remembersNothing()) return false;
    const ReadAhead::Markup* const markup = in.readAhead->recall(cursor.tell());
    if (markup == nullptr) return false;
    ok = markup->ok;
    in.lineBreaks.setAfterReturn(markup->endsInReturn);
    if (!markup->error.empty()) tokenizer.setError(markup->error);
    buffer.append(markup->text, 1);
    cursor.seek(markup->end);
    return true;
}

}  // namespace Xml
