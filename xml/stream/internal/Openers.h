#pragma once

#include "xml/stream/internal/Tokenizer.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// Tokens that begin with '<'. What follows "<!" and "<?" is found by trials, and each trial reads a token, which may
// begin with an opener again.
//
// Goes down a chain of openers that stand directly after each other, reads the one plain token after the innermost, and
// comes up closing each. The depth of a chain costs memory, not stack.
class Openers {
public:
    explicit Openers(Tokenizer& itsTokenizer)
        : tokenizer(itsTokenizer), cursor(itsTokenizer.in), in(itsTokenizer.in), buffer(itsTokenizer.buffer()) {}

    // Reads the rest of a token whose '<' is in the parse buffer.
    bool read();

private:
    // What StorePosition returns, with lengths of the parse buffer that an int cannot hold.
    struct Place {
        int position;
        std::size_t length;
    };

    // What the token that is read after an opener should be.
    enum class Trial { Name, Bracket, Cdata, CdataBracket };

    struct Opener {
        char kind;  // '!' or '?'
        Trial trial;
        Place saved;                           // where to come back to
        int begin;                             // the position after its '<'
        std::size_t textBegin;                 // of its '<' in the parse buffer
        std::optional<unsigned> messageCount;  // when it was met, of an inner one
    };

    bool opens(bool& ok);
    bool readAfterInnermost();
    bool closes(Opener& opener, bool& ok);
    bool closesAsName(Opener& opener, bool& ok);
    bool closesAfterBracket(Opener& opener, bool& ok);
    bool closesWithDashes(Opener& opener);
    void setNotAName(std::string_view token);

    void push(char kind);
    void pop();
    Opener& innermost() { return inner.empty() ? *outermost : inner.back(); }

    Place place() const { return {cursor.tell(), buffer.size()}; }
    void comeBack(const Place& place);
    void noteAgain(int position);

    void remember(const Opener& opener, bool ok);
    bool recall(bool& ok);

    Tokenizer& tokenizer;
    Cursor cursor;
    InStream& in;
    std::string& buffer;

    // The open ones. Nearly always there is one at most, which needs no memory of its own.
    std::optional<Opener> outermost;
    std::vector<Opener> inner;

    std::optional<int> failedSection;  // where the trial for "CDATA[" failed last
};

}  // namespace Xml
