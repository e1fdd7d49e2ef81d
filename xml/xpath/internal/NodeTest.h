#pragma once

#include "orvsys/Uni16.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/xpath/internal/Characters.h"
#include "xml/xpath/internal/PathError.h"
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Xml {

class PathText;

enum class KindTest : std::uint8_t { None, Node, Element, Attribute, Document, Text };

// What a step asks of a node: its kind, its name, or both.
//
// Names are compared as the 8-bit text that nodes hold. That is the same as comparing 16-bit text, since a name test is
// never narrowed to what a malformed name would be widened to.
class NodeTest {
public:
    // The text of a test.
    struct Written {
        Unit begin;
        Unit nameEnd;  // after the characters of names that it begins with
        Unit end;
    };

    NodeTest() = default;
    NodeTest(const NodeTest&) = delete;
    NodeTest& operator=(const NodeTest&) = delete;

    // Reads "text()", "element(name)", "*", "name", "*:name", "prefix:*". False, and the error set, where it is none of
    // these; without a code where a name does not begin as names do. The text must stay.
    bool read(const PathText& text, Written test, PathError& error);

    // The name that it asks for: whole, after a colon, or up to it; empty without one.
    const std::string& writtenName() const { return names == Names::All ? bytes : nameBytes(); }

    // Whether the node is of the kind and has the name.
    bool accepts(const Object& node) const {
        return isElement(node) ? accepts(static_cast<const Element&>(node)) : acceptsOther(node);
    }
    bool accepts(const Element& element) const {
        if (!elements) return false;
        return names == Names::All || acceptsName(NodeAccess::name(element));
    }

    // The same of a node that is no element.
    bool acceptsOther(const Object& node) const {
        return exactClassOf(node) == NodeClass::CharData ? acceptsTexts() : acceptsRare(node);
    }

    // Whether it accepts character data, which has no name.
    bool acceptsTexts() const {
        return kind == KindTest::Text || (names == Names::All && (kind == KindTest::None || kind == KindTest::Node));
    }

    // Whether an attribute must have one certain name; the attribute of that name then, null where there is none.
    bool wantsOneAttribute() const {
        const bool attributes = kind == KindTest::None || kind == KindTest::Node || kind == KindTest::Attribute;
        return attributes && names == Names::Whole;
    }
    Attribute* attributeOf(Element& element) const {
        const AttributeSpan all = NodeAccess::attributes(element);
        if (all.size() > kFew) return element.getAttribute(nameBytes());
        for (Attribute* const attribute : all) {
            if (acceptsName(NodeAccess::name(*attribute))) return attribute;
        }
        return nullptr;
    }

private:
    enum class Names : std::uint8_t { All, Whole, Local, Prefixed, Impossible };

    // Up to so many attributes are gone through for one of a name.
    static constexpr std::size_t kFew = 8;

    bool acceptsName(const std::string& itsName) const {
        if (&itsName == refused) return false;
        if (&itsName == accepted) return true;
        return (names != Names::Whole || itsName.size() == nameSize) && decide(itsName);
    }

    bool readName(const PathText& text, Written test, PathError& error);
    void setName(const PathText& text, Names which, Unit begin, Unit end);
    bool isName(std::string_view part) const;
    const std::string& nameBytes() const;
    bool fits(const std::string& nodeName) const;
    bool decide(const std::string& nodeName) const;
    bool acceptsRare(const Object& node) const;

    KindTest kind = KindTest::None;
    bool elements = true;  // whether the kind allows for elements
    Names names = Names::All;
    // The name, whole, after the first colon, or up to it: in the text of the path where that is ASCII; in 8 bits where
    // it is not, or once that was needed.
    Unit name = nullptr;
    std::size_t nameSize = 0;  // in 8 bits
    mutable std::string bytes;

    // Names that were decided last. The nodes of a tree share them, and they stay while a query is under way.
    mutable const std::string* accepted = nullptr;
    mutable const std::string* refused = nullptr;
};

}  // namespace Xml
