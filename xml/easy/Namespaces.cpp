#include "xml/easy/Namespaces.h"

#include "xml/dom/NodeKind.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/internal/AttributeText.h"
#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include <string_view>

namespace Xml {

namespace {

constexpr std::string_view kXml = "http://www.w3.org/XML/1998/namespace";
constexpr std::string_view kXmlns = "http://www.w3.org/2000/xmlns/";

// The rules of names look at well-formed text only.
StandardNames::QName partsOf(const Object& node) {
    const std::string_view name = nameOf(node);
    const char* const end = name.data() + name.size();
    if (Utf8::check(name.data(), end).end != end) return {{}, name};
    return StandardNames::qNameOf(name).value_or(StandardNames::QName{{}, name});
}

// What the prefix, or no prefix, is declared as at the element and around it.
std::string declared(const Element* at, std::string_view prefix) {
    const std::string attribute = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
    for (; at != nullptr; at = parentOf(*at)) {
        if (const auto uri = attributeText(*at, attribute)) return std::string(*uri);
    }
    return {};
}

}  // namespace

std::string namespaceOf(const Object& node) {
    const NodeKind kind = kindOf(node);
    const bool isElement = kind == NodeKind::Element;
    if (!isElement && kind != NodeKind::Attribute) return {};
    const auto [prefix, local] = partsOf(node);
    if (prefix == "xml") return std::string(kXml);
    if (prefix == "xmlns") return std::string(kXmlns);
    if (isElement) return declared(asElement(node), prefix);
    if (prefix.empty()) return local == "xmlns" ? std::string(kXmlns) : std::string();
    return declared(parentOf(node), prefix);
}

std::string localNameOf(const Object& node) { return std::string(partsOf(node).local); }
std::string prefixOf(const Object& node) { return std::string(partsOf(node).prefix); }

}  // namespace Xml
