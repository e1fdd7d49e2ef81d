#include "xml/easy/Values.h"

#include "xml/dom/internal/Editing.h"
#include "xml/easy/internal/AttributeText.h"

namespace Xml {

std::optional<std::string_view> internal::textOfAttribute(const Element& e, std::string_view attribute) {
    return attributeText(e, attribute);
}

std::string valueOr(const Element& e, std::string_view attribute, const char* otherwise) {
    return valueOr(e, attribute, std::string_view(otherwise));
}

std::string valueOr(const Element& e, std::string_view attribute, std::string_view otherwise) {
    return std::string(attributeText(e, attribute).value_or(otherwise));
}

void setValue(Element& e, std::string_view attribute, std::string_view value) { giveAttribute(e, attribute, value); }

}  // namespace Xml
