#include "standard/Streamed.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

using Event = StreamReader::Event;

std::string placed(int depth, const Place& place, const std::string& what) {
    return std::to_string(depth) + " " + std::to_string(place.offset) + " " + std::to_string(place.line) + ":" +
           std::to_string(place.column) + " " + what + "\n";
}

// '&', '<' and '>' as they are, which a tree has as references.
std::string plain(std::string text) {
    const std::pair<const char*, const char*> kReferences[] = {{"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}};
    for (const auto& [reference, character] : kReferences) {
        const std::string name = reference;
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1))
            text.replace(at, name.size(), character);
    }
    return text;
}

std::string attributesOf(const Element& element) {
    std::map<std::uint64_t, std::string> inOrder;
    for (int i = 0; i < element.getAttributeCount(); ++i) {
        const Attribute& attribute = *element.getAttribute(i);
        inOrder[NodeAccess::order(attribute)] = " " + attribute.getName() + "='" + attribute.getValue() + "'";
    }
    std::string result;
    for (const auto& attribute : inOrder) result += attribute.second;
    return result;
}

// Ends stand where the tag does that is at hand: the tree does not know it.
std::string ended(int depth, const std::string& name) { return std::to_string(depth) + " </" + name + "\n"; }

std::string leafOf(const Object& node, int depth) {
    const Place place = placeOf(node);
    switch (kindOf(node)) {
    case NodeKind::Text: return placed(depth, place, "'" + plain(static_cast<const CharData&>(node).data()) + "'");
    case NodeKind::CData: return placed(depth, place, "[" + plain(static_cast<const CharData&>(node).data()) + "]");
    case NodeKind::Comment: return placed(depth, place, "!" + static_cast<const Comment&>(node).getText());
    case NodeKind::Instruction: {
        const auto& instruction = static_cast<const Instruction&>(node);
        return placed(depth, place, "?" + instruction.getTarget() + " " + instruction.getContent());
    }
    default: return "?";
    }
}

std::string elementOf(const Element& element, int depth) {
    const std::string& name = element.getName();
    std::string lines = placed(depth, placeOf(element), "<" + name + attributesOf(element));
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Object& child = *element.getChild(i);
        lines += kindOf(child) == NodeKind::Element ? elementOf(static_cast<const Element&>(child), depth + 1)
                                                    : leafOf(child, depth);
    }
    return lines + ended(depth, name);
}

std::string around(const std::vector<std::unique_ptr<Object>>& nodes) {
    std::string lines;
    for (const auto& node : nodes) lines += leafOf(*node, 0);
    return lines;
}

}  // namespace

std::string lineOf(const StreamReader& reader, Event event) {
    const std::string name(reader.name());
    const std::string text(reader.text());
    switch (event) {
    case Event::Start: {
        std::string attributes;
        for (int i = 0; i < reader.attributeCount(); ++i) {
            attributes +=
                " " + std::string(reader.attributeName(i)) + "='" + std::string(reader.attributeValue(i)) + "'";
        }
        return placed(reader.depth(), reader.place(), "<" + name + attributes);
    }
    case Event::End: return ended(reader.depth(), name);
    case Event::Text: return placed(reader.depth(), reader.place(), "'" + text + "'");
    case Event::CData: return placed(reader.depth(), reader.place(), "[" + text + "]");
    case Event::Comment: return placed(reader.depth(), reader.place(), "!" + text);
    case Event::Instruction: return placed(reader.depth(), reader.place(), "?" + name + " " + text);
    case Event::Doctype: {
        const Prolog& prolog = reader.prolog();
        return "D" + name + " " + prolog.doctype + " " + prolog.publicId + " " + prolog.systemId + " " +
               prolog.internalSubset + "\n";
    }
    case Event::Finished: return "finished\n";
    case Event::Failed: return "failed\n";
    }
    return {};
}

std::string linesOf(StreamReader& reader) {
    std::string lines;
    for (;;) {
        const Event event = reader.next();
        lines += lineOf(reader, event);
        if (event == Event::Finished || event == Event::Failed) return lines;
    }
}

std::string linesOf(const Document& document) {
    const Prolog& prolog = prologOf(document);
    std::string lines = around(prolog.beforeDoctype);
    if (!prolog.doctype.empty()) {
        lines += "D" + prolog.doctype + " " + prolog.doctype + " " + prolog.publicId + " " + prolog.systemId + " " +
                 prolog.internalSubset + "\n";
    }
    return lines + around(prolog.beforeRoot) + elementOf(*document.getRoot(), 1) + around(prolog.afterRoot) +
           "finished\n";
}

std::string nodesOf(const Object& node) {
    return kindOf(node) == NodeKind::Element ? elementOf(static_cast<const Element&>(node), 1) : leafOf(node, 1);
}

}  // namespace Xml::test
