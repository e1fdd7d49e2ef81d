// Building, editing, copying, searching and writing trees while memory runs out.
#include "dom/Settings.h"
#include "dom/Sinks.h"
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "models/Snapshot.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Entity.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/dtd/Dtd.h"
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace Xml::test {

namespace {

// A valid document with defaults, entities, mixed content and a few levels.
const std::string kGarden =
    "<!DOCTYPE garden [<!ELEMENT garden (bed)*><!ELEMENT bed (bed | note)*><!ELEMENT note (#PCDATA | em)*>"
    "<!ELEMENT em (#PCDATA)><!ATTLIST bed place CDATA 'somewhere behind the house'>"
    "<!ENTITY soil 'heavy, and wet for most of the year'>]>"
    "<garden><bed><bed place='in front of the house'><note>sow &soil; <em>early, but not too early</em> "
    "indoors</note></bed>"
    "</bed><bed/></garden>";

std::unique_ptr<Document> garden() { return documentOf(kGarden); }

// Elements nested that deep, each with text beside the inner one.
std::unique_ptr<Element> nested(int depth) {
    auto top = std::make_unique<Element>("bed");
    Element* inner = top.get();
    for (int i = 0; i < depth; ++i) {
        inner->addElement("note", "text & more");
        inner->addChild(new Element("bed"));
        inner = inner->getElement("bed");
    }
    return top;
}

}  // namespace

TEST(DomMemoryTest, AnEditThatFailsLeavesTheDocumentAsItWas) {
    using Edit = std::function<void(Document&)>;
    const auto onRoot = [](auto edit) -> Edit { return [edit](Document& document) { edit(*document.getRoot()); }; };
    const auto onText = [](auto edit) -> Edit {
        return [edit](Document& document) { edit(*document.find("note")->getChild(0)->toCharData()); };
    };
    struct Case {
        const char* name;
        Edit edit;
    };
    const Case kCases[] = {
        {"rename", onRoot([](Element& root) { root.setName("a-name-that-no-short-string-holds"); })},
        {"rename to what is no name", onRoot([](Element& root) { root.setName(kLong); })},
        {"new attribute", onRoot([](Element& root) { root.setAttribute("attribute-of-a-long-name", kLong); })},
        {"replaced attribute",
         onRoot([](Element& root) { root.getElement(0)->getElement(0)->setAttribute("place", kLong); })},
        {"attribute whose name is none", onRoot([](Element& root) { root.setAttribute(kLong, kLong); })},
        {"attribute's value",
         onRoot([](Element& r) { r.getElement(0)->getElement(0)->getAttribute(0)->setValue(kLong); })},
        {"new element with text",
         onRoot([](Element& root) { root.addElement("another-bed-of-a-long-name", kLong + "&"); })},
        {"new element whose name is none", onRoot([](Element& root) { root.addElement(kLong, kLong); })},
        {"new text", onRoot([](Element& root) { root.setCharData(kLong + "<"); })},
        {"replaced text", [](Document& document) { document.find("em")->setCharData(kLong + "<"); }},
        {"text of a child", onRoot([](Element& root) { root.setElementCharData("bed", kLong); })},
        {"text of an element below", onRoot([](Element& root) { root.findAndSetElementCharData("em", kLong); })},
        {"text of a text", onText([](CharData& text) { text.setData(kLong + "<"); })},
        {"reference in a text", onText([](CharData& text) { text.setData(Entity("soil-in-the-lower-garden")); })},
        {"reference whose name is none", onText([](CharData& text) { text.setData(Entity(kLong)); })},
        {"held text", onText([](CharData& text) { text.data() = kLong; })},
        {"entity", [](Document& document) { document.getDtd()->setEntity("soil-in-the-lower-garden", kLong); }},
        {"replaced entity", [](Document& document) { document.getDtd()->setEntity("soil", kLong + kLong); }},
        {"declaration", [](Document& document) { document.getDtd()->addElementDecl("pea"); }},
    };
    const QuietMessages quiet;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            const auto document = garden();
            const std::string before = textOf(*document);
            const auto linksBefore = linksIn(*document->getRoot());
            if (!attempt([&] { c.edit(*document); })) {
                EXPECT_EQ(textOf(*document), before);
                EXPECT_EQ(linksIn(*document->getRoot()), linksBefore);
                expectUsable(*document);
            }
        });
    }
}

TEST(DomMemoryTest, AChildThatCannotBeAddedStaysTheCallersWithoutLinks) {
    struct Case {
        const char* name;
        std::function<void(Element&, Object*)> add;
    };
    const Case kCases[] = {
        {"appended", [](Element& root, Object* child) { root.addChild(child); }},
        {"inserted", [](Element& root, Object* child) { root.insertChild(root.getChild(0), child); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto scenario = [&c](Attempt& attempt) {
            std::unique_ptr<Object> child = nested(40);
            {
                const auto document = garden();
                EXPECT_TRUE(document->validate());
                Element& root = *document->getRoot();
                const std::string before = dump(document.get());
                Object* const offered = child.get();
                if (attempt([&] { c.add(root, offered); })) {
                    EXPECT_TRUE(root.isChild(offered));
                    EXPECT_EQ(offered, child.release());
                } else {
                    EXPECT_EQ(dump(document.get()), before);
                    EXPECT_EQ(child->getParent(), nullptr);
                    EXPECT_EQ(linksIn(*child), linksIn(*nested(40)));
                    EXPECT_TRUE(document->validate());
                    expectUsable(*document);
                }
            }
            // The child outlives the document, and its Dtd.
            if (child) {
                EXPECT_EQ(textOf(*child), textOf(*nested(40)));
                EXPECT_EQ(child->toElement()->getAttributeValue("place"), "");
            }
        };
        forEachFailingAllocation(scenario);
        forEachShortage(scenario);
    }
}

TEST(DomMemoryTest, PartsOfADocumentThatCannotBeMadeStayTheCallersWithoutLinks) {
    const auto scenario = [](Attempt& attempt) {
        std::unique_ptr<Element> root = nested(40);
        {
            auto dtd = std::make_unique<Dtd>("bed");
            std::unique_ptr<Document> document;
            if (attempt([&] { document = std::make_unique<Document>(root.get(), dtd.get()); })) {
                EXPECT_EQ(document->getRoot(), root.release());
                EXPECT_EQ(document->getDtd(), dtd.release());
                EXPECT_EQ(dump(document.get()), dump(nested(40).get()));
                return;
            }
            EXPECT_EQ(linksIn(*root), linksIn(*nested(40)));
            EXPECT_EQ(root->getParent(), nullptr);
            EXPECT_EQ(dtd->getParent(), nullptr);
        }
        EXPECT_EQ(textOf(*root), textOf(*nested(40)));
    };
    forEachFailingAllocation(scenario);
    forEachShortage(scenario);
}

TEST(DomMemoryTest, WhatCannotBeTakenOutStays) {
    const auto deepest = [](Document& document) { return document.getRoot()->getElement(0); };
    struct Case {
        const char* name;
        std::function<Object*(Document&)> take;
    };
    const Case kCases[] = {
        {"child by number", [](Document& document) -> Object* { return document.getRoot()->extractChild(0); }},
        {"child by address",
         [&deepest](Document& document) -> Object* { return document.getRoot()->extractChild(deepest(document)); }},
        {"root", [](Document& document) -> Object* { return document.extractRoot(); }},
        {"Dtd", [](Document& document) -> Object* { return document.extractDtd(); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            const auto document = garden();
            EXPECT_TRUE(document->validate());
            const std::string before = textOf(*document);
            const Element* const root = document->getRoot();
            const Dtd* const itsDtd = document->getDtd();
            const Object* const child = root->getChild(0);
            std::unique_ptr<Object> taken;
            if (!attempt([&] { taken.reset(c.take(*document)); })) {
                EXPECT_EQ(textOf(*document), before);
                EXPECT_EQ(document->getRoot(), root);
                EXPECT_EQ(document->getDtd(), itsDtd);
                EXPECT_EQ(root->getChild(0), child);
                EXPECT_EQ(root->getParent(), document.get());
                EXPECT_EQ(itsDtd->getParent(), document.get());
                EXPECT_EQ(child->getParent(), root);
                EXPECT_TRUE(document->validate());
                expectUsable(*document);
                taken.reset(c.take(*document));
            }
            EXPECT_EQ(taken->getParent(), nullptr);
            EXPECT_NE(textOf(*document), before);
            const auto links = linksIn(*taken);
            EXPECT_EQ(std::count(links.begin(), links.end(), nullptr), static_cast<std::ptrdiff_t>(links.size()));
        });
    }
}

TEST(DomMemoryTest, NoCopyTextOrSearchIsWrongForLackOfMemory) {
    using Ask = std::function<std::string(Document&)>;
    const auto dumped = [](Object* node) { return dump(std::unique_ptr<Object>(node).get()); };
    const std::string note = "note('sow &soil; ' em('early, but not too early') ' indoors')";
    const std::string inner = "bed[place=in front of the house](" + note + ")";
    const std::string tree = "garden(bed(" + inner + ") bed)";
    struct Case {
        const char* name;
        Ask ask;
        std::string expected;
    };
    const Case kCases[] = {
        {"clone of the document", [&](Document& d) { return dumped(d.clone()); }, tree},
        {"copy of the document", [](Document& d) { return dump(std::make_unique<Document>(d).get()); }, tree},
        {"clone of an element", [&](Document& d) { return dumped(d.getRoot()->clone()); }, tree},
        {"copy of an element", [](Document& d) { return dump(std::make_unique<Element>(*d.getRoot()).get()); }, tree},
        {"clone of a text", [&](Document& d) { return dumped(d.find("em")->getChild(0)->clone()); },
         "'early, but not too early'"},
        {"clone of an attribute", [&](Document& d) { return dumped(d.find("bed", 1)->getAttribute(0)->clone()); },
         "place=in front of the house"},
        {"text of the document", [](Document& d) { return d.toString(); }, "<Document> garden"},
        {"text of an element", [](Document& d) { return d.find("bed", 1)->toString(); },
         "bed place=\"in front of the house\""},
        {"text of an attribute", [](Document& d) { return d.find("bed", 1)->getAttribute(0)->toString(); },
         "place=\"in front of the house\""},
        {"text of a text", [](Document& d) { return d.find("note")->getChild(0)->toString(); },
         "sow heavy, and wet for most of the year "},
        {"text of a reference", [](Document&) { return Entity("soil-in-the-lower-garden").toString(); },
         "&soil-in-the-lower-garden;"},
        {"copied reference", [](Document&) { return Entity(Entity("soil-in-the-lower-garden")).toString(); },
         "&soil-in-the-lower-garden;"},
        {"decoded text, copied out",
         [](Document& d) {
             DataHolder text;
             d.find("note")->getChild(0)->toCharData()->getData(&text);
             return text;
         },
         "sow heavy, and wet for most of the year "},
        {"text of an element below", [](Document& d) { return d.getRoot()->findElementCharData("em"); },
         "early, but not too early"},
        {"text of a child", [](Document& d) { return d.find("note")->getElementCharData("em"); },
         "early, but not too early"},
        {"default value", [](Document& d) { return d.getRoot()->getElement(1)->getAttributeValue("place"); },
         "somewhere behind the house"},
        {"element by name", [](Document& d) { return dump(d.find("bed", 1)); }, inner},
        {"element by attribute",
         [](Document& d) { return dump(d.getRoot()->findElementByAttribute("place", "in front of the house")); },
         inner},
        {"child by attribute",
         [](Document& d) { return dump(d.find("bed")->getElementByAttribute("place", "in front of the house")); },
         inner},
        {"all elements of a name", [](Document& d) { return std::to_string(d.findAll("bed").size()); }, "3"},
        {"all elements of a name below",
         [](Document& d) {
             std::vector<const Element*> found;
             static_cast<const Element*>(d.getRoot())->findAllElements("bed", found);
             return std::to_string(found.size());
         },
         "3"},
        {"node taken for another", [](Document& d) { return dump(d.getRoot()->toCharData()) + kLong; }, "null" + kLong},
        {"links taken away and given again",
         [](Document& d) {
             d.getRoot()->setDtd(nullptr);
             d.getRoot()->setDtd(d.getDtd());
             return DataHolder(d.find("bed")->getAttributeValue("place"));
         },
         "somewhere behind the house"},
        {"verdict", [](Document& d) { return d.validate() ? kLong : ""; }, kLong},
    };
    const QuietMessages quiet;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&](Attempt& attempt) {
            const auto document = garden();
            EXPECT_TRUE(document->validate());
            std::string outcome;
            if (attempt([&] { outcome = c.ask(*document); })) {
                EXPECT_EQ(outcome, c.expected);
            }
            EXPECT_EQ(dump(document.get()), tree);
            expectUsable(*document);
        });
    }
}

TEST(DomMemoryTest, WhatCouldNotBeWrittenIsWrittenInTheSamePlaceTheNextTime) {
    for (const bool rewrites : {false, true}) {
        SCOPED_TRACE(rewrites);
        const RewriteSetting setting(rewrites);
        forEachFailingAllocation([](Attempt& attempt) {
            const auto document = garden();
            FixedSink out;
            attempt([&] { document->toStream(out); });
            out.setPosition(0);
            document->toStream(out);
            EXPECT_EQ(out.upToPosition(), textOf(*std::unique_ptr<Object>(document->clone())));
        });
    }
}

TEST(DomMemoryTest, AnElementThatCouldNotBeWrittenIsIndentedAsBeforeTheNextTime) {
    const auto document = garden();
    Element& root = *document->getRoot();
    const std::string expected = textOf(root);
    forEachFailingAllocation([&](Attempt& attempt) {
        FixedSink out;
        out << '\n';
        attempt([&] { root.write(out); });
        out.setPosition(0);
        out << '\n';
        root.write(out);
        EXPECT_EQ(out.upToPosition(), "\n" + expected);
    });
}

class OnePlace final : public PlaceTable {
public:
    explicit OnePlace(const Place& itsPlace) : place(itsPlace) {}
    Place of(std::int64_t) const override { return place; }

private:
    Place place;
};

// With comments, instructions and sections, in content and around the root, and with places.
TEST(DomMemoryTest, ATreeWithEveryKindOfLeafIsMadeChangedAndCopiedWholeOrNotAtAll) {
    forEachFailingAllocation([](Attempt& attempt) {
        std::unique_ptr<Document> document;
        std::unique_ptr<Object> copy;
        std::string text, written;
        const Place place{1, 1, 2};
        const bool made = attempt([&] {
            std::unique_ptr<Element> root;
            TreeBuilder tree(root);
            const std::int64_t at = place.offset;
            tree.begin("garden-of-a-long-name");
            NodeAccess::keepPlace(*root, place);
            for (int i = 0; i < 50; ++i) {
                tree.addComment(kLong, at);
                tree.addInstruction("a-target-of-a-long-name", kLong, at);
                tree.addSection("short", at);
                TagAttributes attributes;
                attributes.add(tree.name("place-of-a-long-name"), kLong, at);
                tree.addElement(tree.name("bed"), attributes, at);
            }
            tree.keepPlaces(std::make_unique<OnePlace>(place));
            tree.end();
            document = NodeAccess::makeDocument(std::move(root));
            Prolog& prolog = prologOf(*document);
            prolog.systemId = kLong;
            prolog.beforeRoot.push_back(std::make_unique<Comment>(kLong));
            prolog.afterRoot.push_back(std::make_unique<Instruction>(kLong, kLong));
            NodeAccess::keepPlace(*prolog.afterRoot[0], place);
            static_cast<Comment*>(document->getRoot()->getChild(0))->setText(kLong + kLong);
            static_cast<Instruction*>(document->getRoot()->getChild(1))->setContent(kLong + kLong);
            text = document->getRoot()->getChild(1)->toString();
            BareOutStream out;
            document->getRoot()->toStream(out);
            written = out.bytes;
            copy.reset(document->clone());
        });
        if (made) {
            EXPECT_EQ(textOf(*copy), textOf(*document));
            EXPECT_EQ(text, "a-target-of-a-long-name " + kLong + kLong);
            EXPECT_EQ(written, textOf(*document->getRoot()));
            EXPECT_EQ(placeOf(*document->getRoot()->getChild(1)).column, place.column);
        } else if (document != nullptr) {
            EXPECT_EQ(textOf(Document(*document)), textOf(*document));
        }
    });
}

// With the RW optimisation nodes that stand where they were written are passed over: a write that failed must not make
// nodes look as if they did.
TEST(DomMemoryTest, RewritingAfterAFailedWriteEqualsAFreshWrite) {
    using Edit = std::function<void(Element&)>;
    struct Case {
        const char* name;
        Edit edit;       // before the write that fails
        Edit editAgain;  // after it
    };
    const auto nothing = [](Element&) {};
    const Case kCases[] = {
        {"longer", [](Element& root) { root.setAttribute("a", kLong); }, nothing},
        {"shorter", [](Element& root) { root.removeAttribute("place"); }, nothing},
        {"longer, then as before", [](Element& root) { root.setAttribute("a", kLong); },
         [](Element& root) { root.removeAttribute("a"); }},
        {"shorter, then as before", [](Element& root) { root.removeAttribute("place"); },
         [](Element& root) { root.setAttribute("place", "upon the hill"); }},
        {"a child less, then as before", [](Element& root) { delete root.extractChild(0); },
         [](Element& root) { root.insertChild(root.getChild(0), new Element("row")); }},
    };
    const RewriteSetting setting(true);
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            Element root("garden");
            root.setAttribute("place", "upon the hill");
            root.addChild(new Element("row"));
            root.addChild(nested(3).release());
            root.addElement("bed", kLong);
            FixedSink out;
            root.toStream(out);
            c.edit(root);
            out.setPosition(0);
            attempt([&] { root.toStream(out); });
            c.editAgain(root);
            out.setPosition(0);
            root.toStream(out);
            EXPECT_EQ(out.upToPosition(), textOf(Element(root)));
        });
    }
}

}  // namespace Xml::test
