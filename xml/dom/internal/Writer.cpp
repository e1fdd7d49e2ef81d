#include "xml/dom/internal/Writer.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/Preorder.h"
#include "xml/dom/internal/Rewriting.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/internal/Escape.h"
#include <algorithm>
#include <string>
#include <string_view>

// An element is written by writing its start tag, each child through toStream, and its end tag. For children that are
// exactly of the library's classes that is done here in a loop, with the same records and marks. Any other gets its
// toStream called.

namespace Xml {

namespace {

class Writer {
public:
    explicit Writer(OutStream& stream) : out(stream) {}

    void run(const Element& top) {
        if (begin(top)) {
            walk.enter(top, {isMixed(top), false});
            while (!walk.atEnd()) step();
        }
    }

private:
    struct Layout {
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
            appendEscaped(scratch, NodeAccess::text(*attribute));
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
        const Layout layout = walk.note();
        if (!layout.mixed) put("\n");
        if (const Object* const child = walk.next()) {
            writeChild(*child);
            return;
        }
        const Element& element = walk.here();
        walk.leave();
        end(element);
        if (layout.recorded) endWriting(NodeAccess::marks(element), out);
    }

    void writeChild(const Object& child) {
        const NodeClass exactly = exactClassOf(child);
        if (exactly != NodeClass::Element && exactly != NodeClass::CharData) {
            child.toStream(out);
            return;
        }
        const Marks& marks = NodeAccess::marks(child);
        if (!beginWriting(marks, out)) return;
        if (exactly == NodeClass::CharData) {
            OutStreamAccess::putAsIs(out, NodeAccess::text(static_cast<const CharData&>(child)));
        } else if (const auto& element = static_cast<const Element&>(child); begin(element)) {
            walk.enter(element, {isMixed(element), true});
            return;
        }
        endWriting(marks, out);
    }

    OutStream& out;
    Preorder<const Element, Layout> walk;
    std::string scratch;
};

}  // namespace

void writeElement(const Element& element, OutStream& out) {
    const OutStreamAccess::Counting counting(out);
    const OutStreamAccess::Writing writing(out);
    Writer(out).run(element);
}

}  // namespace Xml
