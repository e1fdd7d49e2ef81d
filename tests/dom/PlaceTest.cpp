#include "xml/dom/Place.h"

#include "dom/Sinks.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/TreeBuilder.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace Xml::test {
namespace {

// As "7 2:3"; "-" where nothing is known.
std::string shown(const Object& node) {
    const Place place = placeOf(node);
    if (place.offset < 0 && place.line == 0 && place.column == 0) return "-";
    return std::to_string(place.offset) + " " + std::to_string(place.line) + ":" + std::to_string(place.column);
}

Place at(std::int64_t offset) { return {offset, static_cast<int>(offset) + 1, static_cast<int>(offset) + 2}; }
std::string text(std::int64_t offset) {
    return std::to_string(offset) + " " + std::to_string(offset + 1) + ":" + std::to_string(offset + 2);
}

// The places of the node, its attributes and all below it, in the order of the document.
std::string allOf(const Object& node) {
    std::string places = shown(node);
    if (!node.isElement()) return places;
    const Element& element = *node.toElement();
    for (int i = 0; i < element.getAttributeCount(); ++i) places += ", @" + shown(*element.getAttribute(i));
    for (int i = 0; i < element.getChildCount(); ++i) places += ", " + allOf(*element.getChild(i));
    return places;
}

class CountedPlaces final : public PlaceTable {
public:
    Place of(std::int64_t offset) const override { return at(offset); }
};

// A tree with every kind of node, short texts and long ones, each with a place.
std::unique_ptr<Element> placedTree(int repeated = 1) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    std::int64_t next = 1;
    const auto here = [&] { return next++; };
    tree.begin("r");
    NodeAccess::keepPlace(*root, at(0));
    for (int i = 0; i < repeated; ++i) {
        for (const std::size_t size : {1U, 100U, 2000U}) {
            const std::string content(size, 'x');
            tree.begin("a", here());
            TagAttributes attributes;
            attributes.add(tree.name("z"), content, here());
            attributes.add(tree.name("y"), content, here());
            attributes.addDefault(tree.name("x"), content, here());
            tree.setAttributes(attributes);
            tree.addText(content, false, here());
            tree.addComment(content, here());
            tree.addSection(content, here());
            tree.addInstruction("go", content, here());
            TagAttributes none;
            const std::int64_t ofLeaf = here();
            tree.addLeaf(tree.name("leaf"), none, content, false, ofLeaf, here());
            tree.addElement(tree.name("empty"), none, here());
            tree.end();
        }
    }
    tree.keepPlaces(std::make_unique<CountedPlaces>());
    tree.end();
    return root;
}

std::string expected(int repeated = 1) {
    std::string places = text(0);
    std::int64_t next = 1;
    for (int i = 0; i < 3 * repeated; ++i) {
        const std::int64_t first = next;
        next += 11;
        places += ", " + text(first) + ", @" + text(first + 3) + ", @" + text(first + 2) + ", @" + text(first + 1);
        for (std::int64_t offset = first + 4; offset < next; ++offset) places += ", " + text(offset);
    }
    return places;
}

TEST(PlaceTest, IsKnownOfEveryNodeThatWasMadeWithOne) {
    for (const int repeated : {1, 300}) {
        SCOPED_TRACE(repeated);
        const std::unique_ptr<Element> root = placedTree(repeated);
        EXPECT_EQ(allOf(*root), expected(repeated));
    }
}

TEST(PlaceTest, IsUnknownOfAllOtherNodes) {
    const Place none;
    EXPECT_EQ(none.offset, -1);
    EXPECT_EQ(none.line, 0);
    EXPECT_EQ(none.column, 0);
    const Outcome read = readDocument("<r a='1'>text</r>");
    EXPECT_EQ(shown(*read.document), "-");
    EXPECT_EQ(allOf(*read.document->getRoot()), "-, @-, -");
    EXPECT_EQ(shown(Comment("c")), "-");
}

TEST(PlaceTest, GoesWithTheNode) {
    std::unique_ptr<Element> root = placedTree();
    const std::unique_ptr<Object> taken(root->extractChild(1));
    const std::string before = allOf(*taken);
    root.reset();
    EXPECT_EQ(allOf(*taken), before);

    root = placedTree();
    const std::string whole = allOf(*root);
    Document document(root.release(), nullptr);
    EXPECT_EQ(allOf(*document.getRoot()), whole);
    Element around("around");
    around.addChild(document.extractRoot());
    EXPECT_EQ(allOf(*around.getChild(0)), whole);
    around.killChildren();
    EXPECT_EQ(allOf(around), "-");
}

TEST(PlaceTest, StaysWithChangesAndTexts) {
    const std::unique_ptr<Element> root = placedTree();
    const std::string before = allOf(*root);
    root->setName("other");
    root->toString();
    Element& a = *root->getElement(1);
    a.toString();
    a.getAttribute(0)->setValue("other");
    static_cast<CharData*>(a.getChild(0))->setData("other");
    textOf(*root);
    EXPECT_EQ(allOf(*root), before);
    a.setAttribute("x", "anew");
    EXPECT_EQ(shown(*a.getAttribute("x")), "-") << "another node";
}

// A record of that takes the room in which the node has its offset.
TEST(PlaceTest, StaysWhenTheNodeIsWritten) {
    for (const int repeated : {1, 300}) {
        SCOPED_TRACE(repeated);
        std::unique_ptr<Element> root = placedTree(repeated);
        const std::string before = allOf(*root);
        EXPECT_EQ(NodeTestAccess::writeStart(*root->getElement(0)), -1);
        EXPECT_EQ(NodeTestAccess::writeEnd(*root->getElement(0)), -1);
        BareOutStream out;
        root->toStream(out);
        EXPECT_EQ(allOf(*root), before);
        EXPECT_GT(NodeTestAccess::writeStart(*root->getElement(0)), 0);

        const std::unique_ptr<Object> taken(root->extractChild(1));
        const std::string ofTaken = allOf(*taken);
        root.reset();
        taken->toElement()->getAttribute(0)->toStream(out);
        taken->toStream(out);
        EXPECT_EQ(allOf(*taken), ofTaken);
    }
}

// It is not the place of another node that comes to lie there.
TEST(PlaceTest, GoesWithANodeThatWasWritten) {
    for (int i = 0; i < 3; ++i) {
        std::unique_ptr<Element> root = placedTree();
        EXPECT_EQ(allOf(*root), expected());
        BareOutStream out;
        root->toStream(out);
        EXPECT_EQ(allOf(*root), expected());
        root = readElement("<r><a z='1'>text<!-- --></a></r>");
        EXPECT_EQ(allOf(*root), "-, -, @-, -");
    }
}

TEST(PlaceTest, CopiesHaveNone) {
    const std::unique_ptr<Element> root = placedTree(20);
    const std::unique_ptr<Object> copy(root->clone());
    EXPECT_EQ(allOf(*copy).find_first_of("0123456789"), std::string::npos);
    EXPECT_EQ(shown(*std::unique_ptr<Object>(root->getElement(0)->getChild(0)->clone())), "-");
    EXPECT_EQ(shown(Element(*root)), "-");
}

TEST(PlaceTest, IsKeptOfNodesInTheHeap) {
    Document document(new Element("r"), nullptr);
    auto comment = std::make_unique<Comment>("c");
    NodeAccess::keepPlace(*comment, at(3));
    NodeAccess::keepPlace(document, at(0));
    prologOf(document).beforeRoot.push_back(std::move(comment));
    EXPECT_EQ(shown(*prologOf(document).beforeRoot[0]), text(3));
    EXPECT_EQ(shown(document), text(0));
    const Document copy(document);
    EXPECT_EQ(shown(copy), "-");
    EXPECT_EQ(shown(*prologOf(copy).beforeRoot[0]), "-");
    // One that comes to lie where another one was.
    for (int i = 0; i < 100; ++i) {
        const auto other = std::make_unique<Comment>("c");
        EXPECT_EQ(shown(*other), "-");
        NodeAccess::keepPlace(*other, at(i));
    }
}

TEST(PlaceTest, TreesOfSeveralThreadsDoNotMix) {
    const auto work = [] {
        for (int i = 0; i < 50; ++i) EXPECT_EQ(allOf(*placedTree()), expected());
    };
    std::thread other(work);
    work();
    other.join();
}

}  // namespace
}  // namespace Xml::test
