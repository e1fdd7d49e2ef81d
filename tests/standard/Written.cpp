#include "standard/Written.h"

#include "standard/Peers.h"
#include "standard/WholeTree.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Syntax.h"
#include <libxml/c14n.h>
#include <libxml/parser.h>

namespace Xml::test {

std::string everythingOf(const Document& document) {
    const Prolog& prolog = prologOf(document);
    std::string doctype;
    Syntax::appendLines(doctype, prolog.publicId + "\n" + prolog.systemId + "\n" + prolog.internalSubset);
    const std::string standalone = prolog.standalone ? (*prolog.standalone ? "yes" : "no") : "not said";
    return (prolog.hasDeclaration ? "declared " : "undeclared ") + prolog.encoding + " standalone " + standalone +
           (prolog.hasMark ? " marked" : "") + " read as " + prolog.readAs + "\n" + doctype + "\n" +
           wholeTree(document, AttributeOrder::OfTag, Sections::Nodes);
}

std::optional<std::string> canonicalForm(std::string_view text) {
    xmlSetStructuredErrorFunc(nullptr, [](void*, auto) {});
    xmlDoc* const document = xmlReadMemory(text.data(), static_cast<int>(text.size()), "x", nullptr,
                                           XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_HUGE | XML_PARSE_DTDATTR |
                                               XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    std::optional<std::string> result;
    if (document != nullptr) {
        xmlChar* bytes = nullptr;
        const int size = xmlC14NDocDumpMemory(document, nullptr, XML_C14N_1_0, nullptr, 1, &bytes);
        if (size >= 0) result.emplace(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
        if (bytes != nullptr) xmlFree(bytes);
    }
    xmlFreeDoc(document);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    return result;
}

bool isSameByLibxml2(std::string_view text, const Document& document) {
    std::string tree = wholeTree(document, AttributeOrder::ByName, Sections::Nodes);
    for (std::size_t at = tree.find("*\n"); at != std::string::npos; at = tree.find("*\n", at)) tree.erase(at, 1);
    return libxml2Tree(text, nullptr) == tree;
}

std::string expatRefusal(std::string_view text) {
    const PeerVerdict verdict = askExpat(text, false);
    return verdict.isAccepted || isAboutAParameterEntity(verdict, text) ? "" : "Expat: " + verdict.error;
}

}  // namespace Xml::test
