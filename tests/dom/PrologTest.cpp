#include "xml/dom/Prolog.h"

#include "dom/Settings.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace Xml::test {
namespace {

const Prolog& seen(const Document& document) { return prologOf(document); }

// A document with something in every field.
std::unique_ptr<Document> full() {
    auto document = std::make_unique<Document>(new Element("r"), nullptr);
    Prolog& prolog = prologOf(*document);
    prolog.encoding = "UTF-16";
    prolog.standalone = false;
    prolog.hasDeclaration = prolog.hasMark = true;
    prolog.newline = "\r\n";
    prolog.doctype = "r";
    prolog.publicId = "-//P//";
    prolog.systemId = "r.dtd";
    prolog.internalSubset = "<!ELEMENT r ANY>";
    prolog.beforeDoctype.push_back(std::make_unique<Comment>("1"));
    prolog.beforeRoot.push_back(std::make_unique<Instruction>("go", "2"));
    prolog.beforeRoot.push_back(std::make_unique<Comment>("3"));
    prolog.afterRoot.push_back(std::make_unique<Comment>("4"));
    return document;
}

std::string shown(const Prolog& prolog) {
    std::string text = prolog.encoding + (prolog.standalone ? *prolog.standalone ? " yes " : " no " : " - ") +
                       std::to_string(static_cast<int>(prolog.hasDeclaration)) +
                       std::to_string(static_cast<int>(prolog.hasMark)) + std::to_string(prolog.newline.size()) + " " +
                       prolog.doctype + " " + prolog.publicId + " " + prolog.systemId + " " + prolog.internalSubset;
    for (const auto* const nodes : {&prolog.beforeDoctype, &prolog.beforeRoot, &prolog.afterRoot}) {
        text += " |";
        for (const auto& node : *nodes) text += " " + dump(node.get());
    }
    return text;
}

const char* const kFull = "UTF-16 no 112 r -//P// r.dtd <!ELEMENT r ANY> | <!--1--> | <?go 2?> <!--3--> | <!--4-->";
const char* const kEmpty = " - 001     | | |";

TEST(PrologTest, IsThereWithoutHavingBeenAskedFor) {
    Document document(nullptr, nullptr);
    EXPECT_EQ(shown(seen(document)), kEmpty);
    EXPECT_EQ(&seen(document), &seen(Document(nullptr, nullptr))) << "nothing is made to be looked at";
    EXPECT_EQ(shown(prologOf(document)), kEmpty);
    EXPECT_EQ(&prologOf(document), &seen(document));
}

TEST(PrologTest, ADocumentThatTheDialectReadsHasAnEmptyOne) {
    const Outcome read = readDocument("<?xml version='1.0'?><!-- c --><r/><!-- d -->");
    ASSERT_TRUE(read.ok);
    EXPECT_EQ(shown(seen(*read.document)), kEmpty);
}

TEST(PrologTest, IsCopiedWithTheDocument) {
    const std::unique_ptr<Document> document = full();
    const Document copy(*document);
    const std::unique_ptr<Object> clone(document->clone());
    for (const Document* const each : {&copy, static_cast<const Document*>(clone->toDocument())}) {
        EXPECT_EQ(shown(seen(*each)), kFull);
        EXPECT_NE(seen(*each).afterRoot[0], seen(*document).afterRoot[0]);
        EXPECT_EQ(seen(*each).afterRoot[0]->getParent(), nullptr);
    }
    EXPECT_EQ(shown(seen(*document)), kFull);
}

TEST(PrologTest, IsAValue) {
    const std::unique_ptr<Document> document = full();
    Prolog prolog;
    prolog = prologOf(*document);
    EXPECT_EQ(shown(prolog), kFull);
    Prolog moved(std::move(prolog));
    EXPECT_EQ(shown(moved), kFull);
    Document other(nullptr, nullptr);
    prologOf(other) = std::move(moved);
    EXPECT_EQ(shown(seen(other)), kFull);
    prologOf(other) = Prolog();
    EXPECT_EQ(shown(seen(other)), kEmpty);
}

TEST(PrologTest, ItsNodesAreWrittenALineEach) {
    const std::unique_ptr<Document> document = full();
    const std::string header = std::string(_xmlHeader) + "\n";
    EXPECT_EQ(textOf(*document), header + "<!--1-->\n<?go 2?>\n<!--3-->\n<r/>\n<!--4-->\n");
    Document typed(new Element("r"), new Dtd("r"));
    prologOf(typed) = prologOf(*document);
    EXPECT_EQ(textOf(typed), header + "<!--1-->\n<!DOCTYPE r [\n]>\n<?go 2?>\n<!--3-->\n<r/>\n<!--4-->\n");
    const Outcome again = readDocument(textOf(*document));
    EXPECT_TRUE(again.ok) << again.error;
}

TEST(PrologTest, AskingForOneToChangeMarksTheDocument) {
    const std::unique_ptr<Document> document = full();
    const RewriteSetting setting(true);
    textOf(*document);
    EXPECT_FALSE(NodeTestAccess::dirty(*document));
    seen(*document);
    EXPECT_FALSE(NodeTestAccess::dirty(*document));
    prologOf(*document).afterRoot.clear();
    EXPECT_TRUE(NodeTestAccess::dirty(*document));
    EXPECT_EQ(textOf(*document).find("<!--4-->"), std::string::npos);
}

}  // namespace
}  // namespace Xml::test
