#pragma once

#include "orvsys/Uni16.h"
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/xpath/XPath.h"
#include <cstddef>
#include <memory>
#include <string>

namespace Xml {
class Element;
class Object;
}  // namespace Xml

namespace Xml::test {

// A document made of a text that can be read; throws where it cannot.
class Tree {
public:
    explicit Tree(const std::string& text);
    ~Tree();

    Document* document() const { return document_.get(); }
    Element* root() const;

    // The element whose attribute `i` has that value; throws where there is none.
    Element* operator[](const std::string& i) const;

private:
    std::unique_ptr<Document> document_;
};

// A node in short: an element by the value of its attribute `i`, or else by its name, an attribute as @name=value, text
// in single quotes as it is held, a document as "/", a document type as "dtd", no node as "null".
std::string shortOf(const Object* node);

// The results in short, with blanks between them: a node as above, a string as str(text)#tag, a number as 2.5#tag.
std::string resultsOf(const XPath& query);

// Code and text of the error that the query holds, such as "14: a/"; the code alone where the text of the error is
// empty or may not be shown; empty for no error.
std::string errorIn(XPath& query);

// What the query makes of the path: the results, then, where there is an error, " | " and the error, "failed" before it
// where FindNodes says false (so "failed 0" for a failure without a code). All of this is had from GetValues; FindNodes
// and GetValue on objects of their own must tell the same. `before` is asked first: its results are the context then.
std::string answer(Object* context, const OrvSys::Uni16String& path, const OrvSys::Uni16String& before = {});

// "ok", or "failed" and the error, as SyntaxOK has it; the results must stay. `before` as above.
std::string syntax(Object* context, const OrvSys::Uni16String& path, const OrvSys::Uni16String& before = {});

// One case of a table, and a table's check. `before` is often left out.
struct PathCase {
    const char* name;
    const char16_t* path;
    const char* answer;
    const char16_t* before = u"";
};

void expectAnswer(Object* context, const PathCase& c);

template <std::size_t N>
void expectAnswers(Object* context, const PathCase (&cases)[N]) {
    for (const PathCase& c : cases) expectAnswer(context, c);
}

}  // namespace Xml::test
