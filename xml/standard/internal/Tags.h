#pragma once

#include "xml/dom/internal/FewFirst.h"
#include "xml/standard/EventAtHand.h"
#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/EntityStack.h"
#include "xml/standard/internal/Namespaces.h"
#include "xml/standard/internal/Values.h"
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

using internal::TagAttribute;
using TagAttributeList = FewFirst<TagAttribute>;

// Reads start tags. Names and values are good until the next tag is read, or the window moves.
class Tags {
public:
    Tags(EntityStack& stack, Declarations& declarations, bool hasNamespaces)
        : in(stack), declared(declarations), values(stack, declarations, hasNamespaces), namespaces(hasNamespaces) {}

    // From '<' on, which a name follows. Prefixes that the tag declares are in scope then.
    bool read();

    std::string_view name() const { return itsName; }
    bool isEmpty() const { return empty; }
    const TagAttributeList& attributes() const { return all; }

    // For a tag that is read without this: its attributes, to be filled in its order, and whether it is an empty one.
    TagAttributeList& attributesToFill() { return all; }
    void setEmpty(bool isEmptyTag) { empty = isEmptyTag; }

    // The first one that was there before; null without one. For few attributes: each is compared with each.
    static const TagAttribute* findTwice(const TagAttributeList& attributes);
    static constexpr std::size_t kFew = 16;

    // As Values::find, for references in content.
    DeclaredEntity* findEntity(std::string_view& name, const char* reference) { return values.find(name, reference); }

    Namespaces& scopes() { return inScope; }
    const Namespaces& scopes() const { return inScope; }

private:
    // A value that is no part of the document lies in the buffer.
    struct Buffered {
        std::size_t attribute, from, size;
    };
    using Order = std::vector<std::uint32_t>;

    bool readParts();
    bool readAttribute();
    bool readPlainAttribute();
    void takeBuffered();
    bool applyRules();
    bool checkUnique();
    bool checkUniqueOfMany();
    bool failTwice(const TagAttribute& second);

    // Namespaces.
    bool declarePrefixes();
    bool declarePrefix(const TagAttribute& attribute);
    bool checkPrefixes();
    bool checkPrefix(std::string_view name, std::size_t colon, const char* where, Namespaces::Number& space);
    bool checkExpandedNames();
    const char* placeOf(const TagAttribute& attribute) const {
        return attribute.isDefault ? start : attribute.name.data();
    }

    EntityStack& in;
    Declarations& declared;
    Values values;
    bool namespaces;
    Namespaces inScope;

    const char* start = nullptr;  // of the tag at hand
    std::string_view itsName;
    std::size_t nameColon = std::string_view::npos;
    bool empty = false;
    bool declaresPrefixes = false;
    TagAttributeList all;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> prefixed;  // the places of those, and of their colons
    std::vector<Buffered> buffered;
    std::string buffer;
    std::vector<std::string> collapsedValues;
    std::uint64_t number = 0;  // of tags of elements with declared attributes
    Order order;
    std::vector<std::pair<Namespaces::Number, std::uint32_t>> expanded;  // namespace and place of those with a prefix
};

}  // namespace Xml
