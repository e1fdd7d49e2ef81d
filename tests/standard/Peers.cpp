#include "standard/Peers.h"

#include "standard/Events.h"
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <expat.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <memory>

namespace Xml::test {

namespace {

struct ExpatRun {
    XML_Parser parser = nullptr;
    EventLines lines;
    bool hasSkipped = false;
    bool isInDoctype = false;
};

ExpatRun& runOf(void* data) { return *static_cast<ExpatRun*>(data); }

void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** attributes) {
    ExpatRun& run = runOf(data);
    run.lines.start(name);
    const int given = XML_GetSpecifiedAttributeCount(run.parser);
    for (int i = 0; attributes[i] != nullptr; i += 2) run.lines.attribute(attributes[i], attributes[i + 1], i >= given);
}
void XMLCALL onEnd(void* data, const XML_Char*) { runOf(data).lines.end(); }
void XMLCALL onText(void* data, const XML_Char* text, int length) {
    runOf(data).lines.text({text, static_cast<std::size_t>(length)});
}
void XMLCALL onComment(void* data, const XML_Char* text) {
    if (!runOf(data).isInDoctype) runOf(data).lines.comment(text);
}
void XMLCALL onInstruction(void* data, const XML_Char* target, const XML_Char* content) {
    if (!runOf(data).isInDoctype) runOf(data).lines.instruction(target, content);
}
// 2.11: each line end is a line feed, wherever it stands. Expat leaves those of system identifiers as they are.
void XMLCALL onDoctype(void* data, const XML_Char* name, const XML_Char* systemId, const XML_Char*, int) {
    std::string identifier;
    for (const char* at = systemId; at != nullptr && *at != '\0'; ++at) {
        if (*at != '\r') {
            identifier += *at;
        } else if (at[1] != '\n') {
            identifier += '\n';
        }
    }
    runOf(data).lines.doctype(name, identifier);
    runOf(data).isInDoctype = true;
}
void XMLCALL onDoctypeEnd(void* data) { runOf(data).isInDoctype = false; }
void XMLCALL onSkipped(void* data, const XML_Char*, int isParameter) {
    if (isParameter == 0) runOf(data).hasSkipped = true;
}
int XMLCALL onExternal(XML_Parser parser, const XML_Char* context, const XML_Char*, const XML_Char*, const XML_Char*) {
    if (context != nullptr) static_cast<ExpatRun*>(XML_GetUserData(parser))->hasSkipped = true;
    return XML_STATUS_OK;
}

// The errors that make the document malformed, or not so by namespaces.
void onError(void* data, xmlError* error) {
    std::string& all = *static_cast<std::string*>(data);
    const bool counts =
        error->level == XML_ERR_FATAL || (error->level == XML_ERR_ERROR && error->domain == XML_FROM_NAMESPACE);
    if (counts && error->message != nullptr) all += error->message;
}

}  // namespace

PeerVerdict askExpat(std::string_view text, bool hasNamespaces) {
    ExpatRun run;
    run.parser = hasNamespaces ? XML_ParserCreateNS("UTF-8", '\f') : XML_ParserCreate("UTF-8");
    XML_SetUserData(run.parser, &run);
    XML_SetHashSalt(run.parser, 1);
    XML_SetParamEntityParsing(run.parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
    XML_SetElementHandler(run.parser, onStart, onEnd);
    XML_SetCharacterDataHandler(run.parser, onText);
    XML_SetCommentHandler(run.parser, onComment);
    XML_SetProcessingInstructionHandler(run.parser, onInstruction);
    XML_SetDoctypeDeclHandler(run.parser, onDoctype, onDoctypeEnd);
    XML_SetSkippedEntityHandler(run.parser, onSkipped);
    XML_SetExternalEntityRefHandler(run.parser, onExternal);
    PeerVerdict verdict;
    verdict.isAccepted = XML_Parse(run.parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
    if (!verdict.isAccepted) {
        verdict.error = XML_ErrorString(XML_GetErrorCode(run.parser));
        verdict.errorAt = XML_GetCurrentByteIndex(run.parser);
    }
    verdict.hasSkipped = run.hasSkipped;
    verdict.events = run.lines.take();
    XML_ParserFree(run.parser);
    return verdict;
}

bool isAboutAParameterEntity(const PeerVerdict& verdict, std::string_view text) {
    return (verdict.error == "undefined entity" || verdict.error == "entity declared in parameter entity") &&
           text.at(static_cast<std::size_t>(verdict.errorAt)) == '%';
}

PeerVerdict askLibxml2(std::string_view text, bool hasNamespaces) {
    PeerVerdict verdict;
    xmlSetStructuredErrorFunc(&verdict.error, onError);
    xmlParserCtxtPtr context = xmlNewParserCtxt();
    xmlDocPtr document =
        xmlCtxtReadMemory(context, text.data(), static_cast<int>(text.size()), "x", "UTF-8",
                          XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_HUGE | (hasNamespaces ? 0 : XML_PARSE_SAX1));
    verdict.isAccepted =
        document != nullptr && context->wellFormed == 1 && (!hasNamespaces || context->nsWellFormed == 1);
    if (document != nullptr) xmlFreeDoc(document);
    xmlFreeParserCtxt(context);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    return verdict;
}

}  // namespace Xml::test
