#include "xml/easy/Texts.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include "xml/dtd/internal/PlainText.h"
#include "xml/easy/internal/MakeText.h"
#include "xml/text/internal/Escape.h"

namespace Xml {

namespace {

std::string textBelow(const Element& top) {
    std::string text;
    Preorder<const Element> walk;
    walk.enter(top);
    while (!walk.atEnd()) {
        const Object* const node = walk.next();
        if (node == nullptr) {
            walk.leave();
        } else if (isElement(*node)) {
            walk.enter(static_cast<const Element&>(*node));
        } else if (isCharData(*node)) {
            appendPlain(text, static_cast<const CharData&>(*node));
        }
    }
    return text;
}

}  // namespace

std::string textOf(const Object& node) {
    switch (kindOf(node)) {
    case NodeKind::Element: return textBelow(static_cast<const Element&>(node));
    case NodeKind::Text:
    case NodeKind::CData: {
        std::string text;
        appendPlain(text, static_cast<const CharData&>(node));
        return text;
    }
    case NodeKind::Attribute: return std::string(NodeAccess::text(static_cast<const Attribute&>(node)));
    case NodeKind::Comment: return std::string(NodeAccess::text(static_cast<const Comment&>(node)));
    case NodeKind::Instruction: return std::string(NodeAccess::text(static_cast<const Instruction&>(node)));
    case NodeKind::Document: {
        const Element* const root = static_cast<const Document&>(node).getRoot();
        return root != nullptr ? textBelow(*root) : std::string();
    }
    case NodeKind::Dtd:
    case NodeKind::Other: break;
    }
    return {};
}

void setText(Element& e, std::string_view text) {
    std::unique_ptr<CharData> child = text.empty() ? nullptr : makeText(text);
    e.killChildren();
    if (child == nullptr) return;
    // Room for one is in the element.
    e.addChild(child.get());
    child.release();
}

std::unique_ptr<CharData> makeText(std::string_view text) {
    std::unique_ptr<CharData> made = NodeAccess::exactly(NodeClass::CharData, new CharData());
    appendEscaped(NodeAccess::ownText(*made), text);
    return made;
}

}  // namespace Xml
