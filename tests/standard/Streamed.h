#pragma once

#include "xml/standard/StreamReader.h"
#include <string>

namespace Xml {
class Document;
class Object;
}  // namespace Xml

namespace Xml::test {

// One line for each event up to the last one, with its depth, its place and all that it says.
std::string linesOf(StreamReader& reader);

// The same for what a tree has: the events of a reader that keeps the same. All nodes have places.
std::string linesOf(const Document& document);

// The line of the event that is at hand.
std::string lineOf(const StreamReader& reader, StreamReader::Event event);

// Each node below that one, and itself, with its place.
std::string nodesOf(const Object& node);

}  // namespace Xml::test
