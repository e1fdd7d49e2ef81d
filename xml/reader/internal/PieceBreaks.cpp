#include "xml/reader/internal/PieceBreaks.h"

#include "xml/reader/internal/MarkupScan.h"
#include "xml/stream/internal/Scan.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/internal/ByteClasses.h"

namespace Xml::PieceBreaks {

using namespace MarkupScan;

namespace {

// The end of the first token of a text before a '<'.
const char* plainTriedFrom(const char* first) {
    if (*first == '/') return first + 2;
    if (ByteClass::is(*first, ByteClass::kPunctuation)) return first + 1;
    do {
        ++first;
    } while (!ByteClass::is(*first, ByteClass::kWordEnd));
    return first + 1;
}

}  // namespace

void note(InStream& in, const char* from, const char* to) {
    StreamAccess::note(in, from, to);
    StreamAccess::noteOther(in);
}

// What follows a name is read again.
void noteStartTag(InStream& in, const char* name, const char* to) {
    const char* again = nameEnd(name + 1, to);
    StreamAccess::note(in, name, again + 1);
    for (const char* at = whiteEnd(again, to); isNameStart(*at); at = whiteEnd(at, to)) {
        at = nameEnd(at + 1, to);
        StreamAccess::note(in, again, at + 1);
        again = at;
        const char* const quote = whiteEnd(whiteEnd(at, to) + 1, to);  // after the '='
        at = Scan::find(quote + 1, to, *quote) + 1;
    }
    StreamAccess::note(in, again, to);
}

// All of a text is read again after its first token.
void noteText(InStream& in, const char* begin, const char* first, const char* tried, const char* to) {
    if (tried == nullptr) tried = plainTriedFrom(first);
    if (tried <= to + 1 && tried[-1] != '\r') return note(in, first, to);
    StreamAccess::note(in, begin, tried);
    StreamAccess::note(in, begin, to + 1);
}

}  // namespace Xml::PieceBreaks
