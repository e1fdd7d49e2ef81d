#include "xml/dom/Document.h"

#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

Element* rootWithTexts() {
    auto* root = new Element("r");
    root->addElement("a", "one");
    root->addElement("r", "two");
    root->getElement("r")->addElement("a", "three");
    root->getElement("r")->addElement("r", "four");
    return root;
}

std::string childText(const Element* element) {
    return element == nullptr ? "none" : element->getName() + ":" + element->getCharData();
}

TEST(DocumentTest, OwnsRootAndDtdAndIsTheirParent) {
    auto* root = new Element("r");
    auto* dtd = new Dtd("d");
    Document document(root, dtd);
    const Document& constant = document;
    EXPECT_EQ(document.getRoot(), root);
    EXPECT_EQ(constant.getRoot(), root);
    EXPECT_EQ(document.getDtd(), dtd);
    EXPECT_EQ(constant.getDtd(), dtd);
    EXPECT_EQ(root->getParent(), &document);
    EXPECT_EQ(dtd->getParent(), &document);
    EXPECT_EQ(document.getParent(), nullptr);
    EXPECT_TRUE(document.isDocument());
}

TEST(DocumentTest, WithoutRootAndDtdItIsEmpty) {
    Document document(nullptr, nullptr);
    EXPECT_EQ(document.getRoot(), nullptr);
    EXPECT_EQ(document.getDtd(), nullptr);
    EXPECT_EQ(document.extractRoot(), nullptr);
    EXPECT_EQ(document.extractDtd(), nullptr);
    EXPECT_EQ(document.find("r"), nullptr);
    EXPECT_TRUE(document.findAll("r").empty());
    EXPECT_EQ(textOf(document), "<?xml version = \"1.0\" ?>\n\n");
}

TEST(DocumentTest, TheHeaderIsTheDeclarationWithBlanksAroundTheEqualsSign) {
    EXPECT_STREQ(_xmlHeader, "<?xml version = \"1.0\" ?>");
}

TEST(DocumentTest, ValidWithoutDtdInvalidWithoutRootElseAsTheDtdFindsIt) {
    const struct {
        const char* name;
        bool root;
        bool dtd;
        const char* declared;
        bool valid;
    } kCases[] = {
        {"neither", false, false, "", true},
        {"no Dtd", true, false, "", true},
        {"no root", false, true, "r", false},
        {"a root that is declared", true, true, "r", true},
        {"a root that is not", true, true, "a", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        auto* dtd = c.dtd ? new Dtd("another name than the root's") : nullptr;
        if (dtd != nullptr) dtd->addElementDecl(c.declared);
        auto* root = c.root ? new Element("r", "text") : nullptr;
        Document document(root, dtd);
        MessageCollector collector;
        EXPECT_EQ(document.validate(), c.valid);
        EXPECT_EQ(NodeTestAccess::dtd(document), c.valid ? dtd : nullptr);
        EXPECT_TRUE(collector.texts().empty());
    }
}

TEST(DocumentTest, FindsElementsByNameCountingTheRootFirst) {
    const struct {
        const char* name;
        int n;
        const char* found;
    } kCases[] = {
        {"r", -1, "r:"},  {"r", 0, "r:"},     {"r", 1, "r:two"}, {"r", 2, "r:four"},
        {"r", 3, "none"}, {"a", -1, "a:one"}, {"a", 0, "a:one"}, {"a", 1, "a:three"},
        {"a", 2, "none"}, {"b", 0, "none"},   {"", 0, "none"},
    };
    Document document(rootWithTexts(), nullptr);
    const Document& constant = document;
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.n));
        EXPECT_EQ(childText(document.find(c.name, c.n)), c.found);
        EXPECT_EQ(constant.find(c.name, c.n), document.find(c.name, c.n));
    }
    EXPECT_EQ(document.find("r"), document.getRoot());
    EXPECT_EQ(constant.find("r"), document.getRoot());
}

TEST(DocumentTest, FindAllListsTheRootBeforeItsDescendants) {
    const struct {
        const char* name;
        std::vector<std::string> found;
    } kCases[] = {{"r", {"r:", "r:two", "r:four"}}, {"a", {"a:one", "a:three"}}, {"b", {}}};
    Document document(rootWithTexts(), nullptr);
    const Document& constant = document;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> texts;
        const std::vector<Element*> found = document.findAll(c.name);
        for (const Element* element : found) texts.push_back(childText(element));
        EXPECT_EQ(texts, c.found);
        EXPECT_EQ(constant.findAll(c.name), std::vector<const Element*>(found.begin(), found.end()));
    }
}

TEST(DocumentTest, TheRootTakenOutBelongsToTheCallerWithoutLinks) {
    Document document(rootWithTexts(), new Dtd("d"));
    const std::unique_ptr<Element> root(document.extractRoot());
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(document.getRoot(), nullptr);
    EXPECT_EQ(document.extractRoot(), nullptr);
    EXPECT_NE(document.getDtd(), nullptr);
    EXPECT_EQ(root->getParent(), nullptr);
    std::vector<const Element*> elements = {root.get()};
    root->findAllElements("a", elements);
    root->findAllElements("r", elements);
    for (const Element* element : elements) {
        EXPECT_EQ(NodeTestAccess::dtd(*element), nullptr);
        for (int i = 0; i < element->getChildCount(); ++i) {
            EXPECT_EQ(NodeTestAccess::dtd(*element->getChild(i)), nullptr);
        }
    }
}

TEST(DocumentTest, TheDtdTakenOutBelongsToTheCallerAndNothingLinksToIt) {
    Document document(rootWithTexts(), new Dtd("d"));
    const std::unique_ptr<Dtd> dtd(document.extractDtd());
    ASSERT_NE(dtd, nullptr);
    EXPECT_EQ(document.getDtd(), nullptr);
    EXPECT_EQ(document.extractDtd(), nullptr);
    EXPECT_EQ(dtd->getParent(), nullptr);
    EXPECT_NE(document.getRoot(), nullptr);
    EXPECT_EQ(NodeTestAccess::dtd(*document.getRoot()), nullptr);
    EXPECT_TRUE(document.validate());
}

TEST(DocumentTest, TheTextNamesTheRoot) {
    Document document(new Element("r"), nullptr);
    EXPECT_EQ(document.toString(), "<Document> r");
    const std::string& text = document.toString();
    document.getRoot()->setName("other");
    EXPECT_EQ(&document.toString(), &text);
    EXPECT_EQ(text, "<Document> other");
}

TEST(DocumentTest, WritesTheDeclarationTheDtdTheRootAndALineEnd) {
    const struct {
        const char* name;
        bool dtd;
        const char* child;
        const char* text;
    } kCases[] = {
        {"root", false, nullptr, "<?xml version = \"1.0\" ?>\n<r/>\n"},
        {"root with a child", false, "e", "<?xml version = \"1.0\" ?>\n<r>\n\t<e/>\n</r>\n"},
        {"Dtd and root", true, "e",
         "<?xml version = \"1.0\" ?>\n<!DOCTYPE d [\n<!ELEMENT r (#PCDATA)>\n<!ATTLIST r\n\tid CDATA #REQUIRED\n>\n"
         "<!ENTITY e \"x\">\n]>\n<r>\n\t<e/>\n</r>\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        auto* dtd = c.dtd ? new Dtd("d") : nullptr;
        if (dtd != nullptr) {
            dtd->addElementDecl("r");
            dtd->addAttDecl("r", "id", REQUIRED);
            dtd->setEntity("e", "x");
        }
        auto* root = new Element("r");
        if (c.child != nullptr) root->addChild(new Element(c.child));
        const Document document(root, dtd);
        EXPECT_EQ(textOf(document), c.text);
    }
    EXPECT_EQ(textOf(Document(nullptr, new Dtd("d"))), "<?xml version = \"1.0\" ?>\n<!DOCTYPE d [\n]>\n\n");
}

TEST(DocumentTest, StandsAtTheLevelOfTheStream) {
    const Document document(new Element("r"), nullptr);
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    document.toStream(out);
    EXPECT_EQ(text.str(), "\t<?xml version = \"1.0\" ?>\n\t<r/>\n");
}

TEST(DocumentTest, ACopyHasARootAndADtdOfItsOwnThatBelongTogether) {
    auto* dtd = new Dtd("d");
    dtd->addElementDecl("r", "a", REP_ZERO_OR_MORE);
    dtd->setEntity("e", "value");
    auto* root = new Element("r");
    root->addElement("a", "one");
    root->getElement("a")->setAttribute("x", "1");
    auto original = std::make_unique<Document>(root, dtd);
    const std::string text = textOf(*original);

    Document copy(*original);
    const std::unique_ptr<Object> cloned(original->clone());
    original.reset();
    ASSERT_TRUE(cloned->isDocument());
    for (Document* document : {&copy, cloned->toDocument()}) {
        EXPECT_EQ(textOf(*document), text);
        EXPECT_EQ(document->getRoot()->getParent(), document);
        EXPECT_EQ(document->getDtd()->getParent(), document);
        const Element& a = *document->getRoot()->getElement("a");
        const std::vector<const Object*> nodes = {document->getRoot(), &a, a.getChild(0), a.getAttribute("x")};
        for (const Object* node : nodes) {
            ASSERT_NE(node, nullptr);
            EXPECT_EQ(NodeTestAccess::dtd(*node), document->getDtd());
        }
    }
}

TEST(DocumentTest, ACopyWithoutDtdHasNoLinks) {
    const Document original(rootWithTexts(), nullptr);
    const Document copy(original);
    EXPECT_EQ(dump(&copy), dump(&original));
    EXPECT_EQ(copy.getDtd(), nullptr);
    EXPECT_EQ(NodeTestAccess::dtd(*copy.getRoot()), nullptr);
}

TEST(DocumentTest, TheCopyOfADocumentWithoutRootIsEmpty) {
    const Document empty(nullptr, nullptr);
    const Document copy(empty);
    EXPECT_EQ(copy.getRoot(), nullptr);
    EXPECT_EQ(copy.getDtd(), nullptr);
    const std::unique_ptr<Object> cloned(empty.clone());
    EXPECT_EQ(cloned->toDocument()->getRoot(), nullptr);
}

}  // namespace
// An element that asks its document while it is destroyed.
class Asking : public Element {
public:
    Asking(const std::string& itsName, std::string& itsAnswer) : Element(itsName), answer(itsAnswer) {}
    ~Asking() override { answer = getParent()->toString() + " " + getParent()->toDocument()->getDtd()->toString(); }

private:
    std::string& answer;
};

TEST(DocumentTest, AnswersTheNodesThatItDestroys) {
    std::string answer;
    {
        const Document document(new Asking("r", answer), new Dtd("r"));
        EXPECT_EQ(document.toString(), "<Document> r");
    }
    EXPECT_EQ(answer, "<Document> r <Document Type Description>");
}

}  // namespace Xml::test
