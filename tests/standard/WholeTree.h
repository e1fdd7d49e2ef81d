#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/Object.h"
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Whole trees as lines: what stands around the root, and everything below it. A text is a line, in however many nodes.
namespace Xml::test {

enum class AttributeOrder { OfTag, ByName };
enum class Sections { Texts, Nodes };  // a section is a part of the text around it, or a line of its own

// Defaults have a mark.
std::string wholeTree(const Document& document, AttributeOrder order, Sections sections);

// The same of what libxml2 makes of it: by name, without marks, sections as nodes. Empty: it refuses it. Without an
// encoding it finds that by itself.
std::optional<std::string> libxml2Tree(std::string_view text, const char* encoding = "UTF-8");

// Every node of the document in the order of the text, an element's attributes in the order of the tag.
void forEachNode(const Document& document, const std::function<void(const Object&)>& look);

}  // namespace Xml::test
