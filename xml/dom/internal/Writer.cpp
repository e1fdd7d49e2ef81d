#include "xml/dom/internal/Writer.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include "xml/dom/internal/Rewriting.h"
#include "xml/stream/internal/OutRun.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include <string>

// An element is written by writing its start tag, each child through toStream, and its end tag. For children that are
// exactly of the library's classes that is done here in a loop, with the same records and marks. Any other gets its
// toStream called.

namespace Xml {

namespace {

class Writer {
public:
    explicit Writer(OutStream& stream) : out(stream), run(stream) {}

    void write(const Element& top) {
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
        for (const Object* const child : NodeAccess::children(element)) {
            const NodeClass exactly = exactClassOf(*child);
            if (exactly == NodeClass::Element) continue;
            if (exactly == NodeClass::CharData || child->isCharData()) return true;
        }
        return false;
    }

    // An element, up to where a walk through its children is due. False when it is complete: most elements have one
    // text, or nothing.
    bool begin(const Element& element) {
        run.put("<", NodeAccess::name(element));
        for (const Attribute* attribute : NodeAccess::attributes(element)) {
            const std::string& name = NodeAccess::name(*attribute);
            if (!name.empty()) run.putAttribute(name, NodeAccess::text(*attribute));
        }
        const NodeSpan children = NodeAccess::children(element);
        if (children.empty() && Element::mUseShortNotationForEmptyTags) {
            run.put("/>");
            return false;
        }
        run.put(">");
        run.incTab();
        if (children.size() == 1 && isExactly<CharData>(*children[0])) {
            writeText(static_cast<const CharData&>(*children[0]));
        } else if (!children.empty()) {
            return true;
        }
        end(element);
        return false;
    }

    void end(const Element& element) {
        run.decTab();
        run.put("</", NodeAccess::name(element), ">");
    }

    // One more child of the innermost open element, or its end.
    void step() {
        const Layout layout = walk.note();
        if (!layout.mixed) run.putLineFeed();
        if (const Object* const child = walk.next()) {
            writeChild(*child);
            return;
        }
        const Element& element = walk.here();
        walk.leave();
        end(element);
        if (layout.recorded) endRecord(NodeAccess::marks(element), run.position());
    }

    void writeChild(const Object& child) {
        const NodeClass exactly = exactClassOf(child);
        if (exactly != NodeClass::Element && exactly != NodeClass::CharData) {
            run.flush();
            child.toStream(out);
            return;
        }
        if (exactly == NodeClass::CharData) return writeText(static_cast<const CharData&>(child));
        const Marks& marks = NodeAccess::marks(child);
        if (!beginNode(child)) return;
        if (const auto& element = static_cast<const Element&>(child); begin(element)) {
            walk.enter(element, {isMixed(element), true});
        } else {
            endRecord(marks, run.position());
        }
    }

    void writeText(const CharData& text) {
        const Marks& marks = NodeAccess::marks(text);
        if (!beginNode(text)) return;
        run.putAsIs(NodeAccess::text(text));
        endRecord(marks, run.position());
    }

    // As beginWriting. Only with the optimisation on may the stream move past a node, and has to stand where it should.
    bool beginNode(const Object& node) {
        const Marks& marks = NodeAccess::marks(node);
        NodeAccess::makeRoomForRecord(node);
        if (Object::useRWOptimization) {
            run.flush();
            return beginWriting(marks, out);
        }
        beginRecord(marks, run.position());
        return true;
    }

    OutStream& out;
    OutRun run;
    Preorder<const Element, Layout> walk;
};

}  // namespace

void writeElement(const Element& element, OutStream& out) {
    const OutStreamAccess::Counting counting(out);
    const OutStreamAccess::Writing writing(out);
    Writer(out).write(element);
}

}  // namespace Xml
