#include "xml/standard/WriteOptions.h"

#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Encodings.h"

namespace Xml {

namespace {

// Whether the declaration does not name the encoding, and the first bytes do not show it.
bool isFromOutside(const Prolog& prolog) {
    const Encoding taken = encodingNamed(prolog.readAs);
    if (prolog.readAs.empty()) return false;
    if (prolog.encoding.empty()) return unitOf(taken) == 1 && taken != Encoding::Utf8;
    if (taken == Encoding::Other) return prolog.encoding != prolog.readAs;
    return !isSameEncoding(encodingNamed(prolog.encoding), taken);
}

}  // namespace

// An encoding that was known from outside is said by the declaration, or a mark: the next reader may not know it.
WriteOptions asRead(const Document& document) {
    const Prolog& prolog = prologOf(document);
    const bool isWide = unitOf(encodingNamed(prolog.readAs)) > 1;
    const bool isGiven = isFromOutside(prolog);
    WriteOptions options;
    options.indent.clear();
    options.newline = prolog.newline;
    options.encoding = isWide || isGiven ? prolog.readAs : prolog.encoding;
    options.declaration = prolog.hasDeclaration || isGiven;
    options.mark = prolog.hasMark || (isWide && prolog.encoding.empty());  // nothing else says so
    return options;
}

}  // namespace Xml
