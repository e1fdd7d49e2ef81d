#include "xml/standard/internal/OrdinaryNames.h"

#include "xml/text/internal/StandardNames.h"

namespace Xml {

bool OrdinaryNames::isOtherElement(const SharedName& name) {
    if (name.note == kUnknown) note(name);
    if ((name.note & kHasRules) != 0) return false;
    if ((name.note & kKind) != kPrefixed) return (name.note & kKind) != kOther;
    return spaceOf(name.note >> kPrefixShift) != Namespaces::kNone;
}

bool OrdinaryNames::isOtherAttribute(const SharedName& name) {
    if (name.note == kUnknown) note(name);
    if ((name.note & kKind) != kPrefixed) return (name.note & kKind) != kOther;
    const std::uint32_t prefix = name.note >> kPrefixShift;
    for (std::size_t i = 0; i < prefixCount; ++i) {
        if (used[i].prefix == prefix) return true;
    }
    const Namespaces::Number space = spaceOf(prefix);
    if (space == Namespaces::kNone || prefixCount == kMostPrefixes) return false;
    for (std::size_t i = 0; i < prefixCount; ++i) {
        if (used[i].space == space) return false;
    }
    used[prefixCount++] = {prefix, space};
    lastNote = name.note;
    return true;
}

void OrdinaryNames::note(const SharedName& name) {
    const bool hasRules = declared.elements.find(name.text) != declared.elements.end();
    name.note = kindOf(name.text) | (hasRules ? kHasRules : 0);
}

// With the prefix.
std::uint32_t OrdinaryNames::kindOf(const std::string& name) {
    if (!StandardNames::isName(name)) return kOther;
    if (name == "xml:space") return kSpace;
    if (!namespacesCount) return kPlain;
    const auto parts = StandardNames::qNameOfName(name);
    if (!parts || name == "xmlns" || parts->prefix == "xmlns") return kOther;
    return parts->prefix.empty() ? kPlain : kPrefixed | prefixOf(parts->prefix) << kPrefixShift;
}

std::uint32_t OrdinaryNames::prefixOf(std::string_view text) {
    const auto found = numbers.find(text);
    if (found != numbers.end()) return found->second;
    const auto number = static_cast<std::uint32_t>(prefixes.size());
    prefixes.push_back({std::string(text)});
    return numbers.emplace(text, number).first->second;
}

Namespaces::Number OrdinaryNames::spaceOf(std::uint32_t prefix) {
    Prefix& one = prefixes[prefix];
    if (one.version != scopes.version()) {
        one.space = scopes.find(one.text);
        one.version = scopes.version();
    }
    return one.space;
}

}  // namespace Xml
