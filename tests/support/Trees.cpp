#include "support/Trees.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/StringInStream.h"
#include <sstream>
#include <stdexcept>

namespace Xml::test {

Outcome::Outcome() = default;
Outcome::Outcome(Outcome&&) noexcept = default;
Outcome::~Outcome() = default;

namespace {

// Not by toString, which keeps its text in the node: several threads may look at a tree.
std::string dump(const Instruction& instruction) {
    const std::string& content = instruction.getContent();
    return "<?" + instruction.getTarget() + (content.empty() ? "" : " ") + content + "?>";
}

}  // namespace

std::string dump(const Object* node) {
    if (node == nullptr) return "null";
    if (node->isDocument()) {
        const Element* root = node->toDocument()->getRoot();
        return root != nullptr ? dump(root) : "none";
    }
    switch (kindOf(*node)) {
    case NodeKind::Comment: return "<!--" + node->toString() + "-->";
    case NodeKind::Instruction: return dump(static_cast<const Instruction&>(*node));
    case NodeKind::CData: return "[" + node->toCharData()->data() + "]";
    default: break;
    }
    if (node->isCharData()) return "'" + node->toCharData()->data() + "'";
    if (node->isAttribute()) return node->toAttribute()->getName() + "=" + node->toAttribute()->getValue();
    if (node->isDtd()) return node->toDtd()->toString();

    const Element& element = *node->toElement();
    std::string text = element.getName();
    if (element.getAttributeCount() > 0) {
        text += '[';
        for (int i = 0; i < element.getAttributeCount(); ++i)
            text += (i > 0 ? " " : "") + dump(element.getAttribute(i));
        text += ']';
    }
    if (element.getChildCount() > 0) {
        text += '(';
        for (int i = 0; i < element.getChildCount(); ++i) text += (i > 0 ? " " : "") + dump(element.getChild(i));
        text += ')';
    }
    return text;
}

std::string textOf(const Object& node) {
    std::ostringstream text;
    FileOutStream out(&text);
    node.toStream(out);
    return text.str();
}

Outcome readDocument(const std::string& text, Source source) {
    Outcome outcome;
    withSource(source, text, [&outcome](InStream& in) {
        DocumentReader reader;
        outcome.ok = reader.parse(in);
        outcome.error = reader.getErrorMessage();
        outcome.document.reset(reader.extractDocument());
    });
    return outcome;
}

std::string treeOf(const std::string& text, Source source) {
    const Outcome outcome = readDocument(text, source);
    return outcome.ok ? dump(outcome.document.get()) : "error: " + outcome.error;
}

std::string errorOf(const std::string& text, Source source) {
    const Outcome outcome = readDocument(text, source);
    if (outcome.ok) return "";
    return outcome.error.substr(0, outcome.error.rfind(" <"));
}

std::unique_ptr<Element> readElement(const std::string& text) {
    StringInStream in(text);
    ElementReader reader;
    if (!reader.parse(in)) throw std::invalid_argument(reader.getErrorMessage());
    return std::unique_ptr<Element>(reader.extractRoot());
}

std::unique_ptr<Dtd> readDtd(const std::string& declarations, const std::string& name) {
    StringInStream in(declarations);
    DTDReader reader(name);
    if (!reader.parse(in)) throw std::invalid_argument(reader.getErrorMessage());
    return std::unique_ptr<Dtd>(reader.extractDtd());
}

}  // namespace Xml::test
