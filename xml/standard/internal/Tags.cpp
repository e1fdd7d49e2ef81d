#include "xml/standard/internal/Tags.h"

#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/text/internal/StandardNames.h"
#include <algorithm>

namespace Xml {

using Syntax::viewOf;
using Syntax::whiteEnd;

bool Tags::read() {
    start = in.at;
    itsName = {};
    all.clear();
    prefixed.clear();
    buffered.clear();
    buffer.clear();
    collapsedValues.clear();
    declaresPrefixes = false;
    const bool isRead =
        readParts() && applyRules() && checkUnique() && (!namespaces || (declarePrefixes() && checkPrefixes()));
    if (!isRead && in.state() == EntityStack::State::Failed) in.setElement(itsName);
    return isRead;
}

// --- What is written ---

bool Tags::readParts() {
    ++in.at;
    const char* const to = StandardNames::nameEnd(in.at, in.end);
    if (to == in.end) return in.endsEarly(start, StandardRules::kSTag, "the tag that begins here does not end");
    if (to == in.at)
        return in.expected(to, StandardRules::kName, "the name of an element, \"/\", \"!\" or \"?\" after \"<\"");
    itsName = viewOf(in.at, to);
    nameColon = namespaces ? itsName.find(':') : std::string_view::npos;
    if (nameColon != std::string_view::npos && !Syntax::checkQName(in, itsName, itsName.data() + nameColon))
        return false;
    in.at = to;
    for (;;) {
        const char* const next = whiteEnd(in.at, in.end);
        if (next == in.end) return in.endsEarly(start, StandardRules::kSTag, "the tag that begins here does not end");
        if (*next == '>') {
            in.at = next + 1;
            empty = false;
            break;
        }
        if (*next == '/') {
            in.at = next + 1;
            if (!Syntax::readByte(in, '>', StandardRules::kEmptyElemTag, "\">\" after \"/\"")) return false;
            empty = true;
            break;
        }
        if (next == in.at) return in.expected(next, StandardRules::kSTag, "white space, \">\" or \"/>\"");
        in.at = next;
        if (!readPlainAttribute() && !readAttribute()) return false;
    }
    takeBuffered();
    return true;
}

// Mostly a name is ASCII without a prefix, and a value in double quotes stands there as it is. False: it is read
// otherwise, and nothing was taken.
inline bool Tags::readPlainAttribute() {
    const char* const from = in.at;
    const char* at = from;
    if (!ByteClass::is(*at, ByteClass::kNameStart) || *at == ':') return false;
    do ++at;
    while (at != in.end && ByteClass::is(*at, ByteClass::kNameChar) && *at != ':');
    if (in.end - at < 2 || at[0] != '=' || at[1] != '"') return false;
    const char* const value = at + 2;
    const char* const end = Runs::findInLine<'"', '<', '&', Runs::kRare>(value, in.end);
    if (end == in.end || *end != '"') return false;
    const std::string_view name = viewOf(from, at);
    declaresPrefixes |= name == "xmlns";
    all.add(name, viewOf(value, end), false);
    in.at = end + 1;
    return true;
}

bool Tags::readAttribute() {
    const char* const from = in.at;
    const char* const to = StandardNames::nameEnd(from, in.end);
    if (to == in.end) return in.endsEarly(start, StandardRules::kSTag, "the tag that begins here does not end");
    if (to == from) return in.expected(to, StandardRules::kSTag, "the name of an attribute, \">\" or \"/>\"");
    const std::string_view name = viewOf(from, to);
    const std::size_t colon = namespaces ? name.find(':') : std::string_view::npos;
    if (colon != std::string_view::npos) {
        if (!Syntax::checkQName(in, name, from + colon)) return false;
        prefixed.emplace_back(static_cast<std::uint32_t>(all.size()), static_cast<std::uint32_t>(colon));
    }
    declaresPrefixes |= name.substr(0, 5) == "xmlns";
    in.at = to;
    if (*to != '=') {
        Syntax::skipWhite(in);
        if (in.at == in.end || *in.at != '=')
            return in.expected(in.at, StandardRules::kEq, "\"=\" after the name of an attribute");
    }
    ++in.at;
    Syntax::skipWhite(in);
    const std::size_t begin = buffer.size();
    std::string_view plain;
    if (!values.readAttribute(plain, buffer)) return false;
    if (plain.data() == nullptr) buffered.push_back({all.size(), begin, buffer.size() - begin});
    all.add(name, plain, false);
    return true;
}

// The buffer does not move any more.
void Tags::takeBuffered() {
    for (const Buffered& value : buffered) {
        all[value.attribute].value = std::string_view(buffer).substr(value.from, value.size);
    }
}

// --- What the document type says ---

// Values of other types than CDATA are collapsed; attributes that are missing get their defaults.
bool Tags::applyRules() {
    if (declared.elements.empty()) return true;
    const auto found = declared.elements.find(itsName);
    if (found == declared.elements.end()) return true;
    ElementRules& rules = found->second;
    ++number;
    collapsedValues.reserve(all.size());  // they stay where they are
    for (TagAttribute& attribute : all) {
        const auto rule = rules.all.find(attribute.name);
        if (rule == rules.all.end()) continue;
        rule->second.tag = number;
        if (rule->second.isCData || isCollapsed(attribute.value)) continue;
        attribute.value = collapsedValues.emplace_back(collapsed(attribute.value));
    }
    for (const auto& [name, rule] : rules.defaults) {
        if (rule->tag == number) continue;
        if (!in.grow(name.size() + rule->value.size() + EntityStack::kNodeCost, start)) return false;
        const std::size_t colon = namespaces ? name.find(':') : std::string_view::npos;
        if (colon != std::string_view::npos) {
            prefixed.emplace_back(static_cast<std::uint32_t>(all.size()), static_cast<std::uint32_t>(colon));
        }
        declaresPrefixes |= name.substr(0, 5) == "xmlns";
        all.add(name, rule->value, true);
    }
    return true;
}

// --- Uniqueness ---

bool Tags::failTwice(const TagAttribute& second) {
    return in.fail(
        placeOf(second), StandardRules::kUniqueAttSpec,
        "the attribute " + std::string(second.name) + " stands twice in the tag of <" + std::string(itsName) + ">");
}

bool Tags::checkUnique() {
    if (all.size() > kFew) return checkUniqueOfMany();
    const TagAttribute* const second = findTwice(all);
    return second == nullptr || failTwice(*second);
}

const TagAttribute* Tags::findTwice(const TagAttributeList& attributes) {
    for (std::size_t i = 1; i < attributes.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (attributes[i].name == attributes[j].name) return &attributes[i];
        }
    }
    return nullptr;
}

// The first one that was there before: sorted, it follows one of the same name.
bool Tags::checkUniqueOfMany() {
    order.resize(all.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<std::uint32_t>(i);
    std::sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) {
        const int compared = all[a].name.compare(all[b].name);
        return compared != 0 ? compared < 0 : a < b;
    });
    const std::size_t none = all.size();
    std::size_t first = none;
    for (std::size_t i = 1; i < order.size(); ++i) {
        if (all[order[i]].name == all[order[i - 1]].name) first = std::min<std::size_t>(first, order[i]);
    }
    return first == none || failTwice(all[first]);
}

// --- Namespaces ---

bool Tags::declarePrefixes() {
    if (!declaresPrefixes) return true;
    for (const TagAttribute& attribute : all) {
        const bool declaresOne = attribute.name == "xmlns" || attribute.name.substr(0, 6) == "xmlns:";
        if (declaresOne && !declarePrefix(attribute)) return false;
    }
    return true;
}

bool Tags::declarePrefix(const TagAttribute& attribute) {
    const std::string_view prefix = attribute.name.size() > 5 ? attribute.name.substr(6) : std::string_view();
    const auto fail = [&](const char* rule, const std::string& text) {
        return in.fail(placeOf(attribute), rule, text, Problem::Kind::Namespace);
    };
    const bool isXml = attribute.value == Namespaces::kXmlName;
    if (prefix == "xmlns")
        return fail(StandardRules::kReservedPrefixesAndNamespaceNames, "the prefix xmlns is declared");
    if (attribute.value == Namespaces::kXmlnsName) {
        return fail(
            StandardRules::kReservedPrefixesAndNamespaceNames,
            prefix.empty() ? "the default namespace is that of xmlns" : "a prefix stands for the namespace of xmlns");
    }
    if (isXml != (prefix == "xml")) {
        return fail(StandardRules::kReservedPrefixesAndNamespaceNames,
                    isXml && prefix.empty() ? "the default namespace is that of xml"
                    : isXml                 ? "another prefix than xml stands for the namespace of xml"
                                            : "the prefix xml stands for another namespace than its own");
    }
    if (attribute.value.empty() && !prefix.empty()) {
        return fail(StandardRules::kNoPrefixUndeclaring, "the prefix " + std::string(prefix) + " stands for nothing");
    }
    inScope.declare(prefix, attribute.value);
    return true;
}

bool Tags::checkPrefix(std::string_view name, std::size_t colon, const char* where, Namespaces::Number& space) {
    space = inScope.find(name.substr(0, colon));
    return space != Namespaces::kNone ||
           in.fail(where, StandardRules::kPrefixDeclared, "the prefix of " + std::string(name) + " is not declared",
                   Problem::Kind::Namespace);
}

bool Tags::checkPrefixes() {
    Namespaces::Number space = Namespaces::kNone;
    if (nameColon != std::string_view::npos) {
        if (itsName.substr(0, nameColon) == "xmlns") {
            return in.fail(start, StandardRules::kReservedPrefixesAndNamespaceNames, "an element has the prefix xmlns",
                           Problem::Kind::Namespace);
        }
        if (!checkPrefix(itsName, nameColon, itsName.data(), space)) return false;
    }
    if (prefixed.empty()) return true;
    expanded.clear();
    for (const auto& [place, colon] : prefixed) {
        const TagAttribute& attribute = all[place];
        if (attribute.name.substr(0, colon) == "xmlns") continue;
        if (!checkPrefix(attribute.name, colon, placeOf(attribute), space)) return false;
        expanded.emplace_back(space, place);
    }
    return expanded.size() < 2 || checkExpandedNames();
}

// Names without a prefix are in no namespace, and were compared as they are written.
bool Tags::checkExpandedNames() {
    const auto local = [this](std::uint32_t place) {
        const std::string_view name = all[place].name;
        return name.substr(name.find(':') + 1);
    };
    const auto isBefore = [&](const auto& a, const auto& b) {
        if (a.first != b.first) return a.first < b.first;
        const int compared = local(a.second).compare(local(b.second));
        return compared != 0 ? compared < 0 : a.second < b.second;
    };
    std::sort(expanded.begin(), expanded.end(), isBefore);
    const std::size_t none = all.size();
    std::size_t first = none;
    for (std::size_t i = 1; i < expanded.size(); ++i) {
        const auto& a = expanded[i - 1];
        const auto& b = expanded[i];
        if (a.first == b.first && local(a.second) == local(b.second)) first = std::min<std::size_t>(first, b.second);
    }
    if (first == none) return true;
    return in.fail(placeOf(all[first]), StandardRules::kAttributesUnique,
                   "the attribute " + std::string(all[first].name) + " stands twice in the tag, under two prefixes",
                   Problem::Kind::Namespace);
}

}  // namespace Xml
