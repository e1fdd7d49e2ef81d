#pragma once

#include "xml/dom/internal/Preorder.h"
#include "xml/standard/internal/FoundRight.h"
#include "xml/standard/internal/Markup.h"
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class Attribute;
class CharData;
class Element;
class Object;
struct Declarations;

// Writes a node with all below it. Nothing recurses with the depth.
class TreeWriter {
public:
    struct Layout {
        std::string indent;  // inside elements with child elements and without text; empty: nothing is added
        bool shortEmptyTags = true;
        const Declarations* written = nullptr;  // the defaults that these supply are left out
        std::size_t level = 0;                  // of elements that are open around the node
    };

    // Lines begin no deeper than that, so that what is written stays in proportion to the tree.
    static constexpr std::size_t kDeepest = 64;

    TreeWriter(Markup& itsMarkup, const Layout& itsLayout);

    // An element, or anything that may stand in one. False where something in it cannot be written: failure() is the
    // node with it then, and the fault that of the markup.
    bool write(const Object& node);
    const Object* failure() const { return failed; }

private:
    // What is added to the content of an element.
    struct Note {
        bool isIndented;
    };

    bool enter(const Element& element, bool isIndented);
    bool end(const Element& element, bool isIndented);
    bool writeContent();
    bool writeLeaf(const Object& node);
    bool writeOther(const Object& node);
    bool writeText(const CharData& text);

    char* putAttributes(char* at, const Element& element);
    char* putAttribute(char* at, const Attribute& attribute);
    [[gnu::noinline]] bool isLeftOut(const Attribute& attribute) const;
    char* putAttributeSlowly(char* at, const Attribute& attribute);
    bool placeByNumber(AttributeSpan attributes);
    bool sortByNumber(AttributeSpan attributes);

    bool checkName(const std::string& name, const Object& node, const char* of) {
        return rightNames.has(name) || checkNewName(name, node, of);
    }
    bool checkNewName(const std::string& name, const Object& node, const char* of);
    bool fail(const Object& node);

    static bool mayIndent(const Element& element);
    static bool isPreservedAround(const Element& element);
    static std::string_view spaceOf(const Element& element);
    // Padded.
    std::string_view lineStart() const {
        const std::size_t depth = level < kDeepest ? level : kDeepest;
        return {starts.data(), lineEndSize + depth * indentSize};
    }

    Markup& markup;
    WriteBuffer& out;
    const Layout layout;
    const bool isTrusting;     // what is put is checked as a whole
    const std::string starts;  // the beginning of a line, as deep as it gets
    const std::size_t lineEndSize;
    const std::size_t indentSize;
    Preorder<const Element, Note> walk;
    std::size_t level;  // open elements, those around the node too
    FoundRight rightNames;
    std::array<const Attribute*, 64> fewInTag;  // the attributes of a tag, in its order
    std::vector<const Attribute*> manyInTag;
    const Object* failed = nullptr;
};

}  // namespace Xml
