#include "xml/dom/internal/Writer.h"

#include "xml/dom/internal/NodeAccess.h"
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
            if (exactly != NodeClass::Element && (exactly == NodeClass::CharData || child->isCharData())) return true;
        }
        return false;
    }

    // The start tag. False when the element is complete with it.
    bool begin(const Element& element) {
        const std::string& name = NodeAccess::name(element);
        run.put("<");
        if (!name.empty()) run.put(name);
        for (const Attribute* attribute : NodeAccess::attributes(element)) {
            const std::string& attributeName = NodeAccess::name(*attribute);
            if (attributeName.empty()) continue;
            run.put(" ");
            run.putAny(attributeName);
            run.put("=\"");
            run.putEscaped(NodeAccess::text(*attribute));
            run.put("\"");
        }
        const bool empty = NodeAccess::children(element).empty();
        if (empty && Element::mUseShortNotationForEmptyTags) {
            run.put("/>");
            return false;
        }
        run.put(">");
        out.incTab();
        if (empty) {
            end(element);
            return false;
        }
        return true;
    }

    void end(const Element& element) {
        const std::string& name = NodeAccess::name(element);
        out.decTab();
        run.put("</");
        if (!name.empty()) run.put(name);
        run.put(">");
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
        const Marks& marks = NodeAccess::marks(child);
        if (!beginNode(marks)) return;
        if (exactly == NodeClass::CharData) {
            run.putAsIs(NodeAccess::text(static_cast<const CharData&>(child)));
        } else if (const auto& element = static_cast<const Element&>(child); begin(element)) {
            walk.enter(element, {isMixed(element), true});
            return;
        }
        endRecord(marks, run.position());
    }

    // As beginWriting. Only with the optimisation on may the stream move past a node, and has to stand where it should.
    bool beginNode(const Marks& marks) {
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
