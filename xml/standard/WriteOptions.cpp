#include "xml/standard/WriteOptions.h"

#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Encodings.h"

namespace Xml {

namespace {

// Whether what was read is in the encoding that its declaration names. Those without a name here are known by theirs.
bool isAsDeclared(const Prolog& prolog) {
    const Encoding taken = encodingNamed(prolog.readAs);
    return taken == Encoding::Other ? prolog.encoding == prolog.readAs
                                    : isSameEncoding(encodingNamed(prolog.encoding), taken);
}

}  // namespace

// An encoding that was known from outside is said by the declaration, or a mark: the next reader may not know it.
WriteOptions asRead(const Document& document) {
    const Prolog& prolog = prologOf(document);
    const Encoding taken = encodingNamed(prolog.readAs);
    const bool isWide = unitOf(taken) > 1;
    const bool isNamed = !prolog.encoding.empty();
    const bool isUnknown = prolog.readAs.empty();
    const bool isFromOutside = !isUnknown && (isNamed ? !isAsDeclared(prolog) : !isWide && taken != Encoding::Utf8);
    WriteOptions options;
    options.indent.clear();
    options.newline = prolog.newline;
    options.encoding = isWide || isFromOutside ? prolog.readAs : prolog.encoding;
    options.declaration = prolog.hasDeclaration || isFromOutside;
    options.mark = prolog.hasMark || (isWide && !isNamed);  // nothing else says so
    return options;
}

}  // namespace Xml
