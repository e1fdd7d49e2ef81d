#include "xml/standard/WriteOptions.h"

#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Encodings.h"

namespace Xml {

WriteOptions asRead(const Document& document) {
    const Prolog& prolog = prologOf(document);
    const Encoding taken = encodingNamed(prolog.readAs);
    const bool isWide = unitOf(taken) > 1;
    const bool isNamed = !prolog.encoding.empty();
    WriteOptions options;
    options.indent.clear();
    options.newline = prolog.newline;
    options.encoding =
        isWide && (!isNamed || isSameEncoding(encodingNamed(prolog.encoding), taken)) ? prolog.readAs : prolog.encoding;
    options.declaration = prolog.hasDeclaration;
    options.mark = prolog.hasMark || (isWide && !isNamed);  // nothing else says so
    return options;
}

}  // namespace Xml
