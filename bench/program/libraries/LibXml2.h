// libxml2: blanks between elements, comments and instructions are dropped; nothing is limited or fetched.
#pragma once
#include "libraries/Seen.h"
#include "libraries/Unreadable.h"
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/valid.h>
#include <libxml/xpath.h>
#include <memory>
#include <string>

namespace bench {

struct LibXml2 {
    static constexpr char kName[] = "libxml2";
    struct Free {
        void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
        void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
        void operator()(xmlValidCtxt* context) const { xmlFreeValidCtxt(context); }
        void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
        void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
    };
    using Tree = std::unique_ptr<xmlDoc, Free>;
    using Context = std::unique_ptr<xmlParserCtxt, Free>;

    struct Ways {
        // What a reference to an entity stands for belongs to the document type, not to this tree.
        static xmlNode* child(xmlNode* node) {
            const bool isHere = node->type == XML_ELEMENT_NODE || node->type == XML_DOCUMENT_NODE;
            return isHere ? node->children : nullptr;
        }
        static xmlNode* next(xmlNode* node) { return node->next; }
        static xmlNode* parent(xmlNode* node) { return node->parent; }
    };

    static constexpr int kOptions = XML_PARSE_NOBLANKS | XML_PARSE_HUGE | XML_PARSE_COMPACT | XML_PARSE_NONET |
                                    XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

    static Context context() {
        Context context(xmlNewParserCtxt());
        context->sax->comment = nullptr;
        context->sax->processingInstruction = nullptr;
        return context;
    }
    static Tree checked(const Context& context, xmlDoc* document) {
        if (document) return Tree(document);
        const xmlError* error = xmlCtxtGetLastError(context.get());
        throw Unreadable(error ? "line " + std::to_string(error->line) + ": " + error->message : "not read");
    }
    static Tree parse(const std::string& text) {
        const Context in = context();
        const int size = static_cast<int>(text.size());
        return checked(in, xmlCtxtReadMemory(in.get(), text.data(), size, nullptr, nullptr, kOptions));
    }
    static Tree parseFile(const std::string& path) {
        const Context in = context();
        return checked(in, xmlCtxtReadFile(in.get(), path.c_str(), nullptr, kOptions));
    }
    static std::string_view view(const xmlChar* text) {
        return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
    }
    static Seen read(const Tree& tree) {
        Seen seen;
        walk<Ways>(reinterpret_cast<xmlNode*>(tree.get()), [&](xmlNode* node) {
            if (node->type == XML_ELEMENT_NODE) {
                seen.element(view(node->name));
                // Declarations of namespaces are no attributes here, but they are attributes of the document.
                for (const xmlNs* space = node->nsDef; space; space = space->next) {
                    seen.attribute(view(space->prefix), view(space->href));
                }
                for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
                    seen.attribute(view(attribute->name),
                                   attribute->children ? view(attribute->children->content) : "");
                }
            } else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                seen.text(view(node->content));
            }
        });
        return seen;
    }
    static std::size_t write(const Tree& tree) {
        xmlChar* text = nullptr;
        int size = 0;
        xmlDocDumpFormatMemory(tree.get(), &text, &size, 1);
        xmlFree(text);
        return static_cast<std::size_t>(size);
    }
    static Tree copy(const Tree& tree) { return Tree(xmlCopyDoc(tree.get(), 1)); }
    static std::size_t find(const Tree& tree, const std::string& path) {
        const std::unique_ptr<xmlXPathContext, Free> context(xmlXPathNewContext(tree.get()));
        context->error = [](void*, xmlErrorPtr) {};  // it is kept, and not printed
        const std::unique_ptr<xmlXPathObject, Free> found(
            xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context.get()));
        if (context->lastError.code != 0) throw std::runtime_error(context->lastError.message);
        return found && found->nodesetval != nullptr ? static_cast<std::size_t>(found->nodesetval->nodeNr) : 0;
    }
};

}  // namespace bench
