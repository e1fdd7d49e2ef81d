#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Xml {
class Dtd;
class InStream;
class Object;
}  // namespace Xml

namespace Xml::test {

// A tree with everything that no operation shows: for each node what it is, whether it links to `dtd`, to none ("-") or
// to another ("?"), its mark of change, its positions, and whether its parent is the node above it.
std::string linksOf(const Object* node, const Dtd* dtd, const Object* parent = nullptr);

// The links of the node and of all below it, in document order.
std::vector<const Dtd*> linksIn(const Object& node);

// The Dtd as it is written, once as it is and once with every element of the tests declared, so that all attribute
// lists show. "none" for null.
std::string fullText(const Dtd* dtd);

// Where the stream stands and what it has to say: position, line, column, message.
std::string stateOf(const InStream& in);

// Line and column of the positions up to one after `size`, or of every `step`th: all line breaks that were recorded.
// Moves the stream.
std::string placesOf(InStream& in, std::size_t size, std::size_t step = 1);

}  // namespace Xml::test
