#include "xml/standard/internal/PrologWriter.h"

#include "xml/dom/Prolog.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/internal/DtdText.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/OutputForm.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/text/internal/Utf8.h"
#include <string>
#include <string_view>

namespace Xml::PrologWriter {

namespace {

constexpr const char* kWhat = "the document type";

// The parts of a document type declaration.
struct Parts {
    std::string_view name, publicId, systemId, subset;
    bool isStandalone;  // the document
};

std::string quoted(std::string_view text) {
    const char quote = text.find('"') == std::string_view::npos ? '"' : '\'';
    return quote + std::string(text) + quote;
}

std::string declarationOf(const Parts& parts) {
    std::string text = "<!DOCTYPE " + std::string(parts.name);
    if (!parts.publicId.empty()) {
        text += " PUBLIC " + quoted(parts.publicId) + ' ' + quoted(parts.systemId);
    } else if (!parts.systemId.empty()) {
        text += " SYSTEM " + quoted(parts.systemId);
    }
    if (!parts.subset.empty()) text += " [" + std::string(parts.subset) + ']';
    return text + '>';
}

// Whether it is what a reader finds in it: the parts come from programs, and may be anything. `written` is what it
// declares.
bool check(Markup& markup, const std::string& declaration, const Parts& parts, Declarations& written) {
    const char* const end = declaration.data() + declaration.size();
    if (Utf8::check(declaration.data(), end).ending != Utf8::Ending::Whole)
        return markup.fail(std::string(kWhat) + " has bytes that are not UTF-8",
                           StandardRules::kCharacterEncodingInEntities);
    Lexer::Options options;
    options.namespaces = false;
    options.entityGrowth = ReadOptions().entityGrowth;
    Lexer lexer(options);
    const std::string text = (parts.isStandalone ? "<?xml version=\"1.0\" standalone=\"yes\"?>" : "") + declaration;
    lexer.setWindow(text, true);
    const Lexer::Event event = lexer.next();
    if (event == Lexer::Event::Failed)
        return markup.fail(kWhat + (" cannot be written: " + lexer.fault().text), lexer.fault().rule);
    const Lexer::Doctype& found = lexer.doctype();
    if (event == Lexer::Event::Doctype && lexer.ahead().empty() && lexer.name() == parts.name &&
        found.publicId == parts.publicId && found.systemId == parts.systemId && found.subset == parts.subset) {
        written = lexer.takeDeclarations();
        return true;
    }
    return markup.fail(std::string(kWhat) + " cannot be written: its parts would be read as other ones",
                       StandardRules::kDoctypedecl);
}

bool putLines(Markup& markup, const std::string& text) {
    std::string lines;
    Syntax::appendLines(lines, text);
    return markup.putAsIs(lines, kWhat);
}

}  // namespace

void putDeclaration(Markup& markup, const WriteOptions& options, const Prolog* prolog) {
    WriteBuffer& out = markup.buffer();
    out.put("<?xml version=\"1.0\"");
    if (const std::string encoding = declaredEncoding(options, prolog); !encoding.empty()) {
        out.put(" encoding=\"");
        out.put(encoding);
        out.put("\"");
    }
    if (prolog != nullptr && prolog->standalone)
        out.put(*prolog->standalone ? " standalone=\"yes\"" : " standalone=\"no\"");
    out.put("?>");
    out.put(markup.lineEnd());
}

bool putDoctype(Markup& markup, const WriteOptions& options, const Prolog& prolog, const Dtd* dtd,
                Declarations& written) {
    const bool isStandalone = options.declaration && prolog.standalone.value_or(false);
    Parts parts{prolog.doctype, prolog.publicId, prolog.systemId, prolog.internalSubset, isStandalone};
    std::string subset;
    if (prolog.doctype.empty()) {
        subset = declarationsOf(*dtd);
        if (!subset.empty()) subset.insert(0, 1, '\n');
        parts = {DtdAccess::name(*dtd), {}, {}, subset, isStandalone};
    }
    if (!markup.checkName(parts.name, "a document type")) return false;
    const std::string declaration = declarationOf(parts);
    if (!check(markup, declaration, parts, written) || !putLines(markup, declaration)) return false;
    markup.buffer().put(markup.lineEnd());
    return true;
}

bool putDeclarations(Markup& markup, const Dtd& dtd) {
    const std::string declarations = declarationsOf(dtd);
    const Parts parts{"a", {}, {}, declarations, false};
    Declarations written;
    return check(markup, declarationOf(parts), parts, written) && putLines(markup, declarations);
}

}  // namespace Xml::PrologWriter
