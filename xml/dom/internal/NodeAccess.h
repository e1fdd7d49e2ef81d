#pragma once

#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeSpan.h"
#include "xml/dom/Object.h"
#include "xml/dom/Place.h"
#include "xml/dom/internal/Arena.h"
#include "xml/dom/internal/AsidePlaces.h"
#include "xml/dom/internal/GivenAttributes.h"
#include "xml/dom/internal/TagAttributes.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

class Document;
struct Prolog;

// What the parse of large documents costs is the memory that it fills.
static_assert(sizeof(Element) == 64 && sizeof(CharData) == 80 && sizeof(Attribute) == 80, "nodes have grown");
static_assert(sizeof(CDataSection) == 80 && sizeof(Comment) <= 80 && sizeof(Instruction) == 80, "nodes have grown");

using internal::AttributeSpan;
using internal::ExactClass;
using internal::isShort;
using internal::Marks;
using internal::NodeClass;
using internal::NodeSpan;
using internal::TextPlace;

// The insides of nodes, for the readers, the writer, validation and paths: spans, links, marks and factories. What
// stores children and attributes stays within this folder.
struct NodeAccess {
    static const Marks& marks(const Object& node) { return node.marks; }
    static const Dtd* dtd(const Object& node) { return node.marks.dtd(); }
    static void setOwnDtd(Object& node, const Dtd* dtd) { node.marks.setDtd(dtd); }

    // --- What an element holds: spans, which are good until it changes ---

    static const std::string& name(const Element& element) { return element.name.text(); }
    static const std::string& name(const Attribute& attribute) { return attribute.name.text(); }
    static bool sharesName(const Element& element) { return element.name.isShared(); }
    static bool sharesName(const Attribute& attribute) { return attribute.name.isShared(); }
    static NodeSpan children(const Element& element) { return element.children.span(); }
    static AttributeSpan attributes(const Element& element) { return element.attributes.span(); }

    // --- What an attribute is in its tag: where it stands, the least order first, and by name where that is the same;
    // whether the document type supplied it ---

    static std::uint64_t order(const Attribute& attribute) { return attribute.marks.number(); }
    static void setOrder(const Attribute& attribute, std::uint64_t order) { attribute.marks.setNumber(order); }
    static bool isSupplied(const Attribute& attribute) { return attribute.marks.isSupplied(); }
    static void setSupplied(Attribute& attribute, bool is) { attribute.marks.setSupplied(is); }
    static void copyTag(const Attribute& from, Attribute& to) { to.marks.copyTag(from.marks); }

    // --- Texts: bytes, good until the text changes; kShortText of them and one more may be read, however short ---

    static std::string_view text(const CharData& node) { return node.held.view(node.marks); }
    static std::string_view text(const Attribute& node) { return node.value.view(node.marks); }
    static std::string_view text(const Comment& node) { return node.text.view(node.marks); }
    static std::string_view text(const Instruction& node) { return node.content.view(node.marks); }
    static void setText(CharData& node, DataHolder&& text) { node.held.assign(node, node.marks, std::move(text)); }

    // Of a node that is being made.
    static DataHolder& ownText(CharData& node) { return node.held.string(node, node.marks); }
    static DataHolder& ownText(Attribute& node) { return node.value.string(node, node.marks); }
    static DataHolder& ownText(Comment& node) { return node.text.string(node, node.marks); }
    static DataHolder& ownText(Instruction& node) { return node.content.string(node, node.marks); }
    static void setLeafKind(Object& node, internal::LeafKind kind) { node.marks.setLeafKind(kind); }

    // --- Nodes in the memory of a tree, for what reads or copies one: nothing links to a Dtd yet, all is marked as
    // changed already. A shared name stays as long as the memory. A text is padded where kShortText bytes may be read
    // from its beginning on. ---

    // The last argument is the offset at which the node was read.

    static std::unique_ptr<Element> makeElement(NodeMemory& memory, const SharedName& name, Object* parent,
                                                std::int64_t offset = Marks::kNoOffset) {
        void* const room = memory.takeNode<Element>().node;
        return placed(::new (room) Element(&name.text, parent), offset);
    }
    [[gnu::always_inline]] static std::unique_ptr<CharData> makeText(NodeMemory& memory, std::string_view text,
                                                                     Object* parent, bool isPadded,
                                                                     std::int64_t offset = Marks::kNoOffset) {
        return makeLeaf<CharData>(memory, text, parent, isPadded, offset);
    }
    // A CharData, a CDataSection or a Comment. The text is as the node holds it.
    template <class Node>
    [[gnu::always_inline]] static std::unique_ptr<Node> makeLeaf(NodeMemory& memory, std::string_view text,
                                                                 Object* parent, bool isPadded,
                                                                 std::int64_t offset = Marks::kNoOffset) {
        if (!isShort(text)) return makeLongLeaf<Node>(memory, text, parent, offset);
        void* const room = memory.takeNode<Node>().node;
        const internal::GivenText given{text, internal::TextPlace::Own, nullptr, isPadded};
        return placed(::new (room) Node(given, parent), offset);
    }
    static std::unique_ptr<Instruction> makeInstruction(NodeMemory& memory, const SharedName& target,
                                                        std::string_view content, Object* parent,
                                                        std::int64_t offset = Marks::kNoOffset) {
        const auto [room, given] = roomFor<Instruction>(memory, content, false);
        return placed(::new (room) Instruction(&target.text, given, parent), offset);
    }
    static std::unique_ptr<Attribute> makeAttribute(NodeMemory& memory, const SharedName& name, std::string_view value,
                                                    Object* parent, bool isPadded,
                                                    std::int64_t offset = Marks::kNoOffset) {
        const auto [room, given] = roomFor<Attribute>(memory, value, isPadded);
        return placed(::new (room) Attribute(&name.text, given, parent), offset);
    }

    // Where a node was read. One in the memory of a tree holds its offset, and the tree has a table for the rest; of
    // any other it is kept aside, which may need memory.
    static Place place(const Object& node) {
        if (node.marks.holdsOffset()) return Arena::of(&node).placeOf(node.marks.offset());
        return node.marks.isPlaceAside() ? AsidePlaces::of(node) : Place();
    }
    static void keepPlace(const Object& node, const Place& place) {
        AsidePlaces::of(node) = place;
        node.marks.setPlaceAside();
    }

    // The node is about to be written, and to have a record of that in the place of its offset.
    static void makeRoomForRecord(const Object& node) {
        if (node.marks.holdsOffset()) putPlaceAside(node);
    }

    // Appends a child. Neither what is below it nor what is above it is walked: links and marks are what addChild would
    // leave.
    static void appendChild(Element& element, std::unique_ptr<Object> child) {
        child->parent = &element;
        element.children.append(std::move(child));
    }

    // The same for one that has the element as its parent, where there is none yet.
    static void setChild(Element& element, std::unique_ptr<Object> child) {
        *element.children.extend(1) = child.release();
    }

    // Takes all children out, of an element that is being made.
    static std::vector<std::unique_ptr<Object>> takeChildren(Element& element) {
        const NodeSpan span = element.children.span();
        std::vector<std::unique_ptr<Object>> taken;
        taken.reserve(span.size());
        for (Object* child : span) taken.emplace_back(child);
        element.children.forget();
        return taken;
    }

    // Appends an attribute, for which room was made, and which is the last one by its name.
    static void appendAttribute(Element& element, std::unique_ptr<Attribute> attribute) {
        element.attributes.fill().put(attribute.release());
    }

    // Gives an element of the same memory exactly these: its children, which have it as their parent; its attributes.
    static void setChildren(Element& element, NodeMemory& memory, Object* const* first, std::size_t count) {
        Object** at = nullptr;
        if (void* const array = takeArray<Object>(element, &memory, count, internal::Children::bytesForFull(count))) {
            at = element.children.lendFull(array, count);
        } else {
            element.children.reserve(count);
            at = element.children.extend(count);
        }
        std::copy(first, first + count, at);
    }
    template <class Attributes>
    static void setAttributes(Element& element, NodeMemory& memory, Attributes& all) {
        all.sort();
        if (!setTogether(element, memory, all)) setOneByOne(element, memory, all);
    }

    // Room for as many, for an element that has none. One in a slab needs its memory; for any other it may be null.
    static void reserveChildren(Element& element, NodeMemory* memory, std::size_t count) {
        reserveIn(element.children, element, memory, count);
    }
    static void reserveAttributes(Element& element, NodeMemory* memory, std::size_t count) {
        reserveIn(element.attributes, element, memory, count);
    }

    static void setParent(Object& node, Object& parent) { node.parent = &parent; }

    static void setName(Element& element, const std::string& name) { element.name.set(name); }

    // A document around a tree that was read, without a Dtd: nothing in it links to one.
    static std::unique_ptr<Document> makeDocument(std::unique_ptr<Element> root);

    // The same with a Dtd, where that is not null: all of the tree links to it.
    static std::unique_ptr<Document> makeDocument(std::unique_ptr<Element> root, std::unique_ptr<Dtd> dtd);

    // What stands around the root, null until it is first asked for.
    static std::unique_ptr<Prolog>& prolog(Document& document);
    static const Prolog* prolog(const Document& document);

    // --- For this folder ---

    // A node that was just made as an object of exactly that class.
    template <class Node>
    static std::unique_ptr<Node> exactly(NodeClass made, Node* node) {
        node->marks.exactClass.set(made);
        return std::unique_ptr<Node>(node);
    }

    // A node that is not whole yet: what was found out about its class may be wrong.
    static void forgetClass(Object& node) { node.marks.exactClass.set(NodeClass::Unknown); }

    // An element in the heap.
    static std::unique_ptr<Element> makeElement(std::string_view name) {
        std::unique_ptr<Element> element(new Element(NodeClass::Element));
        element->name.set(name);
        return element;
    }

    // Gives the attributes of the element the link; they are never objects of a caller's class.
    static void linkAttributes(Element& element, const Dtd* dtd) {
        for (Attribute* attribute : element.attributes.span()) attribute->marks.setDtd(dtd);
    }

    // Deletes the children, whatever their depth, without recursion and without allocating.
    static void deleteChildren(Element& element);

    // The children or attributes of the element have been changed.
    static void noteEdit(Element& element) {
        element.marks.setEdited();
        Arena::noteChange(element);
    }

    // Forgets children and attributes, which are dropped with the memory of their tree.
    static void dropNodes(Element& element) {
        element.children.dropWithTree();
        element.attributes.dropWithTree();
    }

private:
    // Drops what is below the element, if that is the memory of a tree as it was made.
    static void dropWhole(Element& top);

    static void putPlaceAside(const Object& node);

    static void noteTag(Attribute&, const GivenAttributes&, const GivenAttributes::Given&) {}
    static void noteTag(Attribute& attribute, const TagAttributes&, const TagAttributes::Given& given) {
        setOrder(attribute, given.order);
        if (given.isSupplied) setSupplied(attribute, true);
    }

    // Room is taken once for all of them, their array and those texts that are not short; false where that is too much.
    template <class Given>
    [[gnu::always_inline]] static bool setTogether(Element& element, NodeMemory& memory, const Given& all) {
        const std::size_t count = all.size(), textBytes = all.longBytes();
        if (textBytes + count * (sizeof(Attribute) + sizeof(Attribute*)) >= NodeMemory::kMostBytes - sizeof(void*))
            return false;
        const std::size_t arrayBytes = count > 1 ? internal::Attributes::bytesForFull(count) : 0;
        const auto room = memory.takeNodes<Attribute>(count, count > 1 ? 1 : 0, arrayBytes + textBytes);
        Attribute** at = count > 1 ? element.attributes.lendFull(room.bytes, count) : element.attributes.extend(count);
        char *texts = room.bytes + arrayBytes, *place = static_cast<char*>(room.node);
        const bool arePadded = all.arePadded();
        for (const auto& given : all) {
            internal::GivenText text{given.value(), internal::TextPlace::Own, nullptr, arePadded};
            if (const std::string_view value = text.bytes; !isShort(value)) {
                Words::copyLong(texts, value.data(), value.size());
                text = {{texts, value.size()}, internal::TextPlace::Lent};
                texts += value.size();
            }
            // Laundered: GCC does not join stores through a pointer that the loop itself counts up.
            auto* const made = ::new (std::launder(place)) Attribute(&given.name->text, text, &element);
            noteTag(*made, all, given);
            *at++ = placed(made, all.offsetOf(given)).release();
            place += sizeof(Attribute);
        }
        return true;
    }

    template <class Given>
    [[gnu::noinline]] static void setOneByOne(Element& element, NodeMemory& memory, const Given& all) {
        reserveAttributes(element, &memory, all.size());
        internal::Attributes::Filling filling = element.attributes.fill();
        for (const auto& given : all) {
            std::unique_ptr<Attribute> made =
                makeAttribute(memory, *given.name, given.value(), &element, all.arePadded(), all.offsetOf(given));
            noteTag(*made, all, given);
            filling.put(made.release());
        }
    }

    // Room for a node, and its text there or elsewhere in the memory.
    struct NodeRoom {
        void* node;
        internal::GivenText text;
    };

    // A node that holds the offset, where there is one.
    template <class Node>
    static std::unique_ptr<Node> placed(Node* node, std::int64_t offset) {
        if (offset != Marks::kNoOffset) node->marks.holdOffset(offset);
        return std::unique_ptr<Node>(node);
    }

    template <class Node>
    [[gnu::noinline]] static std::unique_ptr<Node> makeLongLeaf(NodeMemory& memory, std::string_view text,
                                                                Object* parent, std::int64_t offset) {
        const auto [room, given] = roomFor<Node>(memory, text, false);
        return placed(::new (room) Node(given, parent), offset);
    }

    template <class Node>
    static NodeRoom roomFor(NodeMemory& memory, std::string_view text, bool isPadded) {
        if (isShort(text)) return {memory.takeNode<Node>().node, {text, internal::TextPlace::Own, nullptr, isPadded}};
        if (text.size() > NodeMemory::kMostBytes) {
            KeptText& kept = memory.takeText(text);
            return {memory.takeNode<Node>().node, {{}, internal::TextPlace::Lent, &kept}};
        }
        const NodeMemory::Room room = memory.takeNode<Node>(text.size());
        Words::copyLong(room.bytes, text.data(), text.size());
        return {room.node, {{room.bytes, text.size()}, internal::TextPlace::Lent}};
    }

    // Memory of the tree for an array of the element; null where the array needs none, or is one of the heap.
    template <class Node>
    static void* takeArray(Element& element, NodeMemory* memory, std::size_t count, std::size_t size) {
        if (count < 2 || !element.marks.isInSlab()) return nullptr;
        if (size <= NodeMemory::kMostBytes) return memory->takeArray<Node>(size);
        memory->noteWide(element);
        return nullptr;
    }

    template <class Nodes>
    static void reserveIn(Nodes& nodes, Element& element, NodeMemory* memory, std::size_t count) {
        using Node = typename Nodes::Node;
        if (void* const array = takeArray<Node>(element, memory, count, internal::NodeArray<Node>::bytesFor(count))) {
            nodes.lend(array, count);
        } else {
            nodes.reserve(count);
        }
    }
};

}  // namespace Xml
