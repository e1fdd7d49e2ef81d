// The short ways while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "support/QueriesFromHeap.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dtd/Dtd.h"
#include "xml/easy.h"
#include "xml/text/Message.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

// A few levels, with links to a Dtd that has a default and an entity.
std::unique_ptr<Document> garden() {
    auto document = documentOf(
        "<!DOCTYPE garden [<!ELEMENT garden (bed)*><!ELEMENT bed (bed | note)*><!ELEMENT note (#PCDATA | em)*>"
        "<!ELEMENT em (#PCDATA)><!ATTLIST bed place CDATA 'somewhere behind the house'>"
        "<!ENTITY soil 'heavy, and wet for most of the year'>]>"
        "<garden><bed name='the first one of all the beds'><bed place='in front of the house'><note>sow &soil; "
        "<em>early, but not too early</em> indoors</note></bed></bed><bed/></garden>");
    document->getRoot()->setDtd(document->getDtd());
    return document;
}

const std::string kText = "sow heavy, and wet for most of the year early, but not too early indoors";

// What must not be different after a failure. Links are not among it: an edit takes them away in any case.
std::string stateOf(const Document& document) { return dump(&document); }

TEST(EasyMemoryTest, AChangeThatFailsLeavesTheTreeAsItWas) {
    const auto onBed = [](auto change) {
        return [change](Document& document) { change(*document.getRoot()->getElement(0)); };
    };
    const auto before = [](const Object& one, const Object& other) { return Xml::textOf(one) > Xml::textOf(other); };
    const struct {
        const char* name;
        std::function<void(Document&)> change;
    } kCases[] = {
        {"new attribute", onBed([](Element& bed) { setValue(bed, "an attribute of a long name", kLong); })},
        {"attribute set", onBed([](Element& bed) { setValue(bed, "name", kLong); })},
        {"attribute set to a number", onBed([](Element& bed) { setValue(bed, "name", 1.0 / 3); })},
        {"text set", onBed([](Element& bed) { setText(bed, kLong + "<"); })},
        {"element appended", onBed([](Element& bed) { append(bed, kLong, kLong + "<"); })},
        {"comment appended", onBed([](Element& bed) { append(bed, std::make_unique<Comment>(kLong)); })},
        {"inserted before", onBed([](Element& bed) { insertBefore(*bed.getChild(0), copyOf(*bed.getChild(0))); })},
        {"taken out", onBed([](Element& bed) { detach(bed); })},
        {"child replaced", onBed([](Element& bed) { replace(*bed.getChild(0), copyOf(bed)); })},
        {"root taken out", [](Document& document) { detach(*document.getRoot()); }},
        {"root replaced", [](Document& document) { replace(*document.getRoot(), copyOf(*document.getRoot())); }},
        {"root set", [](Document& document) { setRoot(document, copyOf(*document.getRoot()->getElement(0))); }},
        {"sorted",
         [before](Document& document) {
             append(*document.getRoot(), "bed", kLong);
             sortChildren(*document.getRoot(), before);
             detach(*document.getRoot()->getChild(0));
         }},
    };
    const QuietMessages quiet;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto scenario = [&c](Attempt& attempt) {
            const auto document = garden();
            const std::string was = stateOf(*document);
            if (attempt([&] { c.change(*document); })) return;
            if (std::string(c.name) != "sorted") {
                EXPECT_EQ(stateOf(*document), was);
            }
            expectUsable(*document);
        };
        forEachFailingAllocation(scenario);
        forEachShortage(scenario);
    }
}

TEST(EasyMemoryTest, LooksThatFailLeaveNothing) {
    const struct {
        const char* name;
        std::function<void(Document&)> look;
    } kCases[] = {
        {"children", [](Document& d) { EXPECT_EQ(children(*d.getRoot()).size(), 2u); }},
        {"elements", [](Document& d) { EXPECT_EQ(elements(*d.getRoot(), "bed").size(), 2u); }},
        {"descendants", [](Document& d) { EXPECT_EQ(descendants(*d.getRoot(), "bed").size(), 3u); }},
        {"attributes", [](Document& d) { EXPECT_EQ(attributes(*d.getRoot()->getElement(0)).size(), 1u); }},
        {"value",
         [](Document& d) {
             EXPECT_EQ(valueOr(*d.getRoot()->getElement(0), "place", kLong), "somewhere behind the house");
         }},
        {"text", [](Document& d) { EXPECT_EQ(Xml::textOf(d), kText); }},
        {"copy of a document", [](Document& d) { EXPECT_TRUE(sameTree(d, *copyOf(d))); }},
        {"copy of an element", [](Document& d) { EXPECT_TRUE(sameTree(*d.getRoot(), *copyOf(*d.getRoot()))); }},
        {"difference",
         [](Document& d) {
             EXPECT_NE(firstDifference(*d.getRoot()->getElement(0), *d.getRoot()->getElement(1)), "");
             EXPECT_NE(firstDifference(*d.getDtd(), *d.getRoot()), "");
         }},
        {"document types", [](Document& d) { EXPECT_TRUE(sameTree(*d.getDtd(), *copyOf(*d.getDtd()))); }},
        {"new document", [](Document&) { EXPECT_NE(makeDocument(kLong), nullptr); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto scenario = [&c](Attempt& attempt) {
            const auto document = garden();
            const std::string was = stateOf(*document);
            attempt([&] { c.look(*document); });
            EXPECT_EQ(stateOf(*document), was);
        };
        forEachFailingAllocation(scenario);
        forEachShortage(scenario);
    }
}

TEST(EasyMemoryTest, AQuestionThatFailsLeavesTheTree) {
    const struct {
        const char* path;
        std::size_t results;
    } kCases[] = {
        {"//bed[@name = 'the first one of all the beds' ] / bed/note", 1},
        {"/garden//note[em = \"early, but not too early\"]/text()", 2},
        {"//bed[bed[note]][ position() = 1 ]/@name", 1},
        {"'a literal with ''quotes'' of its own, and not a short one'", 1},
        {"//note[. = 'a literal that is not closed]", 0},
        {"//note[ 1 = 1 ]", 0},
        {"//a-name-of-something-that-is-not-there[*wrong]", 0},
    };
    for (const bool isInDocument : {true, false}) {
        for (const auto& c : kCases) {
            SCOPED_TRACE(c.path);
            const auto scenario = [&](Attempt& attempt) {
                const auto document = garden();
                const std::unique_ptr<Element> part = isInDocument ? nullptr : detach(*document->getRoot());
                const Object& from = isInDocument ? static_cast<const Object&>(*document) : *part;
                const std::string was = dump(&from);
                Selection<const Object> found;
                if (attempt([&] { found = ask(from, c.path); })) {
                    EXPECT_EQ(found.count(), c.results);
                    EXPECT_EQ(found.problem().has_value(), c.results == 0);
                }
                EXPECT_EQ(dump(&from), was);
                EXPECT_TRUE(part == nullptr || part->getParent() == nullptr);
            };
            forEachFailingAllocation(scenario);
            const QueriesFromHeap fromHeap;
            forEachFailingAllocation(scenario);
        }
    }
}

TEST(EasyMemoryTest, ANamespaceThatFailsLeavesNothing) {
    Element element("e");
    setValue(element, "xmlns", kLong);
    forEachFailingAllocation([&element](Attempt& attempt) {
        std::string uri;
        if (attempt([&] { uri = namespaceOf(element); })) {
            EXPECT_EQ(uri, kLong);
        }
    });
}

TEST(EasyMemoryTest, AHandlerThatCannotBeSetLeavesTheOneBefore) {
    std::string heard;
    const auto found = onDiagnostic([&heard](std::string_view text) { heard = text; });
    forEachFailingAllocation([&heard](Attempt& attempt) {
        std::function<void(std::string_view)> before;
        std::string other;
        const std::string longer = kLong;
        const bool isSet = attempt([&] { before = onDiagnostic([longer, &other](std::string_view) { other = "x"; }); });
        heard.clear();
        Message(std::string("text"));
        EXPECT_EQ(other, isSet ? "x" : "");
        EXPECT_EQ(heard, isSet ? "" : "text");
        if (isSet) onDiagnostic(before);
    });
    onDiagnostic(found);
}

}  // namespace
}  // namespace Xml::test
