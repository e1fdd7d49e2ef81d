#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include <cstddef>
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
//     TreeBuilder tree(root);
//     tree.begin("a");
//     TreeBuilder::Attributes(tree).add("x", "1");
//     tree.addText(std::move(text));
//     tree.end();
class TreeBuilder {
public:
    // The outermost element is put into `root` as soon as it begins, in place of what is there. One in all.
    explicit TreeBuilder(std::unique_ptr<Element>& itsRoot) : root(itsRoot) {}

    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;

    // Whether an element has begun that has not ended; how many have.
    bool isOpen() const { return here != nullptr; }
    std::size_t depth() const { return isOpen() ? inner.size() + 1 : 0; }

    // The element that began last and has not ended.
    const Element& innermost() const { return *here; }
    std::string_view innermostName() const { return NodeAccess::name(*here); }

    // Begins an element within the innermost one. The name has been checked.
    void begin(std::string_view name) {
        std::unique_ptr<Element> element = NodeAccess::makeElement(name);
        Element* const begun = element.get();
        if (isOpen()) {
            inner.push_back(std::move(element));
        } else {
            outermost = begun;
            root = std::move(element);
        }
        here = begun;
    }

    // The attributes of the innermost element, in the order of the text. The element has them in its own order once
    // this goes, however many there were: of several with one name the last.
    class Attributes {
    public:
        explicit Attributes(TreeBuilder& tree) : element(*tree.here) {}
        ~Attributes() {
            if (NodeAccess::attributes(element).size() > 1) NodeAccess::sortAttributes(element);
        }
        Attributes(const Attributes&) = delete;
        Attributes& operator=(const Attributes&) = delete;

        // The name has been checked.
        void add(std::string_view name, DataHolder&& value) {
            NodeAccess::appendAttribute(element, name, std::move(value));
        }
        void add(std::string_view name, std::string_view value) { add(name, DataHolder(value)); }

    private:
        Element& element;
    };

    void addText(std::string_view text) {
        std::unique_ptr<CharData> node = NodeAccess::makeCharData();
        node->data().assign(text);
        addText(std::move(node));
    }
    void addText(std::unique_ptr<CharData> text) { NodeAccess::appendChild(*here, std::move(text)); }

    // Ends the innermost element.
    void end() {
        if (inner.empty()) {
            here = nullptr;
            return;
        }
        here = inner.size() > 1 ? inner[inner.size() - 2].get() : outermost;
        NodeAccess::appendChild(*here, std::move(inner.back()));
        inner.pop_back();
    }

private:
    std::unique_ptr<Element>& root;
    std::vector<std::unique_ptr<Element>> inner;  // those within the outermost that have not ended, the innermost last
    Element* outermost = nullptr;                 // which code of callers may take out of `root` meanwhile
    Element* here = nullptr;
};

}  // namespace Xml
