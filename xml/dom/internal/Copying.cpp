#include "xml/dom/internal/Copying.h"

#include "xml/dom/internal/NameTable.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace Xml {

namespace {

// Whether so much is below the element that a copy of it fills a good part of a slab. What is less lies in the heap: a
// program may keep many small copies.
bool isWorthASlab(const Element& top) {
    constexpr std::size_t kFew = 128;
    const auto countAt = [](const Element& element) {
        return NodeAccess::children(element).size() + NodeAccess::attributes(element).size();
    };
    std::size_t nodes = countAt(top);
    for (ElementWalk walk(top); nodes < kFew;) {
        const Element* const element = walk.next();
        if (element == nullptr) return false;
        nodes += countAt(*element);
    }
    return true;
}

// The memory of a copy and its names. Those that nodes share are told apart by their addresses: what is copied stays
// meanwhile.
struct CopyMemory {
    template <class Node>
    const SharedName& nameOf(const Node& from) {
        const std::string& name = NodeAccess::name(from);
        if (!NodeAccess::sharesName(from)) return find(name);
        Known& last = known[reinterpret_cast<std::uintptr_t>(&name) / sizeof(SharedName) % std::size(known)];
        if (last.from != &name) last = {&name, &find(name)};
        return *last.copy;
    }
    const SharedName& find(const std::string& name) { return names.find(name, nodes); }

    struct Known {
        const std::string* from = nullptr;
        const SharedName* copy = nullptr;
    };

    NodeMemory nodes;
    NameTable names;
    Known known[64];
};

// Goes through what is to be copied in the order of the document. Nodes of the library's own classes are copied in the
// loop, any other gets its clone called. What is large is copied into one memory of its own.
class Copier {
public:
    explicit Copier(const Element& from) {
        if (isWorthASlab(from)) memory.emplace();
    }

    void copy(const Element& from, Element& top) {
        begin(from, top);
        while (!walk.atEnd()) {
            if (const Object* const child = walk.next()) {
                copyChild(*child, *walk.note().element);
            } else {
                walk.leave();
            }
        }
        if (memory) memory->nodes.finish(top);
    }

    // Whether all is of the library's own classes, and nothing links to a Dtd.
    bool isUnlinked() const { return unlinked; }

private:
    struct Copy {
        Element* element;
    };

    // Copies the attributes, and makes room for the children.
    void begin(const Element& from, Element& to) {
        NodeMemory* const nodes = memory ? &memory->nodes : nullptr;
        const AttributeSpan attributes = NodeAccess::attributes(from);
        NodeAccess::reserveAttributes(to, nodes, attributes.size());
        for (const Attribute* const attribute : attributes) {
            std::unique_ptr<Attribute> made = copyOf(*attribute);
            keepLink(*attribute, *made);
            if (made->isOk()) NodeAccess::setParent(*made, to);
            NodeAccess::appendAttribute(to, std::move(made));
        }
        const NodeSpan children = NodeAccess::children(from);
        NodeAccess::reserveChildren(to, nodes, children.size());
        if (!children.empty()) walk.enter(from, {&to});
    }

    void copyChild(const Object& child, Element& to) {
        const NodeClass exactly = exactClassOf(child);
        if (exactly == NodeClass::Element) {
            const auto& from = static_cast<const Element&>(child);
            std::unique_ptr<Element> made = copyOf(from);
            Element& element = *made;
            NodeAccess::appendChild(to, std::move(made));
            begin(from, element);
        } else {
            std::unique_ptr<Object> made = exactly == NodeClass::CharData
                                               ? std::unique_ptr<Object>(copyOf(static_cast<const CharData&>(child)))
                                               : copyOfRare(child, exactly);
            if (exactly == NodeClass::Other || exactly == NodeClass::Attribute) {
                unlinked = false;
                NodeAccess::noteEdit(to);
            } else {
                keepLink(child, *made);
            }
            NodeAccess::appendChild(to, std::move(made));
        }
    }

    // Nodes that have neither links nor children nor attributes yet.
    std::unique_ptr<Element> copyOf(const Element& from) {
        if (!memory) return NodeAccess::makeElement(NodeAccess::name(from));
        return NodeAccess::makeElement(memory->nodes, memory->nameOf(from), nullptr);
    }
    std::unique_ptr<CharData> copyOf(const CharData& from) {
        if (!memory) return NodeAccess::exactly(NodeClass::CharData, new CharData(from));
        return NodeAccess::makeText(memory->nodes, NodeAccess::text(from), nullptr, false);
    }

    // Of a node that is neither element nor text: what is in the memory, or a clone.
    std::unique_ptr<Object> copyOfRare(const Object& from, NodeClass exactly) {
        if (!memory || !isPlainLeaf(exactly)) return std::unique_ptr<Object>(from.clone());
        if (exactly == NodeClass::Comment) {
            const auto& comment = static_cast<const Comment&>(from);
            return NodeAccess::makeLeaf<Comment>(memory->nodes, NodeAccess::text(comment), nullptr, false);
        }
        if (exactly == NodeClass::CDataSection) {
            const auto& section = static_cast<const CDataSection&>(from);
            return NodeAccess::makeLeaf<CDataSection>(memory->nodes, NodeAccess::text(section), nullptr, false);
        }
        const auto& instruction = static_cast<const Instruction&>(from);
        return NodeAccess::makeInstruction(memory->nodes, memory->find(instruction.getTarget()),
                                           NodeAccess::text(instruction), nullptr);
    }

    std::unique_ptr<Attribute> copyOf(const Attribute& from) {
        if (!memory) return std::make_unique<Attribute>(from);
        std::unique_ptr<Attribute> made =
            NodeAccess::makeAttribute(memory->nodes, memory->nameOf(from), NodeAccess::text(from), nullptr, false);
        NodeAccess::copyTag(from, *made);
        return made;
    }

    void keepLink(const Object& from, Object& to) {
        const Dtd* const dtd = NodeAccess::dtd(from);
        NodeAccess::setOwnDtd(to, dtd);
        if (dtd != nullptr) unlinked = false;
    }

    std::optional<CopyMemory> memory;
    Preorder<const Element, Copy> walk;
    bool unlinked = true;
};

}  // namespace

bool copyInto(Element& copy, const Element& from) {
    NodeAccess::setName(copy, NodeAccess::name(from));
    Copier copier(from);
    copier.copy(from, copy);
    return copier.isUnlinked();
}

}  // namespace Xml
