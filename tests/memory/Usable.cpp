#include "memory/Usable.h"

#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

void expectToBeWrittenAndReadAgain(const Document& document) {
    const std::string written = textOf(document);
    const Outcome again = readDocument(written);
    EXPECT_EQ(dump(again.document.get()), dump(&document)) << written;
}

void expectToBeCopied(const Document& document) {
    const std::unique_ptr<Object> copy(document.clone());
    EXPECT_EQ(dump(copy.get()), dump(&document));
    EXPECT_EQ(textOf(*copy), textOf(document));
}

void expectToBeAsked(Document& document) {
    std::vector<Element*> named = document.findAll(document.getRoot()->getName());
    XPath query(&document);
    const std::string& name = document.getRoot()->getName();
    EXPECT_EQ(query.GetValues(u"//" + OrvSys::UTF8ToUni16Char(name)), named.size());
    EXPECT_EQ(query.GetResult(0).node, document.getRoot());
}

void expectToBeEdited(Document& document) {
    const std::string before = dump(&document);
    Element& root = *document.getRoot();
    root.addElement("added-and-taken-out-again", "text & more");
    root.setAttribute("added-and-taken-out-again", "value");
    EXPECT_NE(dump(&document), before);
    root.removeAttribute("added-and-taken-out-again");
    delete root.extractChild(root.getChildCount() - 1);
    EXPECT_EQ(dump(&document), before);
}

}  // namespace

void expectUsable(Document& document) {
    expectToBeWrittenAndReadAgain(document);
    expectToBeCopied(document);
    expectToBeAsked(document);
    expectToBeEdited(document);
    const std::string before = dump(&document);
    const bool valid = document.validate();
    EXPECT_EQ(document.validate(), valid);
    EXPECT_EQ(dump(&document), before);
}

std::unique_ptr<Document> documentOf(const std::string& text) {
    Outcome outcome = readDocument(text);
    EXPECT_NE(outcome.document, nullptr) << outcome.error;
    return std::move(outcome.document);
}

}  // namespace Xml::test
