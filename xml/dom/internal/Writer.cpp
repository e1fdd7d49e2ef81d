#include "xml/dom/internal/Writer.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/internal/Escape.h"
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

// Writes elements with a stack of its own: what is told as "each child writes itself through toStream" is done here for the
// library's own classes, in a loop, with the same records and marks. Any other class gets its operations called.

namespace Xml {

namespace {

class Writer {
public:
    explicit Writer(OutStream& stream) : out(stream) {}

    void run(const Element& top) {
        if (begin(top)) {
            open.push_back({&top, 0, isMixed(top), false});
            while (!open.empty()) step();
        }
    }

private:
    struct Open {
        const Element* element;
        std::size_t child;
        bool mixed;
        bool recorded;  // as toStream does it; the outermost element's own toStream does that for it
    };

    static bool isMixed(const Element& element) {
        const NodeSpan children = NodeAccess::children(element);
        return std::any_of(children.begin(), children.end(), [](const Object* child) { return child->isCharData(); });
    }

    void put(std::string_view text) { OutStreamAccess::put(out, text); }

    // The start tag. False when the element is complete with it.
    bool begin(const Element& element) {
        put("<");
        put(element.getName());
        for (const Attribute* attribute : NodeAccess::attributes(element)) {
            if (!attribute->isOk()) continue;
            scratch = ' ';
            scratch += attribute->getName();
            scratch += "=\"";
            appendEscaped(scratch, attribute->getValue());
            scratch += '"';
            put(scratch);
        }
        const bool empty = NodeAccess::children(element).empty();
        if (empty && Element::mUseShortNotationForEmptyTags) {
            put("/>");
            return false;
        }
        put(">");
        out.incTab();
        if (empty) {
            end(element);
            return false;
        }
        return true;
    }

    void end(const Element& element) {
        out.decTab();
        put("</");
        put(element.getName());
        put(">");
    }

    // One more child of the innermost open element, or its end.
    void step() {
        Open& here = open.back();
        const Element& element = *here.element;
        const NodeSpan children = NodeAccess::children(element);
        if (!here.mixed) put("\n");
        if (here.child < children.size()) {
            writeChild(*children[here.child++]);
            return;
        }
        const bool recorded = here.recorded;
        open.pop_back();
        end(element);
        if (recorded) NodeAccess::endWriting(element, OutStreamAccess::position(out));
    }

    void writeChild(const Object& child) {
        const bool isElement = isExactly<Element>(child);
        if (!isElement && !isExactly<CharData>(child)) {
            child.toStream(out);
            return;
        }
        const int position = OutStreamAccess::position(out);
        if (Object::useRWOptimization && !NodeAccess::dirty(child) &&
            OutStreamAccess::standsAt(out, position, NodeAccess::writeStart(child), NodeAccess::writeEnd(child))) {
            out.setPosition(NodeAccess::writeEnd(child));
            return;
        }
        NodeAccess::beginWriting(child, position);
        if (!isElement) {
            out.writeDataHolder(static_cast<const CharData&>(child).data());
        } else if (const auto& element = static_cast<const Element&>(child); begin(element)) {
            open.push_back({&element, 0, isMixed(element), true});
            return;
        }
        NodeAccess::endWriting(child, OutStreamAccess::position(out));
    }

    OutStream& out;
    std::vector<Open> open;
    std::string scratch;
};

}  // namespace

void writeElement(const Element& element, OutStream& out) {
    const OutStreamAccess::Counting counting(out);
    const OutStreamAccess::Writing writing(out);
    Writer(out).run(element);
}

}  // namespace Xml
