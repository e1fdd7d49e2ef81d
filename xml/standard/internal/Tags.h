#pragma once

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

// An attribute of a tag, its value normalised.
struct TagAttribute {
    // Made in its place: what is copied there waits for the stores.
    TagAttribute(std::string_view itsName, std::string_view itsValue, bool isSupplied)
        : name(itsName), value(itsValue), isDefault(isSupplied) {}

    std::string_view name, value;
    bool isDefault;  // supplied by the document type
};

// Reads start tags. Names and values are good until the next tag is read, or the window moves.
class Tags {
public:
    Tags(EntityStack& stack, Declarations& declarations, bool hasNamespaces)
        : in(stack), declared(declarations), values(stack, declarations, hasNamespaces), namespaces(hasNamespaces) {}

    // From '<' on, which a name follows. Prefixes that the tag declares are in scope then.
    bool read();

    // The same for an ordinary tag: one that ends in the window, with names of ASCII without prefixes, values that
    // stand there as they are, and no declarations of the element's attributes or of prefixes. False: it is none, or
    // something is wrong with it, and `at` is where it was.
    bool readPlain();

    std::string_view name() const { return itsName; }
    bool isEmpty() const { return empty; }
    const std::vector<TagAttribute>& attributes() const { return all; }

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
    static constexpr std::size_t kFew = 16;  // attributes, of which each is compared with each

    bool readParts();
    bool readAttribute();
    bool readPlainAttribute();
    void takeBuffered();
    bool applyRules();
    bool checkUnique();
    bool checkUniqueOfMany();
    const TagAttribute* findTwice() const;
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
    std::vector<TagAttribute> all;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> prefixed;  // the places of those, and of their colons
    std::vector<Buffered> buffered;
    std::string buffer;
    std::vector<std::string> collapsedValues;
    std::uint64_t number = 0;  // of tags of elements with declared attributes
    Order order;
    std::vector<std::pair<Namespaces::Number, std::uint32_t>> expanded;  // namespace and place of those with a prefix
};

}  // namespace Xml
