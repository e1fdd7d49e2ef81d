#include "standard/Oracles.h"

#include "xml/dom/Document.h"
#include "xml/standard/Read.h"

#include <cstring>
#include <expat.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <memory>
#include <type_traits>

namespace Xml::test {

namespace {

// --- Expat ---

using ExpatParser = std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)>;

XML_Status parseWhole(XML_Parser parser, const std::string& text) {
    return XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1);
}

int XMLCALL readExternal(XML_Parser parser, const XML_Char* context, const XML_Char*, const XML_Char*,
                         const XML_Char*) {
    const auto* text = static_cast<const std::string*>(XML_GetUserData(parser));
    const ExpatParser nested(XML_ExternalEntityParserCreate(parser, context, nullptr), XML_ParserFree);
    return nested ? parseWhole(nested.get(), *text) : XML_STATUS_ERROR;
}

// --- libxml2 ---

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct FreeContext {
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
};

// The text for every external entity while a LibXml2World lives: libxml2 has one loader for all contexts.
const std::string* mExternal = nullptr;

xmlParserInput* loadExternal(const char* name, const char*, xmlParserCtxt* context) {
    if (mExternal == nullptr) return nullptr;
    xmlParserInput* const input =
        xmlNewStringInputStream(context, reinterpret_cast<const xmlChar*>(mExternal->c_str()));
    if (input != nullptr) input->filename = reinterpret_cast<char*>(xmlStrdup(reinterpret_cast<const xmlChar*>(name)));
    return input;
}

// What libxml2 has once for all contexts: the loader of external entities, and what hears of errors. They are printed
// nowhere.
class LibXml2World {
public:
    explicit LibXml2World(const std::optional<std::string>& external) : before(xmlGetExternalEntityLoader()) {
        mExternal = external ? &*external : nullptr;
        xmlSetExternalEntityLoader(loadExternal);
        xmlSetStructuredErrorFunc(nullptr, [](void*, xmlError*) {});
    }
    ~LibXml2World() {
        xmlSetStructuredErrorFunc(nullptr, nullptr);
        xmlSetExternalEntityLoader(before);
        mExternal = nullptr;
    }
    LibXml2World(const LibXml2World&) = delete;
    LibXml2World& operator=(const LibXml2World&) = delete;

private:
    const xmlExternalEntityLoader before;
};

}  // namespace

Verdict askExpat(const Question& question) {
    const ExpatParser parser(question.namespaces ? XML_ParserCreateNS(nullptr, ' ') : XML_ParserCreate(nullptr),
                             XML_ParserFree);
    XML_SetParamEntityParsing(parser.get(), XML_PARAM_ENTITY_PARSING_ALWAYS);
    std::string external;
    if (question.external) {
        external = *question.external;
        XML_SetUserData(parser.get(), &external);
        XML_SetExternalEntityRefHandler(parser.get(), readExternal);
    }
    Verdict verdict;
    verdict.isAccepted = parseWhole(parser.get(), question.document) == XML_STATUS_OK;
    if (!verdict.isAccepted) verdict.message = XML_ErrorString(XML_GetErrorCode(parser.get()));
    return verdict;
}

Verdict askLibXml2(const Question& question) {
    const LibXml2World world(question.external);
    const std::unique_ptr<xmlParserCtxt, FreeContext> context(xmlNewParserCtxt());
    const int options = XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                        (question.external ? XML_PARSE_DTDLOAD : 0);
    const std::unique_ptr<xmlDoc, FreeDocument> document(xmlCtxtReadMemory(context.get(), question.document.data(),
                                                                           static_cast<int>(question.document.size()),
                                                                           "document.xml", nullptr, options));
    Verdict verdict;
    verdict.isAccepted =
        document != nullptr && context->wellFormed != 0 && (!question.namespaces || context->nsWellFormed != 0);
    if (!verdict.isAccepted && context->lastError.message != nullptr) verdict.message = context->lastError.message;
    return verdict;
}

Verdict askReader(const Question& question) {
    ReadOptions options;
    options.namespaces = question.namespaces;
    const ReadResult result = readText(question.document, options);
    Verdict verdict;
    verdict.isAccepted = result.isWellFormed();
    verdict.message = result.message();
    if (!verdict.isAccepted) verdict.rule = result.problems().front().rule;
    return verdict;
}

}  // namespace Xml::test
