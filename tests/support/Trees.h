#pragma once

#include "support/Sources.h"
#include "xml/dom/Object.h"
#include <memory>
#include <string>

namespace Xml {
class Document;
class Element;
class Dtd;
}  // namespace Xml

namespace Xml::test {

// The tree below a node in short: a[x=1]('text' [section] <!--comment--> <?instruction?> b c(d)). Attributes with their
// values as they are held, text as it is held; a document is the dump of its root, "none" without one; null is "null".
std::string dump(const Object* node);

// What a node writes, into a string stream that starts at position 0 (by toStream).
std::string textOf(const Object& node);

// The outcome of DocumentReader::parse over a text: the reader's verdict, its message, the document where there is one.
struct Outcome {
    bool ok = false;
    std::string error;
    std::unique_ptr<Document> document;

    Outcome();
    Outcome(Outcome&&) noexcept;
    ~Outcome();
};
Outcome readDocument(const std::string& text, Source source = Source::String);

// The dump of the document, or "error: " and the message; for tables.
std::string treeOf(const std::string& text, Source source = Source::String);

// The message of a failed DocumentReader::parse, without the class name at its end; "" after a success.
std::string errorOf(const std::string& text, Source source = Source::String);

// An element, and the document type of that name with the declarations of an internal subset. A text that cannot be
// read is a mistake of the test, which the exception ends.
std::unique_ptr<Element> readElement(const std::string& text);
std::unique_ptr<Dtd> readDtd(const std::string& declarations, const std::string& name = "r");

}  // namespace Xml::test
