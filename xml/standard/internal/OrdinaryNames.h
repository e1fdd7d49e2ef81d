#pragma once

#include "xml/dom/internal/Arena.h"
#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/Namespaces.h"
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// Which names are ordinary in the tags of a tree: names of XML that have no prefix, or one that stands for a namespace.
// Names that declare prefixes are not, nor are elements with declared attributes.
//
// What is known of a name is noted at it: it is looked at once, and its prefix once more where others are declared.
class OrdinaryNames {
public:
    OrdinaryNames(const Declarations& declarations, const Namespaces& namespaces, bool hasNamespaces)
        : declared(declarations), scopes(namespaces), namespacesCount(hasNamespaces) {}

    // The name of an element; its attributes come next.
    bool isElement(const SharedName& name) {
        prefixCount = 0;
        return isPlain(name) || isOtherElement(name);
    }

    // The name of an attribute. Two of one tag are not ordinary where they may have the same expanded name.
    bool isAttribute(const SharedName& name) {
        return isPlain(name) || (prefixCount == 1 && name.note == lastNote) || isOtherAttribute(name);
    }

    // Whether it is known to be ordinary anywhere.
    static bool isPlain(const SharedName& name) { return name.note == kPlain; }

    static bool isSpace(const SharedName& name) { return (name.note & kKind) == kSpace; }

private:
    // A note: the kind of the name, and with a prefix the number of that above.
    static constexpr std::uint32_t kUnknown = 0, kPlain = 1, kSpace = 2, kPrefixed = 3, kOther = 4, kKind = 7;
    static constexpr std::uint32_t kHasRules = 8;  // about attributes of such elements
    static constexpr unsigned kPrefixShift = 4;

    struct Prefix {
        std::string text;
        Namespaces::Number space = Namespaces::kNone;
        std::uint64_t version = ~std::uint64_t{0};  // of the scopes in which that was found
    };
    struct Used {
        std::uint32_t prefix;
        Namespaces::Number space;
    };

    bool isOtherElement(const SharedName& name);
    bool isOtherAttribute(const SharedName& name);
    void note(const SharedName& name);
    std::uint32_t kindOf(const std::string& name);
    std::uint32_t prefixOf(std::string_view text);
    Namespaces::Number spaceOf(std::uint32_t prefix);

    const Declarations& declared;
    const Namespaces& scopes;
    const bool namespacesCount;

    std::vector<Prefix> prefixes;
    std::map<std::string, std::uint32_t, std::less<>> numbers;

    // Those of the attributes of the tag at hand.
    static constexpr std::size_t kMostPrefixes = 4;
    Used used[kMostPrefixes];
    std::size_t prefixCount = 0;
    std::uint32_t lastNote = 0;
};

}  // namespace Xml
