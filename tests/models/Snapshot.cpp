#include "models/Snapshot.h"

#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/InStream.h"

namespace Xml::test {

namespace {

void collectLinks(const Object& node, std::vector<const Dtd*>& links) {
    links.push_back(NodeTestAccess::dtd(node));
    if (!node.isElement()) return;
    const Element& element = *node.toElement();
    for (int i = 0; i < element.getAttributeCount(); ++i) collectLinks(*element.getAttribute(i), links);
    for (int i = 0; i < element.getChildCount(); ++i) collectLinks(*element.getChild(i), links);
}

}  // namespace

std::string linksOf(const Object* node, const Dtd* dtd, const Object* parent) {
    if (node == nullptr) return "null";
    const Dtd* link = NodeTestAccess::dtd(*node);
    std::string text = node->isElement()    ? node->toElement()->getName()
                       : node->isCharData() ? "'" + node->toCharData()->data() + "'"
                                            : dump(node);
    text += link == nullptr ? "-" : link == dtd ? "+" : "?";
    text += NodeTestAccess::dirty(*node) ? "d" : "c";
    if (NodeTestAccess::writeStart(*node) != -1 || NodeTestAccess::writeEnd(*node) != -1) {
        text +=
            std::to_string(NodeTestAccess::writeStart(*node)) + ".." + std::to_string(NodeTestAccess::writeEnd(*node));
    }
    if (node->getParent() != parent) text += "!";
    if (node->isDocument()) {
        const Document& document = *node->toDocument();
        if (document.getDtd() != nullptr) text += " " + linksOf(document.getDtd(), dtd, node);
        return text + " " + linksOf(document.getRoot(), dtd, node);
    }
    if (!node->isElement()) return text;
    const Element& element = *node->toElement();
    for (int i = 0; i < element.getAttributeCount(); ++i) text += " " + linksOf(element.getAttribute(i), dtd, node);
    text += "(";
    for (int i = 0; i < element.getChildCount(); ++i) text += " " + linksOf(element.getChild(i), dtd, node);
    return text + ")";
}

std::vector<const Dtd*> linksIn(const Object& node) {
    std::vector<const Dtd*> links;
    collectLinks(node, links);
    return links;
}

std::string fullText(const Dtd* dtd) {
    if (dtd == nullptr) return "none";
    Dtd all(*dtd);
    for (const char* name : {"a", "b", "c", "d", "ab", "r"}) all.addElementDecl(name);
    return textOf(*dtd) + textOf(all);
}

std::string stateOf(const InStream& in) {
    return std::to_string(in.getPosition()) + " (" + std::to_string(in.getLine()) + ", " +
           std::to_string(in.getColumn()) + ") " + in.getErrorMessage();
}

std::string placesOf(InStream& in, std::size_t size, std::size_t step) {
    std::string text;
    for (std::size_t position = 0; position <= size + 1; position += step) {
        in.setPosition(static_cast<int>(position));
        text += std::to_string(in.getLine()) + ":" + std::to_string(in.getColumn()) + " ";
    }
    return text;
}

}  // namespace Xml::test
