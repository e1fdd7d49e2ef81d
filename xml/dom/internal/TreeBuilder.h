#pragma once

#include "xml/dom/internal/NameTable.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/NodeStack.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
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
// Where an offset may be given it is that of the node in the source, or Marks::kNoOffset; of all nodes or of none, but
// for the outermost one, which is in the heap. The table for them is given before that ends. Attributes are
// GivenAttributes or TagAttributes.
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

    // The end of its name, where a run of bytes [from, to) begins with that; null elsewhere.
    const char* afterInnermostName(const char* from, const char* to) const {
        if (!inner.empty()) {
            const SharedName& name = *inner.back().name;
            return name.begins(from, to) ? from + name.text.size() : nullptr;
        }
        const std::string& name = NodeAccess::name(*here);
        return Scan::startsWith(from, to, name) ? from + name.size() : nullptr;
    }

    // Begins an element within the innermost one. The name has been checked.
    void begin(std::string_view name, std::int64_t offset = Marks::kNoOffset) {
        if (!isOpen()) {
            root = NodeAccess::makeElement(name);
            here = outermost = root.get();
        } else {
            begin(elementName(name), offset);
        }
    }

    // The same for an element that is not the outermost one.
    void begin(const SharedName& name, std::int64_t offset = Marks::kNoOffset) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here, offset);
        Element* const begun = element.get();
        inner.push_back({std::move(element), &name, finished.size()});
        here = begun;
    }

    // Gives the innermost element, which has none, these attributes.
    template <class Attributes>
    void setAttributes(Attributes& attributes) {
        give(*here, attributes);
    }

    // An element without children, within the innermost one.
    template <class Attributes>
    void addElement(const SharedName& name, Attributes& attributes, std::int64_t offset = Marks::kNoOffset) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here, offset);
        give(*element, attributes);
        finish(name, std::move(element));
    }

    // An element with this text alone as its child, within the innermost one.
    template <class Attributes>
    void addLeaf(const SharedName& name, Attributes& attributes, std::string_view text, bool isPadded,
                 std::int64_t offset = Marks::kNoOffset, std::int64_t textOffset = Marks::kNoOffset) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(memory, name, here, offset);
        give(*element, attributes);
        NodeAccess::setChild(*element, NodeAccess::makeText(memory, text, element.get(), isPadded, textOffset));
        finish(name, std::move(element));
    }

    // A name for what is in the tree below the outermost element; the same, read from a run of bytes (see NameTable).
    const SharedName& name(std::string_view text) { return names.find(text, memory); }
    template <std::uint8_t Classes>
    const SharedName* readName(const char*& at, const char* to) {
        return names.read<Classes>(at, to, memory);
    }

    // The name of an element that comes next.
    const SharedName& elementName(std::string_view text) {
        const SharedName& found = names.find(text, memory);
        names.begin(found);
        return found;
    }
    template <std::uint8_t Classes>
    const SharedName* readElementName(const char*& at, const char* to) {
        const SharedName* const read = names.read<Classes>(at, to, memory);
        if (read != nullptr) names.begin(*read);
        return read;
    }

    // The name that is likely to be the next one, null without one; and that it is.
    const SharedName* expectedName() const { return names.expected(); }
    void takeExpectedName() { names.takeExpected(); }

    // Padded: as GivenText has it.
    void addText(std::string_view text, bool isPadded = false, std::int64_t offset = Marks::kNoOffset) {
        finish(NodeAccess::makeText(memory, text, here, isPadded, offset));
    }

    // Leaves that stand beside text: what is in a section, as CharData holds it; what is in a comment; an instruction.
    void addSection(std::string_view text, std::int64_t offset = Marks::kNoOffset) {
        finish(NodeAccess::makeLeaf<CDataSection>(memory, text, here, false, offset));
    }
    void addComment(std::string_view text, std::int64_t offset = Marks::kNoOffset) {
        finish(NodeAccess::makeLeaf<Comment>(memory, text, here, false, offset));
    }
    void addInstruction(std::string_view target, std::string_view content, std::int64_t offset = Marks::kNoOffset) {
        finish(NodeAccess::makeInstruction(memory, name(target), content, here, offset));
    }

    // How many children the innermost element has.
    std::size_t childCount() const {
        return inner.empty() ? NodeAccess::children(*here).size() : finished.size() - inner.back().firstChild;
    }

    // Texts among the children that the innermost element has, each before the child of that number; the numbers rise.
    struct TextBefore {
        std::size_t child;
        std::string_view text;
        std::int64_t offset = Marks::kNoOffset;
    };
    void insertTexts(const std::vector<TextBefore>& texts) {
        std::vector<std::unique_ptr<Object>> children = takeChildren();
        auto next = texts.begin();
        for (std::size_t i = 0; i <= children.size(); ++i) {
            for (; next != texts.end() && next->child == i; ++next) addText(next->text, false, next->offset);
            if (i < children.size()) finish(std::move(children[i]));
        }
    }

    // Gives take(name, number) each open element from the outermost one on, with its number among its namesakes, which
    // is 1 for the first of a name; and then one of that name that is about to begin.
    template <class Take>
    void forEachStep(std::string_view beginning, Take take) const {
        if (isOpen()) take(std::string_view(NodeAccess::name(*outermost)), std::size_t{1});
        for (std::size_t i = 0; i < inner.size(); ++i) {
            const std::string_view name = NodeAccess::name(*inner[i].element);
            take(name, numberOf(i, name));
        }
        if (!beginning.empty()) take(beginning, isOpen() ? numberOf(inner.size(), beginning) : 1);
    }

    // What the offsets of nodes mean.
    void keepPlaces(std::unique_ptr<const PlaceTable> places) { memory.keepPlaces(std::move(places)); }

    // Ends the innermost element.
    void end() {
        if (inner.empty()) {
            here = nullptr;
            memory.finish(*outermost);
            return;
        }
        const std::size_t first = inner.back().firstChild;
        finished.makeRoomAt(first);  // for the element itself
        NodeAccess::setChildren(*here, memory, finished.from(first), finished.size() - first);
        finished.leave(first);
        std::unique_ptr<Element> ended = std::move(inner.back().element);
        const SharedName& name = *inner.back().name;
        inner.pop_back();
        here = inner.empty() ? outermost : inner.back().element.get();
        finish(name, std::move(ended));
    }

private:
    // An element within the outermost one that has not ended, and where those of its children begin that have.
    struct Inner {
        std::unique_ptr<Element> element;
        const SharedName* name;
        std::size_t firstChild;
    };

    // An element of that name within the outermost one and so many others: after those children that have ended.
    std::size_t numberOf(std::size_t depth, std::string_view name) const {
        std::size_t number = 1;
        const auto count = [&](const Object& child) {
            if (isExactly<Element>(child) && NodeAccess::name(static_cast<const Element&>(child)) == name) ++number;
        };
        if (depth == 0) {
            for (const Object* child : NodeAccess::children(*outermost)) count(*child);
        } else {
            const std::size_t last = depth < inner.size() ? inner[depth].firstChild : finished.size();
            for (std::size_t i = inner[depth - 1].firstChild; i < last; ++i) count(finished[i]);
        }
        return number;
    }

    // Those of the innermost element.
    std::vector<std::unique_ptr<Object>> takeChildren() {
        if (inner.empty()) return NodeAccess::takeChildren(*here);
        const std::size_t first = inner.back().firstChild;
        std::vector<std::unique_ptr<Object>> children;
        children.reserve(finished.size() - first);
        for (std::size_t i = first; i < finished.size(); ++i) children.emplace_back(*(finished.from(i)));
        finished.leave(first);
        return children;
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
            finished.push(std::move(child));
        }
    }

    // The same for an element of that name.
    [[gnu::always_inline]] void finish(const SharedName& name, std::unique_ptr<Element> element) {
        names.end(name, inner.empty() ? nullptr : inner.back().name);
        finish(std::move(element));
    }

    std::unique_ptr<Element>& root;
    NodeMemory memory;
    NameTable names;
    std::vector<Inner> inner;      // the innermost last
    NodeStack finished;            // children of those, in the order of the text
    Element* outermost = nullptr;  // which code of callers may take out of `root` meanwhile
    Element* here = nullptr;
};

}  // namespace Xml
