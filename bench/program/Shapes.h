// Documents that are generated. The same size gives the same bytes on every machine.
#pragma once
#include <cstddef>
#include <string>

namespace bench {

// About so many bytes, most of them in attributes, in tags, in text.
std::string attributeHeavy(std::size_t bytes);
std::string elementHeavy(std::size_t bytes);
std::string textHeavy(std::size_t bytes);

// <a>x</a>, so many times below one root.
std::string siblings(std::size_t count);

// One text with so many references in it, each in ten bytes with the text before it.
std::string references(std::size_t count);

// A document of 175 bytes.
std::string tiny();

// So many empty elements <a/> below one root; so many elements <x> one in the other, with a <y/> in the innermost.
std::string wide(std::size_t count);
std::string deep(std::size_t count);

// A document and the declarations that it is valid by.
struct Typed {
    std::string root;
    std::string declarations;
    std::string text;
};

// Of 40 element types: sequences, choices, repetitions, mixed and empty content, attributes.
Typed manyTypes(std::size_t bytes);

// One parent with so many children.
Typed manyChildren(std::size_t count);

}  // namespace bench
