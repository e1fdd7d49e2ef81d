// Where nodes of a caller's own classes find themselves while their setDtd and their clone are called, and what is left
// where these fail.
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using Calls = std::vector<std::string>;

Calls calls;                // what the nodes below were asked for, and what they saw then
const Object* watched;      // what they look at; with null their own parent
int callsUntilFailure = 0;  // the setDtd that throws; 0 for none

Calls takeCalls() { return std::exchange(calls, {}); }

// A container with what it holds: "box(a b)", "document(root dtd)".
std::string contentOf(const Object* node) {
    if (node == nullptr) return "nothing";
    if (node->isDocument()) {
        const Document& document = *node->toDocument();
        return std::string("document(") + (document.getRoot() != nullptr ? "root" : "-") + " " +
               (document.getDtd() != nullptr ? "dtd" : "-") + ")";
    }
    const Element& element = *node->toElement();
    std::string text = element.getName() + "(";
    for (int i = 0; i < element.getChildCount(); ++i)
        text += (i > 0 ? " " : "") + element.getChild(i)->toElement()->getName();
    return text + ")";
}

void note(const std::string& what, const Object& node) {
    const std::string parent = contentOf(node.getParent());
    calls.push_back(what + " in " + parent + (watched != nullptr ? ", beside " + contentOf(watched) : ""));
    if (callsUntilFailure > 0 && --callsUntilFailure == 0) throw std::bad_alloc();
}

class Watcher : public Element {
public:
    explicit Watcher(const std::string& watcherName) : Element(watcherName) {}
    Watcher(const Watcher&) = default;

    Object* clone() const override {
        calls.push_back("clone " + getName());
        return new Watcher(*this);
    }
    void setDtd(const Dtd* link) override {
        note((link != nullptr ? "link " : "unlink ") + getName(), *this);
        Element::setDtd(link);
    }
};

class WatchingDtd : public Dtd {
public:
    WatchingDtd() : Dtd("d") {}
    WatchingDtd(const WatchingDtd&) = default;

    Object* clone() const override {
        calls.emplace_back("clone dtd");
        return new WatchingDtd(*this);
    }
    void setDtd(const Dtd* link) override {
        note(link != nullptr ? "link dtd" : "unlink dtd", *this);
        Dtd::setDtd(link);
    }
};

class WatchingDocument : public Document {
public:
    using Document::Document;

    void setDtd(const Dtd* link) override {
        calls.push_back((link != nullptr ? "link " : "unlink ") + contentOf(this));
        Document::setDtd(link);
    }
};

// Whether no node of the tree links to a Dtd.
bool hasNoLinks(const Object& node) {
    if (NodeTestAccess::dtd(node) != nullptr) return false;
    if (!node.isElement()) return true;
    const Element& element = *node.toElement();
    for (int i = 0; i < element.getAttributeCount(); ++i) {
        if (NodeTestAccess::dtd(*element.getAttribute(i)) != nullptr) return false;
    }
    for (int i = 0; i < element.getChildCount(); ++i) {
        if (!hasNoLinks(*element.getChild(i))) return false;
    }
    return true;
}

class LinkingOrderTest : public testing::Test {
public:
    // box(a b), linked; the watcher w; part(leaf(...) v) with a watcher in the depths.
    void SetUp() override {
        watched = nullptr;
        callsUntilFailure = 0;
        box = std::make_unique<Element>("box");
        for (const char* name : {"a", "b"}) box->addElement(name, "text");
        box->setDtd(&dtd);
        part = std::make_unique<Element>("part");
        part->setAttribute("x", "1");
        part->addElement("leaf", "text");
        part->addChild(new Watcher("v"));
        calls.clear();
    }

    const Dtd dtd{"d"};
    std::unique_ptr<Element> box;
    std::unique_ptr<Element> part;
};

TEST_F(LinkingOrderTest, ANodeIsInItsPlaceWhenItIsLinkedAndOutOfItWhenLinksAreTaken) {
    const struct {
        const char* name;
        std::function<void(Element&, Object*)> operate;
        Calls expected;
    } kCases[] = {
        {"addChild", [](Element& e, Object* node) { e.addChild(node); }, {"link w in box(a b w), beside box(a b w)"}},
        {"insertChild in front",
         [](Element& e, Object* node) { e.insertChild(e.getChild(0), node); },
         {"link w in box(w a b), beside box(w a b)"}},
        {"insertChild in front of nothing",
         [](Element& e, Object* node) { e.insertChild(nullptr, node); },
         {"link w in box(a b w), beside box(a b w)"}},
        {"extractChild by number",
         [](Element& e, Object* node) {
             e.addChild(node);
             calls.clear();
             e.extractChild(2);
         },
         {"unlink w in nothing, beside box(a b)"}},
        {"extractChild by address",
         [](Element& e, Object* node) {
             e.insertChild(e.getChild(1), node);
             calls.clear();
             e.extractChild(node);
         },
         {"unlink w in nothing, beside box(a b)"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        SetUp();
        watched = box.get();
        Watcher* const watcher = new Watcher("w");
        c.operate(*box, watcher);
        EXPECT_EQ(takeCalls(), c.expected);
        watched = nullptr;
        if (watcher->getParent() == nullptr) delete watcher;
    }
}

TEST_F(LinkingOrderTest, ANodeInTheDepthsFindsTheTopInItsPlace) {
    watched = box.get();
    Element* const added = part.release();
    box->addChild(added);
    EXPECT_EQ(takeCalls(), Calls{"link v in part(leaf v), beside box(a b part)"});
    part.reset(box->extractChild(added)->toElement());
    EXPECT_EQ(takeCalls(), Calls{"unlink v in part(leaf v), beside box(a b)"});
}

TEST_F(LinkingOrderTest, ADocumentHasBothWhenItLinksItsRoot) {
    Document document(new Watcher("r"), new WatchingDtd());
    EXPECT_EQ(takeCalls(), Calls{"link r in document(root dtd)"});
    watched = &document;
    delete document.extractRoot();
    EXPECT_EQ(takeCalls(), Calls{"unlink r in nothing, beside document(- dtd)"});
    delete document.extractDtd();
    EXPECT_EQ(takeCalls(), Calls{"unlink dtd in nothing, beside document(- -)"});
}

TEST_F(LinkingOrderTest, ADtdIsOutOfItsDocumentWhenLinksToItAreTaken) {
    WatchingDocument document(new Watcher("r"), new WatchingDtd());
    takeCalls();
    delete document.extractDtd();
    EXPECT_EQ(takeCalls(), (Calls{"unlink r in document(root -)", "unlink document(root -)", "unlink dtd in nothing"}));
}

TEST_F(LinkingOrderTest, ACopyOfADocumentHasTheRootBeforeTheDtd) {
    const Document document(new Watcher("r"), new WatchingDtd());
    takeCalls();
    const Document copy(document);
    EXPECT_EQ(takeCalls(), (Calls{"clone r", "clone dtd", "link r in document(root dtd)"}));
    EXPECT_EQ(NodeTestAccess::dtd(*copy.getRoot()), copy.getDtd());
}

// --- Failures ---

TEST_F(LinkingOrderTest, ANodeThatCannotBeLinkedStaysTheCallersWithoutLinks) {
    const struct {
        const char* name;
        void (*add)(Element&, Object*);
        Calls expected;
    } kCases[] = {
        {"appended",
         [](Element& e, Object* node) { e.addChild(node); },
         {"link v in part(leaf v), beside box(a b part)", "unlink v in part(leaf v), beside box(a b part)"}},
        {"inserted",
         [](Element& e, Object* node) { e.insertChild(e.getChild(1), node); },
         {"link v in part(leaf v), beside box(a part b)", "unlink v in part(leaf v), beside box(a part b)"}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Element parentBefore("p");
        for (Object* const parent : {static_cast<Object*>(nullptr), static_cast<Object*>(&parentBefore)}) {
            SetUp();
            part->setParent(parent);
            watched = box.get();
            callsUntilFailure = 1;
            EXPECT_THROW(c.add(*box, part.get()), std::bad_alloc);
            EXPECT_EQ(takeCalls(), c.expected);
            EXPECT_EQ(part->getParent(), parent);
            EXPECT_TRUE(hasNoLinks(*part));
            EXPECT_EQ(contentOf(box.get()), "box(a b)");
            EXPECT_EQ(NodeTestAccess::dtd(*box), &dtd) << "nothing was changed";
        }
    }
}

// It puts another in front of its siblings, and fails.
class Inserter : public Element {
public:
    Inserter() : Element("inserter") {}

    void setDtd(const Dtd* link) override {
        Element::setDtd(link);
        if (link == nullptr) return;
        Element& around = *getParent()->toElement();
        around.insertChild(around.getChild(0), new Element("new"));
        throw std::bad_alloc();
    }
};

TEST_F(LinkingOrderTest, WhatANodeAddedBesideItselfStaysWhenItCannotBeLinked) {
    Inserter node;
    EXPECT_THROW(box->addChild(&node), std::bad_alloc);
    EXPECT_EQ(contentOf(box.get()), "box(new a b)");
    EXPECT_EQ(node.getParent(), nullptr);
    EXPECT_EQ(NodeTestAccess::dtd(node), nullptr);
}

// It takes itself out, and fails.
class Fleer : public Element {
public:
    Fleer() : Element("fleer") {}

    void setDtd(const Dtd* link) override {
        Element::setDtd(link);
        if (link == nullptr) return;
        getParent()->toElement()->extractChild(this);
        throw std::bad_alloc();
    }
};

TEST_F(LinkingOrderTest, ANodeThatTookItselfOutIsNotTakenOutAgain) {
    Fleer fleer;
    EXPECT_THROW(box->addChild(&fleer), std::bad_alloc);
    EXPECT_EQ(contentOf(box.get()), "box(a b)");
    EXPECT_EQ(fleer.getParent(), nullptr);
    EXPECT_EQ(NodeTestAccess::dtd(fleer), nullptr);
}

TEST_F(LinkingOrderTest, AChildThatCannotBeTakenOutIsBackInItsPlace) {
    for (int place = 0; place < 3; ++place) {
        SCOPED_TRACE(place);
        SetUp();
        Element* const child = part.release();
        box->insertChild(box->getChild(place), child);
        const std::string before = contentOf(box.get());
        callsUntilFailure = 1;
        EXPECT_THROW(box->extractChild(place), std::bad_alloc);
        EXPECT_EQ(contentOf(box.get()), before);
        EXPECT_EQ(box->getChild(place), child);
        EXPECT_EQ(child->getParent(), box.get());
        part.reset(box->extractChild(child)->toElement());
        EXPECT_TRUE(hasNoLinks(*part));
    }
}

TEST_F(LinkingOrderTest, PartsOfADocumentThatFailsStayTheCallersWithoutLinks) {
    for (const bool withDtd : {true, false}) {
        SCOPED_TRACE(withDtd);
        SetUp();
        Dtd own("d");
        Element rootParent("p");
        Element dtdParent("q");
        part->setParent(&rootParent);
        own.setParent(&dtdParent);
        callsUntilFailure = 1;
        EXPECT_THROW(Document(part.get(), withDtd ? &own : nullptr), std::bad_alloc);
        EXPECT_EQ(part->getParent(), &rootParent);
        EXPECT_EQ(own.getParent(), &dtdParent);
        EXPECT_TRUE(hasNoLinks(*part));
        EXPECT_EQ(contentOf(part.get()), "part(leaf v)");
    }
}

TEST_F(LinkingOrderTest, ADocumentKeepsWhatCannotBeTakenOut) {
    Element* const root = part.release();
    Document document(root, new WatchingDtd());
    Dtd* const itsDtd = document.getDtd();
    callsUntilFailure = 1;
    EXPECT_THROW(document.extractRoot(), std::bad_alloc);
    EXPECT_EQ(document.getRoot(), root);
    EXPECT_EQ(root->getParent(), &document);
    for (int failing : {1, 2}) {  // the root's, the Dtd's own
        callsUntilFailure = failing;
        EXPECT_THROW(document.extractDtd(), std::bad_alloc);
        EXPECT_EQ(document.getDtd(), itsDtd);
        EXPECT_EQ(itsDtd->getParent(), &document);
    }
    const std::unique_ptr<Dtd> taken(document.extractDtd());
    EXPECT_EQ(taken.get(), itsDtd);
    EXPECT_EQ(taken->getParent(), nullptr);
    EXPECT_TRUE(hasNoLinks(*root));
}

TEST_F(LinkingOrderTest, ACopyOfADocumentThatFailsLeavesTheOtherAsItWas) {
    Document document(part.release(), new WatchingDtd());
    const std::string before = dump(&document);
    callsUntilFailure = 1;
    EXPECT_THROW(Document{document}, std::bad_alloc);
    EXPECT_EQ(dump(&document), before);
    EXPECT_EQ(NodeTestAccess::dtd(*document.getRoot()), document.getDtd());
}

}  // namespace
}  // namespace Xml::test
