#pragma once

#include "xml/dom/internal/NameTable.h"
#include "xml/dom/internal/NodeAccess.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

// Builds a tree in the order of a text: an element begins, gets attributes and children, and ends. Knows nothing of
// tokens.
//
// An element becomes a child when it ends. So what was built of the outermost one has finished children only, whatever
// stops the building. Links and marks are those that setAttribute and addChild leave, but nothing is walked for them:
// nothing links to a Dtd yet, and everything is marked as changed already.
//
// Where a place may be given it is that of the node in the source (see placeOf), or null; of all nodes or of none.
// Attributes are GivenAttributes or TagAttributes.
//
//     TreeBuilder tree(root);
//     tree.begin("a");
//     GivenAttributes attributes;
//     attributes.add(tree.name("x"), "1");
//     tree.setAttributes(attributes);
//     tree.addText("text");
//     tree.end();
class TreeBuilder {
public:
    // The outermost element is put into `root` as soon as it begins, in place of what is there. One in all.
    explicit TreeBuilder(std::unique_ptr<Element>& itsRoot) : root(itsRoot) {}

    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;

    // Whether an element has begun that has not ended; whether the outermost one has ended; how many are open.
    bool isOpen() const { return here != nullptr; }
    bool isComplete() const { return outermost != nullptr && !isOpen(); }
    std::size_t depth() const { return isOpen() ? inner.size() + 1 : 0; }

    // The element that began last and has not ended.
    const Element& innermost() const { return *here; }
    std::string_view innermostName() const { return NodeAccess::name(*here); }

    // Begins an element within the innermost one. The name has been checked.
    template <class... At>
    void begin(std::string_view name, At... place) {
        if (!isOpen()) {
            root = NodeAccess::makeElement(name);
            (keepPlaceOfRoot(place), ...);
            here = outermost = root.get();
        } else {
            begin(names.find(name, memory), place...);
        }
    }

    // The same for an element that is not the outermost one.
    template <class... At>
    void begin(const SharedName& name, At... place) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here, place...);
        Element* const begun = element.get();
        inner.push_back({std::move(element), finished.size()});
        here = begun;
    }

    // Gives the innermost element, which has none, these attributes.
    template <class Attributes>
    void setAttributes(Attributes& attributes) {
        give(*here, attributes);
    }

    // An element without children, within the innermost one.
    template <class Attributes, class... At>
    void addElement(const SharedName& name, Attributes& attributes, At... place) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here, place...);
        give(*element, attributes);
        finish(std::move(element));
    }

    // An element with this text alone as its child, within the innermost one.
    template <class Attributes>
    void addLeaf(const SharedName& name, Attributes& attributes, std::string_view text, bool isPadded) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here);
        give(*element, attributes);
        NodeAccess::setChild(*element, NodeAccess::makeText(memory, text, element.get(), isPadded));
        finish(std::move(element));
    }
    template <class Attributes>
    void addLeaf(const SharedName& name, Attributes& attributes, std::string_view text, bool isPadded,
                 const Place* place, const Place* textPlace) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here, place);
        give(*element, attributes);
        NodeAccess::appendChild(*element, NodeAccess::makeText(memory, text, element.get(), isPadded, textPlace));
        finish(std::move(element));
    }

    // A name for what is in the tree below the outermost element; the same, read from a run of bytes (see NameTable).
    const SharedName& name(std::string_view text) { return names.find(text, memory); }
    template <std::uint8_t Classes>
    const SharedName* readName(const char*& at, const char* to) {
        return names.read<Classes>(at, to, memory);
    }

    // Padded: as GivenText has it.
    template <class... At>
    void addText(std::string_view text, bool isPadded = false, At... place) {
        finish(NodeAccess::makeText(memory, text, here, isPadded, place...));
    }

    // Leaves that stand beside text: what is in a section, as CharData holds it; what is in a comment; an instruction.
    void addSection(std::string_view text, const Place* place = nullptr) {
        finish(NodeAccess::makeLeaf<CDataSection>(memory, text, here, false, place));
    }
    void addComment(std::string_view text, const Place* place = nullptr) {
        finish(NodeAccess::makeLeaf<Comment>(memory, text, here, false, place));
    }
    void addInstruction(std::string_view target, std::string_view content, const Place* place = nullptr) {
        finish(NodeAccess::makeInstruction(memory, name(target), content, here, place));
    }

    // Ends the innermost element.
    void end() {
        if (inner.empty()) {
            here = nullptr;
            memory.finish(*outermost);
            return;
        }
        const std::size_t first = inner.back().firstChild;
        if (first == finished.capacity()) finished.reserve(2 * first + 8);  // for the element itself
        NodeAccess::setChildren(*here, memory, finished.begin() + static_cast<std::ptrdiff_t>(first), finished.end());
        finished.resize(first);
        std::unique_ptr<Element> ended = std::move(inner.back().element);
        inner.pop_back();
        here = inner.empty() ? outermost : inner.back().element.get();
        finish(std::move(ended));
    }

private:
    // An element within the outermost one that has not ended, and where those of its children begin that have.
    struct Inner {
        std::unique_ptr<Element> element;
        std::size_t firstChild;
    };

    void keepPlaceOfRoot(const Place* place) {
        if (place != nullptr) NodeAccess::keepPlace(*root, *place);
    }

    // Many elements have no attributes.
    template <class Attributes>
    void give(Element& element, Attributes& attributes) {
        if (!attributes.empty()) NodeAccess::setAttributes(element, memory, attributes);
    }

    // A child of the innermost element is complete. The outermost one gets it at once: what is seen of that is as far
    // as the text was read.
    [[gnu::always_inline]] void finish(std::unique_ptr<Object> child) {
        if (inner.empty()) {
            NodeAccess::appendChild(*here, std::move(child));
        } else {
            finished.push_back(std::move(child));
        }
    }

    std::unique_ptr<Element>& root;
    NodeMemory memory;
    NameTable names;
    std::vector<Inner> inner;                       // the innermost last
    std::vector<std::unique_ptr<Object>> finished;  // children of those, in the order of the text
    Element* outermost = nullptr;                   // which code of callers may take out of `root` meanwhile
    Element* here = nullptr;
};

}  // namespace Xml
