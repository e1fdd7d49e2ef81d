#pragma once

#include "xml/Export.h"
#include "xml/dom/Element.h"
#include "xml/easy/Numbers.h"
#include "xml/easy/Texts.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

// Attributes and texts of elements as values: bool (true, false, 1, 0), integers, floating point and strings. Nothing
// depends on the locale.
//
//     const int port = Xml::valueOr(server, "port", 80);
//     Xml::setValue(server, "port", port + 1);
namespace Xml {

namespace internal {

// Not for callers: the value of the attribute, or the default of the Dtd that the element links to.
ORVXML_API std::optional<std::string_view> textOfAttribute(const Element& e, std::string_view attribute);

}  // namespace internal

// The attribute, or the default of the linked Dtd. Empty where there is neither, and where not all of the text, but for
// white space around it, is a T; a T that the text does not fit into is none either. A string has all of the text; a
// view is good until the attribute, or the Dtd, is changed.
template <class T>
std::optional<T> value(const Element& e, std::string_view attribute) {
    const std::optional<std::string_view> text = internal::textOfAttribute(e, attribute);
    T read{};
    if (!text || !internal::readAny(*text, read)) return {};
    return read;
}

// The same; where that is empty, what is given.
template <class T>
T valueOr(const Element& e, std::string_view attribute, T otherwise) {
    std::optional<T> read = value<T>(e, attribute);
    return read ? *std::move(read) : std::move(otherwise);
}
ORVXML_API std::string valueOr(const Element& e, std::string_view attribute, const char* otherwise);
ORVXML_API std::string valueOr(const Element& e, std::string_view attribute, std::string_view otherwise);
inline std::string valueOr(const Element& e, std::string_view attribute, char* otherwise) {
    return valueOr(e, attribute, std::string_view(otherwise));
}

// The text of the element (see textOf) as a value.
template <class T>
std::optional<T> content(const Element& e) {
    static_assert(!std::is_same_v<T, std::string_view>, "the text is made anew, so that a view of it would dangle");
    T read{};
    if (!internal::readAny(textOf(e), read)) return {};
    return read;
}

// Sets the attribute, or adds it as the last one of the tag. Any name is kept; one that XML does not have is found when
// the tree is written.
ORVXML_API void setValue(Element& e, std::string_view attribute, std::string_view value);

// The shortest text that reads back as the same value.
template <class T, class = std::enable_if_t<internal::isNumber<T>>>
void setValue(Element& e, std::string_view attribute, const T& value) {
    setValue(e, attribute, std::string_view(internal::textOfValue(static_cast<internal::Widest<T>>(value))));
}

// Up to the first zero.
template <std::size_t N>
void setValue(Element& e, std::string_view attribute, const char (&value)[N]) {
    setValue(e, attribute, std::string_view(value, N).substr(0, std::string_view(value, N).find('\0')));
}

}  // namespace Xml
