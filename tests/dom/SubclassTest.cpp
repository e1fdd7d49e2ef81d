#include "dom/Settings.h"
#include "dom/Sinks.h"
#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/OutStream.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

// What the nodes below were asked for, in order.
std::vector<std::string> calls;

std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

using Calls = std::vector<std::string>;

// As dump(), with leaves of other kinds by their text.
std::string shape(const Object& node) {
    if (!node.isElement()) return node.isCharData() ? dump(&node) : node.toString();
    const Element& element = *node.toElement();
    std::string text = element.getName() + "(";
    for (int i = 0; i < element.getChildCount(); ++i) text += (i > 0 ? " " : "") + shape(*element.getChild(i));
    return text + ")";
}

// An element of a caller.
class OwnElement : public Element {
public:
    explicit OwnElement(const std::string& elementName) : Element(elementName) {}
    OwnElement(const OwnElement&) = default;
    // Everything that it holds is still there when it goes.
    ~OwnElement() override { calls.push_back("delete " + shape(*this)); }

    Object* clone() const override {
        calls.push_back("clone " + getName());
        return new OwnElement(*this);
    }
    void setDtd(const Dtd* link) override {
        calls.push_back("link " + getName());
        Element::setDtd(link);
    }
    void write(OutStream& out) const override {
        calls.push_back("write " + getName());
        out << std::string("[");
        for (int i = 0; i < getChildCount(); ++i) getChild(i)->toStream(out);
        out << std::string("]");
    }
};

// An element that keeps links from what is below it and does not show itself as an element.
class Hidden : public Element {
public:
    Hidden() : Element("hidden") {}
    Hidden(const Hidden&) = default;

    Object* clone() const override { return new Hidden(*this); }
    void setDtd(const Dtd*) override { calls.push_back("link hidden"); }
    bool isElement() const override { return false; }
};

class OwnText : public CharData {
public:
    explicit OwnText(const std::string& data) : CharData(DataHolder(data)) {}
    OwnText(const OwnText&) = default;
    ~OwnText() override { calls.push_back("delete '" + data() + "'"); }

    Object* clone() const override {
        calls.push_back("clone '" + data() + "'");
        return new OwnText(*this);
    }
    void setDtd(const Dtd* link) override {
        calls.push_back("link '" + data() + "'");
        CharData::setDtd(link);
    }
    void write(OutStream& out) const override {
        calls.push_back("write '" + data() + "'");
        out << "{" + data() + "}";
    }
};

// Text that does not show itself as text.
class SilentText : public CharData {
public:
    explicit SilentText(const std::string& data) : CharData(DataHolder(data)) {}
    SilentText(const SilentText&) = default;

    Object* clone() const override { return new SilentText(*this); }
    bool isCharData() const override { return false; }
};

// A leaf that is neither: a comment, say.
class Comment : public Object {
public:
    explicit Comment(const std::string& itsText) : text(itsText) {}
    Comment(const Comment&) = default;
    ~Comment() override { calls.push_back("delete " + text); }

    Object* clone() const override {
        calls.push_back("clone " + text);
        return new Comment(*this);
    }
    const std::string& toString() const override { return text; }
    void setDtd(const Dtd* link) override {
        calls.push_back("link " + text);
        Object::setDtd(link);
    }
    void write(OutStream& out) const override {
        calls.push_back("write " + text);
        out << "<!--" + text + "-->";
    }

private:
    std::string text;
};

// A leaf that answers the type queries as it was made to.
class Chameleon : public Object {
public:
    explicit Chameleon(bool asText) : text(asText ? "text" : "none"), charData(asText) {}
    Chameleon(const Chameleon&) = default;

    Object* clone() const override { return new Chameleon(*this); }
    const std::string& toString() const override { return text; }
    bool isCharData() const override { return charData; }
    void write(OutStream& out) const override { out << text; }

private:
    std::string text;
    bool charData;
};

class SubclassTest : public testing::Test {
public:
    // root(plain(own('t' inner(comment)))) as plain elements around one of the caller's, comment a leaf of the
    // caller's.
    void SetUp() override {
        calls.clear();
        root = std::make_unique<Element>("root");
        auto* plain = new Element("plain");
        root->addChild(plain);
        own = new OwnElement("own");
        own->addChild(new OwnText("t"));
        inner = new Element("inner");
        comment = new Comment("c");
        inner->addChild(comment);
        own->addChild(inner);
        plain->addChild(own);
        calls.clear();
    }

    std::unique_ptr<Element> root;
    OwnElement* own = nullptr;
    Element* inner = nullptr;
    Comment* comment = nullptr;
};

TEST_F(SubclassTest, OverriddenWritesAreCalledAndRecordedLikeAll) {
    EXPECT_EQ(textOf(*root), "<root>\n\t<plain>\n\t\t[{t}<inner>\n\t\t\t<!--c-->\n\t\t</inner>]\n\t</plain>\n</root>");
    EXPECT_EQ(takeCalls(), (Calls{"write own", "write 't'", "write c"}));
    EXPECT_EQ(NodeTestAccess::writeStart(*own), 16);
    EXPECT_EQ(NodeTestAccess::writeEnd(*own), 53);
    EXPECT_EQ(NodeTestAccess::writeStart(*comment), 30);
    EXPECT_EQ(NodeTestAccess::writeEnd(*comment), 41);
    EXPECT_FALSE(NodeTestAccess::dirty(*own));
    EXPECT_FALSE(NodeTestAccess::dirty(*comment));
}

TEST_F(SubclassTest, OverriddenWritesOfUnchangedNodesAreSkippedWhenRewriting) {
    RewriteSetting rewrite(true);
    BareOutStream out;
    root->toStream(out);
    takeCalls();
    out.setPosition(0);
    root->touch();
    root->toStream(out);
    EXPECT_EQ(takeCalls(), Calls{});
    out.setPosition(0);
    comment->touch();
    root->toStream(out);
    EXPECT_EQ(takeCalls(), (Calls{"write own", "write c"}));
    EXPECT_EQ(out.bytes, "<root>\n\t<plain>\n\t\t[{t}<inner>\n\t\t\t<!--c-->\n\t\t</inner>]\n\t</plain>\n</root>");
}

TEST_F(SubclassTest, OverriddenClonesAreCalledAndNothingIsLinkedThereby) {
    const Dtd dtd("d");
    root->setDtd(&dtd);
    takeCalls();
    const std::unique_ptr<Object> copy(root->clone());
    EXPECT_EQ(takeCalls(), (Calls{"clone own", "clone 't'", "clone c"}));
    Element& plain = *copy->toElement()->getElement("plain");
    auto* ownCopy = dynamic_cast<OwnElement*>(plain.getChild(0));
    ASSERT_NE(ownCopy, nullptr);
    EXPECT_EQ(ownCopy->getParent(), &plain);
    EXPECT_EQ(NodeTestAccess::dtd(*ownCopy), nullptr);
    ASSERT_NE(dynamic_cast<OwnText*>(ownCopy->getChild(0)), nullptr);
    EXPECT_EQ(ownCopy->getChild(0)->getParent(), ownCopy);
    EXPECT_EQ(NodeTestAccess::dtd(*ownCopy->getChild(0)), &dtd);
    auto* commentCopy = dynamic_cast<Comment*>(ownCopy->getElement("inner")->getChild(0));
    ASSERT_NE(commentCopy, nullptr);
    EXPECT_EQ(commentCopy->getParent(), ownCopy->getElement("inner"));
    EXPECT_EQ(NodeTestAccess::dtd(*commentCopy), &dtd);
    EXPECT_TRUE(NodeTestAccess::dirty(*commentCopy));
}

TEST_F(SubclassTest, ACloneIsTakenAsItIs) {
    // It may be of another kind, and bring a link.
    class Replacing : public Comment {
    public:
        explicit Replacing(const Dtd& itsDtd) : Comment("r"), linkOfCopy(itsDtd) {}
        Object* clone() const override {
            auto* copy = new Element("replacement", "text");
            copy->setDtd(&linkOfCopy);
            return copy;
        }

    private:
        const Dtd& linkOfCopy;
    };
    const Dtd dtd("d");
    root->addChild(new Replacing(dtd));
    const Element copy(*root);
    ASSERT_EQ(copy.getChildCount(), 2);
    EXPECT_EQ(dump(copy.getChild(1)), "replacement('text')");
    EXPECT_EQ(copy.getChild(1)->getParent(), &copy);
    EXPECT_EQ(NodeTestAccess::dtd(*copy.getChild(1)), &dtd);
}

TEST_F(SubclassTest, OverriddenSetDtdIsCalledOnceANodeAndDecidesWhatIsBelow) {
    const Dtd dtd("d");
    root->addChild(new Hidden);
    auto* hidden = dynamic_cast<Hidden*>(root->getChild(1));
    ASSERT_NE(hidden, nullptr);
    auto* below = new Element("below");
    hidden->addChild(below);
    takeCalls();
    root->setDtd(&dtd);
    EXPECT_EQ(takeCalls(), (Calls{"link own", "link 't'", "link c", "link hidden"}));
    EXPECT_EQ(NodeTestAccess::dtd(*own), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*inner), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*comment), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*hidden), nullptr);
    EXPECT_EQ(NodeTestAccess::dtd(*below), nullptr);
}

TEST_F(SubclassTest, EveryOperationThatLinksCallsTheOverride) {
    const Dtd dtd("d");
    Element target("target");
    target.setDtd(&dtd);
    const struct {
        const char* name;
        void (*operate)(SubclassTest& t, Element& target);
        Calls expected;
    } kCases[] = {
        {"extractChild by pointer",
         [](SubclassTest& t, Element&) { t.root->getElement(0)->extractChild(t.own); },
         {"link own", "link 't'", "link c"}},
        {"addChild", [](SubclassTest& t, Element& e) { e.addChild(t.own); }, {"link own", "link 't'", "link c"}},
        {"extractChild by index",
         [](SubclassTest&, Element& e) { e.extractChild(0); },
         {"link own", "link 't'", "link c"}},
        {"insertChild",
         [](SubclassTest& t, Element& e) { e.insertChild(nullptr, t.own); },
         {"link own", "link 't'", "link c"}},
        {"touch links nothing", [](SubclassTest& t, Element&) { t.comment->touch(); }, {}},
        {"Document",
         [](SubclassTest& t, Element& e) {
             e.extractChild(0);
             takeCalls();
             auto* top = new Element("r");
             top->addChild(t.own);
             takeCalls();
             Document document(top, nullptr);
             Calls made = takeCalls();
             top->extractChild(0);
             takeCalls();
             delete document.extractRoot();
             calls = made;
         },
         {"link own", "link 't'", "link c"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        takeCalls();
        c.operate(*this, target);
        EXPECT_EQ(takeCalls(), c.expected);
    }
    delete own;
}

TEST_F(SubclassTest, EveryNodeIsDestroyedByItsOwnDestructorWithWhatItHolds) {
    const struct {
        const char* name;
        void (*destroy)(SubclassTest&);
    } kCases[] = {
        {"the root", [](SubclassTest& t) { t.root.reset(); }},
        {"killChildren of the root", [](SubclassTest& t) { t.root->killChildren(); }},
        {"killChildren of the parent", [](SubclassTest& t) { t.root->getElement(0)->killChildren(); }},
        {"the node itself", [](SubclassTest& t) { delete t.root->getElement(0)->extractChild(0); }},
        {"the document", [](SubclassTest& t) { Document(t.root.release(), nullptr); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        SetUp();
        takeCalls();
        c.destroy(*this);
        Calls made;
        for (const std::string& call : takeCalls()) {
            if (call.rfind("delete", 0) == 0) made.push_back(call);
        }
        ASSERT_FALSE(made.empty());
        EXPECT_EQ(made[0], "delete own('t' inner(c))");
        std::sort(made.begin(), made.end());
        EXPECT_EQ(made, (Calls{"delete 't'", "delete c", "delete own('t' inner(c))"}));
    }
}

TEST_F(SubclassTest, TextsThatAreReplacedAreDestroyedByTheirOwnDestructor) {
    Element element("e");
    element.addChild(new OwnText("t"));
    element.addChild(new Comment("c"));
    takeCalls();
    element.setCharData("new");
    EXPECT_EQ(takeCalls(), Calls{"delete 't'"});
    EXPECT_EQ(element.getChildCount(), 2);
    element.killChildren();
    EXPECT_EQ(takeCalls(), Calls{"delete c"});
}

TEST_F(SubclassTest, WhatANodeAnswersToTheTypeQueriesDecides) {
    MessageCollector collector;
    Element element("e");
    element.addChild(new Hidden);
    element.addChild(new SilentText("silent"));
    EXPECT_EQ(element.getElement(0), nullptr);
    EXPECT_EQ(element.getElement("hidden"), nullptr);
    EXPECT_EQ(element.findElement("hidden"), nullptr);
    EXPECT_EQ(element.getChild(0)->toElement(), nullptr);
    EXPECT_EQ(collector.take(), std::vector<std::string>{"<Object::toElement> Not a Element"});
    EXPECT_EQ(element.getCharData(), "");
    EXPECT_EQ(element.getChild(1)->toCharData(), nullptr);
    EXPECT_EQ(collector.take(), std::vector<std::string>{"<Object::toCharData> Not a CharData"});

    // No text among the children: each on a line of its own.
    EXPECT_EQ(textOf(element), "<e>\n\t<hidden/>\nsilent\n</e>");
    element.setCharData("new");
    EXPECT_EQ(textOf(element), "<e><hidden/>silentnew</e>");
    EXPECT_EQ(element.getChildCount(), 3);
    EXPECT_TRUE(collector.texts().empty());
}

TEST_F(SubclassTest, WhatIsBelowAHiddenElementIsNotFound) {
    Element element("e");
    auto* hidden = new Hidden;
    hidden->addElement("a", "below");
    element.addChild(hidden);
    element.addElement("a", "beside");
    std::vector<Element*> found;
    element.findAllElements("a", found);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0]->getCharData(), "beside");
    EXPECT_EQ(element.findElement("a"), found[0]);
    EXPECT_EQ(element.findElement("a", 1), nullptr);
    EXPECT_EQ(hidden->findElement("a")->getCharData(), "below");
}

TEST_F(SubclassTest, ElementsOfTheCallerAreFoundLikeAllAndSearchedBelow) {
    EXPECT_EQ(root->findElement("own"), own);
    EXPECT_EQ(root->findElement("inner"), inner);
    std::vector<Element*> found;
    root->findAllElements("inner", found);
    EXPECT_EQ(found, std::vector<Element*>{inner});
    EXPECT_EQ(root->findElementCharData("own"), "t");
}

TEST_F(SubclassTest, ALeafOfAnotherKindLeavesTheLayoutToTheOthers) {
    for (bool asText : {false, true}) {
        Element element("e");
        element.addChild(new Element("a"));
        element.addChild(new Chameleon(asText));
        EXPECT_EQ(textOf(element), asText ? "<e><a/>text</e>" : "<e>\n\t<a/>\n\tnone\n</e>");
    }
}

TEST_F(SubclassTest, ALeafInsideATreeHasALinkAParentAndAMark) {
    const Dtd dtd("d");
    EXPECT_EQ(comment->getParent(), inner);
    root->setDtd(&dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*comment), &dtd);
    NodeTestAccess::setDirty(*root, false);
    comment->touch();
    EXPECT_TRUE(NodeTestAccess::dirty(*root));
    EXPECT_EQ(NodeTestAccess::dtd(*comment), nullptr);
    EXPECT_EQ(NodeTestAccess::dtd(*own), nullptr);
}

TEST_F(SubclassTest, ARootOfTheCallersClassIsWrittenAndCopiedAsItIs) {
    Document document(new OwnElement("r"), nullptr);
    takeCalls();
    EXPECT_EQ(textOf(document), "<?xml version = \"1.0\" ?>\n[]\n");
    const Document copy(document);
    EXPECT_NE(dynamic_cast<const OwnElement*>(copy.getRoot()), nullptr);
    EXPECT_EQ(takeCalls(), (Calls{"write r", "clone r", "link r"}));
}

// The root is linked while the base of the document is made.
TEST_F(SubclassTest, ADocumentThatItsRootWritesWhileItIsMadeIsWrittenAsItIsLater) {
    class Writing : public Element {
    public:
        Writing() : Element("r") {}
        void setDtd(const Dtd* link) override {
            Element::setDtd(link);
            BareOutStream out;
            if (const Object* const document = getParent()) document->toStream(out);
        }
    };
    class OwnDocument : public Document {
    public:
        explicit OwnDocument(std::ostream& itsTarget) : Document(new Writing, nullptr), target(itsTarget) {}
        void write(OutStream&) const override { target << "past the sink"; }

    private:
        std::ostream& target;
    };
    std::ostringstream stream;
    const OwnDocument document(stream);
    FileOutStream out(&stream);
    document.toStream(out);
    EXPECT_EQ(stream.str(), "past the sink");
    EXPECT_EQ(NodeTestAccess::writeEnd(document), 13);
}

TEST_F(SubclassTest, DeepChainsOfPlainAndOwnElementsAreCopiedWrittenAndDestroyed) {
    constexpr int kDepth = 200;
    auto chain = std::make_unique<Element>("p");
    Element* innermost = chain.get();
    for (int i = 0; i < kDepth; ++i) {
        Element* child = i % 3 == 0 ? new OwnElement("o") : new Element("p");
        innermost->addChild(child);
        innermost = child;
    }
    takeCalls();
    const std::unique_ptr<Object> copy(chain->clone());
    EXPECT_EQ(takeCalls().size(), 67U);
    EXPECT_EQ(dump(copy.get()), dump(chain.get()));
    EXPECT_EQ(textOf(*copy), textOf(*chain));
    takeCalls();
    chain.reset();
    EXPECT_EQ(takeCalls().size(), 67U);
}

}  // namespace
// Text whose copy has the parent of the copy before it written.
class Restless : public CharData {
public:
    explicit Restless(const Restless** itsLast) : CharData(DataHolder("x")), last(itsLast) {}
    Restless(const Restless&) = default;

    Object* clone() const override {
        if (*last != nullptr && (*last)->getParent() != nullptr) {
            std::ostringstream text;
            FileOutStream out(&text);
            (*last)->getParent()->toStream(out);
        }
        auto* const copy = new Restless(*this);
        *last = copy;
        return copy;
    }

private:
    const Restless** last;
};

// An element that writes in its own way.
class Loud : public Element {
public:
    Loud() : Element("loud") {}
    Loud(const Loud&) = default;

    Object* clone() const override { return new Loud(*this); }
    void write(OutStream& out) const override { out << std::string("LOUD"); }
};

TEST_F(SubclassTest, IsWrittenByItsOwnWriteAlsoWhereItWasAskedForWhileItWasCopied) {
    const Restless* last = nullptr;
    Loud loud;
    loud.addChild(new Restless(&last));
    loud.addChild(new Restless(&last));
    Element top("root");
    top.addChild(loud.clone());
    ASSERT_NE(last, nullptr);
    std::ostringstream text;
    FileOutStream out(&text);
    top.toStream(out);
    EXPECT_EQ(text.str(), "<root>\n\tLOUD\n</root>");
}

}  // namespace Xml::test
