#include "standard/WholeTree.h"

#include "standard/Events.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include <algorithm>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>
#include <utility>

namespace Xml::test {

namespace {

// Sections that stand side by side are one line, empty ones none: libxml2 has no other nodes of them.
class Lines : public EventLines {
public:
    void section(std::string_view text) { sectionText += text; }

    // Before anything else.
    void endSections() {
        if (!sectionText.empty()) comment("[" + sectionText);
        sectionText.clear();
    }

private:
    std::string sectionText;
};

struct NamedValue {
    std::string name, value;
    bool isDefault;
};

void putSorted(EventLines& lines, std::vector<NamedValue> attributes) {
    std::sort(attributes.begin(), attributes.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    for (const NamedValue& a : attributes) lines.attribute(a.name, a.value, a.isDefault);
}

// --- Ours ---

std::vector<const Attribute*> attributesOf(const Element& element) {
    std::vector<const Attribute*> all;
    for (int i = 0; i < element.getAttributeCount(); ++i) all.push_back(element.getAttribute(i));
    std::sort(all.begin(), all.end(),
              [](const auto* a, const auto* b) { return NodeAccess::order(*a) < NodeAccess::order(*b); });
    return all;
}

// Elements between begin and end, whatever their depth.
void walk(const Object& top, const std::function<void(const Object&)>& begin,
          const std::function<void(const Object&)>& end) {
    struct Level {
        const Element* element;
        int next;
    };
    std::vector<Level> open;
    const auto come = [&](const Object& node) {
        begin(node);
        if (node.isElement()) open.push_back({node.toElement(), 0});
    };
    come(top);
    while (!open.empty()) {
        Level& level = open.back();
        if (level.next < level.element->getChildCount()) {
            come(*level.element->getChild(level.next++));
        } else {
            end(*level.element);
            open.pop_back();
        }
    }
}

class Shower {
public:
    Shower(AttributeOrder itsOrder, Sections itsSections) : order(itsOrder), sections(itsSections) {}

    std::string show(const Document& document) {
        const Prolog& prolog = prologOf(document);
        around(prolog.beforeDoctype);
        if (!prolog.doctype.empty()) lines.doctype(prolog.doctype, prolog.systemId);
        around(prolog.beforeRoot);
        walk(
            *document.getRoot(), [this](const Object& node) { put(node); }, [this](const Object&) { end(); });
        around(prolog.afterRoot);
        return lines.take();
    }

private:
    void around(const std::vector<std::unique_ptr<Object>>& nodes) {
        for (const auto& node : nodes) put(*node);
    }

    void put(const Object& node) {
        if (kindOf(node) != NodeKind::CData) lines.endSections();
        switch (kindOf(node)) {
        case NodeKind::Element: return start(*node.toElement());
        case NodeKind::Text: return lines.text(node.toCharData()->getData());
        case NodeKind::CData:
            if (sections == Sections::Texts) return lines.text(node.toCharData()->getData());
            return lines.section(node.toCharData()->getData());
        case NodeKind::Comment: return lines.comment(static_cast<const Comment&>(node).getText());
        case NodeKind::Instruction: {
            const auto& instruction = static_cast<const Instruction&>(node);
            return lines.instruction(instruction.getTarget(), instruction.getContent());
        }
        default: lines.comment("a node of no kind that is read");
        }
    }

    void end() {
        lines.endSections();
        lines.end();
    }

    void start(const Element& element) {
        lines.start(element.getName());
        std::vector<NamedValue> attributes;
        for (const Attribute* attribute : attributesOf(element)) {
            if (order == AttributeOrder::OfTag) {
                lines.attribute(attribute->getName(), attribute->getValue(), isDefault(*attribute));
            } else {
                attributes.push_back({attribute->getName(), attribute->getValue(), isDefault(*attribute)});
            }
        }
        putSorted(lines, attributes);
    }

    AttributeOrder order;
    Sections sections;
    Lines lines;
};

// --- libxml2's ---

std::string textOf(const xmlChar* text) { return text != nullptr ? reinterpret_cast<const char*>(text) : ""; }

std::string qualified(const xmlNs* space, const xmlChar* name) {
    return space != nullptr && space->prefix != nullptr ? textOf(space->prefix) + ":" + textOf(name) : textOf(name);
}

void startElement(Lines& lines, xmlNode* node) {
    lines.start(qualified(node->ns, node->name));
    std::vector<NamedValue> attributes;
    for (const xmlNs* space = node->nsDef; space != nullptr; space = space->next) {
        const std::string prefix = textOf(space->prefix);
        attributes.push_back({prefix.empty() ? "xmlns" : "xmlns:" + prefix, textOf(space->href), false});
    }
    for (xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
        xmlChar* const value = xmlNodeListGetString(node->doc, attribute->children, 1);
        attributes.push_back({qualified(attribute->ns, attribute->name), textOf(value), false});
        xmlFree(value);
    }
    putSorted(lines, attributes);
}

void put(Lines& lines, xmlNode* node) {
    if (node->type != XML_CDATA_SECTION_NODE) lines.endSections();
    switch (node->type) {
    case XML_ELEMENT_NODE: return startElement(lines, node);
    case XML_TEXT_NODE: return lines.text(textOf(node->content));
    case XML_CDATA_SECTION_NODE: return lines.section(textOf(node->content));
    case XML_COMMENT_NODE: return lines.comment(textOf(node->content));
    case XML_PI_NODE: return lines.instruction(textOf(node->name), textOf(node->content));
    case XML_DTD_NODE: {
        const auto* const dtd = reinterpret_cast<const xmlDtd*>(node);
        return lines.doctype(textOf(dtd->name), textOf(dtd->SystemID));
    }
    default: lines.comment("a node of kind " + std::to_string(node->type));
    }
}

void putAll(Lines& lines, xmlNode* first) {
    xmlNode* node = first;
    while (node != nullptr) {
        put(lines, node);
        const bool isElement = node->type == XML_ELEMENT_NODE;
        if (isElement && node->children != nullptr) {
            node = node->children;
            continue;
        }
        if (isElement) lines.end();
        while (node->next == nullptr && node->parent != nullptr && node->parent->type == XML_ELEMENT_NODE) {
            node = node->parent;
            lines.endSections();
            lines.end();
        }
        node = node->next;
    }
}

}  // namespace

std::string wholeTree(const Document& document, AttributeOrder order, Sections sections) {
    return Shower(order, sections).show(document);
}

std::optional<std::string> libxml2Tree(std::string_view text, const char* encoding) {
    xmlSetStructuredErrorFunc(nullptr, [](void*, auto) {});
    xmlParserCtxt* const context = xmlNewParserCtxt();
    xmlDoc* const document = xmlCtxtReadMemory(context, text.data(), static_cast<int>(text.size()), "x", encoding,
                                               XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_HUGE | XML_PARSE_DTDATTR);
    std::optional<std::string> result;
    if (document != nullptr && context->wellFormed == 1 && context->nsWellFormed == 1) {
        Lines lines;
        putAll(lines, document->children);
        result = lines.take();
    }
    xmlFreeDoc(document);
    xmlFreeParserCtxt(context);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    return result;
}

void forEachNode(const Document& document, const std::function<void(const Object&)>& look) {
    const Prolog& prolog = prologOf(document);
    for (const auto& node : prolog.beforeDoctype) look(*node);
    for (const auto& node : prolog.beforeRoot) look(*node);
    const auto lookAt = [&](const Object& node) {
        look(node);
        if (!node.isElement()) return;
        for (const Attribute* attribute : attributesOf(*node.toElement())) look(*attribute);
    };
    walk(*document.getRoot(), lookAt, [](const Object&) {});
    for (const auto& node : prolog.afterRoot) look(*node);
}

}  // namespace Xml::test
