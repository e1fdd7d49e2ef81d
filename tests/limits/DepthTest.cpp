// Depth costs heap, never stack: everything here runs in a process that has 256 KiB of stack, on documents and content
// models that are nested far deeper than any recursion could go. Depth in which an operation is quadratic would not end
// before the test's time is up.
#include "support/NodeTestAccess.h"
#include "support/Sources.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <fstream>
#include <gtest/gtest.h>
#include <malloc.h>
#include <memory>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;
constexpr int kDepth = 10'000;
constexpr int kGroups = 5'000;
#else
constexpr bool kSanitized = false;
constexpr int kDepth = 1'000'000;
constexpr int kGroups = 500'000;
#endif

constexpr int kHalf = kDepth / 2;

// One element a level, each with one character of text: a around a around a ..., at last a z with an attribute.
std::string deepText(int depth = kDepth) {
    return repeated("<a>x", depth - 1) + "<z k=\"v\">x</z>" + repeated("</a>", depth - 1);
}

const char kHeader[] = "<?xml version = \"1.0\" ?>\n";

// Calls `visit` for every element and text from `root` down, in document order.
template <class Visit>
void walk(Element& root, Visit visit) {
    std::vector<Object*> waiting = {&root};
    while (!waiting.empty()) {
        Object* node = waiting.back();
        waiting.pop_back();
        visit(*node);
        if (!node->isElement()) continue;
        Element* element = node->toElement();
        for (int i = element->getChildCount(); i-- > 0;) waiting.push_back(element->getChild(i));
    }
}

struct Tree {
    int elements = 0;
    int texts = 0;
    int linkedElements = 0;
    int linkedTexts = 0;
    int dirty = 0;
};

// How many nodes there are, how many of them link to `dtd`, how many are marked as changed.
Tree count(Element& root, const Dtd* dtd = nullptr) {
    Tree tree;
    walk(root, [&](const Object& node) {
        const bool linked = NodeTestAccess::dtd(node) == dtd;
        ++(node.isElement() ? tree.elements : tree.texts);
        if (linked) ++(node.isElement() ? tree.linkedElements : tree.linkedTexts);
        if (NodeTestAccess::dirty(node)) ++tree.dirty;
    });
    return tree;
}

// Whether two trees hold the same, and no node is in both.
bool same(const Element& one, const Element& other) {
    std::vector<std::pair<const Object*, const Object*>> waiting = {{&one, &other}};
    while (!waiting.empty()) {
        const auto [a, b] = waiting.back();
        waiting.pop_back();
        if (a == b || a->isElement() != b->isElement()) return false;
        if (!a->isElement()) {
            if (a->toCharData()->data() != b->toCharData()->data()) return false;
            continue;
        }
        const Element& x = *a->toElement();
        const Element& y = *b->toElement();
        if (x.toString() != y.toString() || x.getChildCount() != y.getChildCount()) return false;
        for (int i = 0; i < x.getChildCount(); ++i) waiting.emplace_back(x.getChild(i), y.getChild(i));
    }
    return true;
}

// The element at a level, the root's being 0. Every element above must be the second child of its parent.
Element* atLevel(Element* root, int level) {
    for (int i = 0; i < level; ++i) root = root->getChild(1)->toElement();
    return root;
}

// Bytes of the heap that are in use, give or take the allocator's own; a sanitizer has its own heap and finds what leaks
// itself.
constexpr std::size_t kSlack = 64 * 1024;
std::size_t bytesInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Only the listed operations, as a caller would write them.
class BareOutStream : public OutStream {
public:
    void putChar(char c) override {
        text += c;
        ++position;
    }
    int getPosition() const override { return position; }
    void setPosition(int p) override { position = p; }

    std::string text;

private:
    int position = 0;
};

TEST(DepthTest, RunsWithAStackOf256Kilobytes) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &limit), 0);
    ASSERT_EQ(limit.rlim_cur, rlim_t{256} * 1024) << "start it by ctest, or behind ulimit -s 256";
}

// --- Reading and writing ---

TEST(DepthTest, ADeepDocumentIsReadFromEverySourceAndWrittenAsItWas) {
    const std::string text = deepText();
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        const Tree tree = count(*outcome.document->getRoot());
        EXPECT_EQ(tree.elements, kDepth);
        EXPECT_EQ(tree.texts, kDepth);
        EXPECT_TRUE(textOf(*outcome.document) == kHeader + text + "\n");
    }
}

TEST(DepthTest, ADeepDocumentIsWrittenAlikeToEverySink) {
    const std::string text = kHeader + deepText() + "\n";
    const Outcome outcome = readDocument(text);
    ASSERT_TRUE(outcome.ok) << outcome.error;
    {
        BareOutStream out;
        outcome.document->toStream(out);
        EXPECT_TRUE(out.text == text);
    }
    const std::string path = scratchPath("deep.xml");
    {
        std::ofstream file;
        FileOutStream out(path, &file);
        outcome.document->toStream(out);
    }
    EXPECT_TRUE(readFile(path) == text);
    {
        FileSpecOutStream out{OrvSys::FileSpec(path)};
        outcome.document->toStream(out);
    }
    EXPECT_TRUE(readFile(path) == text);
    std::remove(path.c_str());
}

TEST(DepthTest, WhatWasWrittenReadsBackAsTheSameTree) {
    const std::unique_ptr<Element> root = readElement(deepText());
    const std::unique_ptr<Element> again = readElement(textOf(*root));
    EXPECT_TRUE(same(*root, *again));
}

TEST(DepthTest, AnUnchangedDeepTreeIsPassedOverAndOneChangedInTheDepthsIsWrittenAgain) {
    const std::unique_ptr<Element> root = readElement(deepText());
    const bool before = Object::setRWOptimization(true);
    BareOutStream out;
    root->toStream(out);
    const std::size_t size = out.text.size();
    EXPECT_EQ(count(*root).dirty, 0);

    out.setPosition(0);
    root->toStream(out);
    EXPECT_EQ(out.text.size(), size);
    EXPECT_EQ(out.getPosition(), static_cast<int>(size));

    atLevel(root.get(), kDepth - 1)->getChild(0)->toCharData()->setData("y");
    EXPECT_EQ(count(*root).dirty, kDepth + 1) << "all elements and that text";
    out.setPosition(0);
    root->toStream(out);
    EXPECT_GT(out.text.size(), size);
    EXPECT_EQ(out.getPosition(), static_cast<int>(size));
    Object::setRWOptimization(before);
}

TEST(DepthTest, ElementsInElementsAreIndentedByTheirLevel) {
    // Indentation is quadratic in the depth by rule, so this is not as deep.
    constexpr int kLevels = 1'000;
    std::string indented;
    for (int i = 0; i < kLevels; ++i) indented += repeated("\t", i) + "<a>\n";
    indented += repeated("\t", kLevels) + "<z/>\n";
    for (int i = kLevels; i-- > 0;) indented += repeated("\t", i) + "</a>" + (i > 0 ? "\n" : "");
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        const Outcome outcome = readDocument(repeated("<a>", kLevels) + "<z/>" + repeated("</a>", kLevels), source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        EXPECT_EQ(textOf(*outcome.document), kHeader + indented + "\n");
        const Outcome again = readDocument(textOf(*outcome.document), source);
        ASSERT_TRUE(again.ok) << again.error;
        EXPECT_TRUE(same(*again.document->getRoot(), *outcome.document->getRoot()));
    }
}

TEST(DepthTest, ADocumentThatFailsInTheDepthsLeavesNothingBehind) {
    const std::string half = deepText().substr(0, static_cast<std::size_t>(kDepth) * 2);  // as far as level kHalf
    const struct {
        const char* name;
        std::string text;
        const char* error;
    } kCases[] = {
        {"ends half way", half, "Unexpected end of stream"},
        {"wrong end tag", half + "</b>", "\"a\" expected"},
        {"unconsumed markup", half + "<?x?>", "unexpected markup \"<?\""},
        {"an unfinished tag", half + "<b c=", "Unexpected end of stream"},
    };
    readDocument("<a><b>");  // what is made once and for all
    for (const auto& c : kCases) {
        for (const Source source : {Source::FileStream, Source::Bare}) {
            SCOPED_TRACE(c.name);
            SCOPED_TRACE(source);
            const std::size_t before = bytesInUse();
            {
                const Outcome outcome = readDocument(c.text, source);
                EXPECT_FALSE(outcome.ok);
                EXPECT_EQ(outcome.document, nullptr);
                EXPECT_NE(outcome.error.find(c.error), std::string::npos) << outcome.error;
                EXPECT_NE(outcome.error.find("13ElementReader"), std::string::npos) << outcome.error;
            }
            if (!kSanitized) {
                EXPECT_LE(bytesInUse(), before + kSlack);
            }
        }
    }
}

TEST(DepthTest, AFailureInTheDepthsKeepsTheRootWithoutItsUnfinishedChildren) {
    StringInStream in(repeated("<a>x", kHalf));
    ElementReader reader;
    EXPECT_FALSE(reader.parse(in));
    ASSERT_NE(reader.getRoot(), nullptr);
    EXPECT_EQ(dump(reader.getRoot()), "a('x')");
}

// --- Searching ---

TEST(DepthTest, TheDeepestElementIsFoundByEverySearch) {
    Outcome outcome = readDocument(deepText());
    ASSERT_TRUE(outcome.ok) << outcome.error;
    Document& document = *outcome.document;
    Element& root = *document.getRoot();
    const Element& constRoot = root;
    Element* const deepest = atLevel(&root, kDepth - 1);
    ASSERT_EQ(deepest->getName(), "z");

    EXPECT_EQ(root.findElement("z"), deepest);
    EXPECT_EQ(constRoot.findElement("z"), deepest);
    EXPECT_EQ(root.findElement("z", 1), nullptr);
    EXPECT_EQ(root.findElement("a", kDepth - 3), deepest->getParent());
    int n = kDepth + 5;
    EXPECT_EQ(root.findElement("a", &n), nullptr);
    EXPECT_EQ(n, 7) << "below the root there are kDepth - 2 of them";

    EXPECT_EQ(root.findElementByAttribute("k", "v"), deepest);
    EXPECT_EQ(constRoot.findElementByAttribute("k", "v"), deepest);
    EXPECT_EQ(root.findElementByAttribute("k", "", kDepth - 3), deepest->getParent());
    n = 3;
    EXPECT_EQ(root.findElementByAttribute("k", "v", &n), nullptr);
    EXPECT_EQ(n, 2);

    std::vector<Element*> found;
    root.findAllElements("a", found);
    ASSERT_EQ(found.size(), static_cast<std::size_t>(kDepth - 2));
    EXPECT_EQ(found.back(), deepest->getParent());
    std::vector<const Element*> constFound;
    constRoot.findAllElements("z", constFound);
    EXPECT_EQ(constFound, std::vector<const Element*>{deepest});

    EXPECT_EQ(document.find("z"), deepest);
    EXPECT_EQ(document.find("a", kDepth - 2), deepest->getParent());
    EXPECT_EQ(document.find("a", kDepth - 1), nullptr);
    EXPECT_EQ(document.findAll("a").size(), static_cast<std::size_t>(kDepth - 1));
    EXPECT_EQ(document.findAll("z"), std::vector<Element*>{deepest});

    EXPECT_EQ(root.findElementCharData("z"), "x");
    root.findAndSetElementCharData("z", "y & y");
    EXPECT_EQ(root.findElementCharData("z"), "y & y");
    EXPECT_EQ(root.getElement("a"), root.getChild(1));
    EXPECT_EQ(root.getElementCharData("a"), "x");
}

// --- The link to the Dtd, and validation ---

TEST(DepthTest, TheLinkToTheDtdReachesTheDeepestNodesAndLeavesThemWithTheDtd) {
    Document document(readElement(deepText()).release(), new Dtd("a"));
    Element& root = *document.getRoot();
    const Attribute* attribute = atLevel(&root, kDepth - 1)->getAttribute("k");
    Tree tree = count(root, document.getDtd());
    EXPECT_EQ(tree.linkedElements, kDepth);
    EXPECT_EQ(tree.linkedTexts, kDepth);
    EXPECT_EQ(NodeTestAccess::dtd(*attribute), document.getDtd());

    const std::unique_ptr<Dtd> dtd(document.extractDtd());
    tree = count(root, nullptr);
    EXPECT_EQ(tree.linkedElements, kDepth);
    EXPECT_EQ(tree.linkedTexts, kDepth);
    EXPECT_EQ(NodeTestAccess::dtd(*attribute), nullptr);

    root.setDtd(dtd.get());
    const std::unique_ptr<Element> extracted(document.extractRoot());
    EXPECT_EQ(count(*extracted, nullptr).linkedElements, kDepth);
    EXPECT_EQ(NodeTestAccess::dtd(*attribute), nullptr);
}

TEST(DepthTest, ADeepTreeIsValidatedAndLinkedAsItsModelsSay) {
    const std::string mixed = "<!ELEMENT a (#PCDATA | a | z)*>";
    const std::string choice = "<!ELEMENT a (a | b | z | #PCDATA)*>";
    const std::string listed = "<!ATTLIST a id CDATA #IMPLIED>";
    const std::string leaf = "<!ELEMENT z (#PCDATA)><!ATTLIST z k CDATA #REQUIRED>";
    const std::string lacking = "<!ELEMENT z (#PCDATA)><!ATTLIST z k CDATA #IMPLIED m CDATA #REQUIRED>";
    const std::string unlisted = "<!ELEMENT z (#PCDATA)>";
    const std::string empty = "<!ELEMENT z EMPTY><!ATTLIST z k CDATA #REQUIRED>";
    const struct {
        const char* name;
        std::string dtd;
        bool valid;
        int linkedElements;
        int linkedTexts;
    } kCases[] = {
        // A mixed model links what it accepts; nothing accepts the root.
        {"mixed", mixed + leaf, true, kDepth - 1, kDepth},
        {"mixed, with attribute list", mixed + listed + leaf, true, kDepth, kDepth},
        {"mixed, an attribute lacks", mixed + lacking, false, 0, kDepth},
        {"mixed with attribute list, an attribute lacks", mixed + listed + lacking, false, 0, kDepth},
        {"mixed, an attribute too many", mixed + unlisted, false, 0, kDepth},
        {"mixed, text in the empty element", mixed + empty, false, 0, kDepth - 1},
        {"mixed, the deepest not declared", mixed + listed, false, 0, kDepth - 1},
        // A choice links nothing itself; an element with an attribute list is linked with all that is in it.
        {"choice", choice + leaf, true, 1, 1},
        {"choice, with attribute list", choice + listed + leaf, true, kDepth, kDepth},
        {"choice, an attribute lacks", choice + lacking, false, 0, 1},
        {"choice with attribute list, an attribute lacks", choice + listed + lacking, false, 0, 1},
        {"choice, text in the empty element", choice + empty, false, 0, 0},
        {"choice, the deepest not declared", choice + listed, false, 0, 0},
    };
    const std::unique_ptr<Element> root = readElement(deepText());
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::unique_ptr<Dtd> dtd = readDtd(c.dtd, "a");
        root->setDtd(nullptr);
        EXPECT_EQ(dtd->validate(root.get()), c.valid);
        const Tree tree = count(*root, dtd.get());
        EXPECT_EQ(tree.linkedElements, c.linkedElements);
        EXPECT_EQ(tree.linkedTexts, c.linkedTexts);
    }
}

TEST(DepthTest, AlternativesThatBeginAlikeDecideEveryElementOnce) {
    // Each level is met by two alternatives, of which the second fits: decided anew, that is two to the depth.
    const std::string models[] = {
        "<!ELEMENT a ((a, c) | (a, b))?><!ATTLIST a id CDATA #IMPLIED>",
        "<!ELEMENT a ((a, c)?, (a, c)*, a?, b)?>",
        "<!ELEMENT a (((a, c) | (a, c, b)) | ((a, b, c) | (a, b)))?><!ATTLIST a id CDATA #IMPLIED>",
    };
    const std::unique_ptr<Element> root =
        readElement(repeated("<a>", kDepth) + repeated("</a><b/>", kDepth - 1) + "</a>");
    Element* deepest = root.get();
    while (deepest->getChildCount() > 0) deepest = deepest->getChild(0)->toElement();
    for (const std::string& model : models) {
        SCOPED_TRACE(model);
        const bool listed = model.find("ATTLIST") != std::string::npos;
        const std::unique_ptr<Dtd> dtd = readDtd(model + "<!ELEMENT b EMPTY><!ELEMENT c EMPTY>", "a");
        root->setDtd(nullptr);
        EXPECT_TRUE(dtd->validate(root.get()));
        EXPECT_EQ(count(*root, dtd.get()).linkedElements, listed ? 2 * kDepth - 1 : 0);

        deepest->addElement("b", "");
        EXPECT_FALSE(dtd->validate(root.get())) << "b is empty, and this one has a text";
        deepest->killChildren();
    }
}

TEST(DepthTest, ADocumentWithItsDocumentTypeIsValidatedAsItIsRead) {
    const std::string types = "<!DOCTYPE a [<!ELEMENT a (#PCDATA | a | z)*><!ATTLIST a id CDATA #IMPLIED>";
    const std::string valid = types + "<!ELEMENT z (#PCDATA)><!ATTLIST z k CDATA #REQUIRED>]>" + deepText();
    const std::string invalid = types + "<!ELEMENT z EMPTY><!ATTLIST z k CDATA #REQUIRED>]>" + deepText();
    {
        const Outcome accepted = readDocument(valid);
        EXPECT_TRUE(accepted.ok) << accepted.error;
        ASSERT_NE(accepted.document, nullptr);
        EXPECT_EQ(count(*accepted.document->getRoot(), accepted.document->getDtd()).linkedElements, kDepth);
    }
    const Outcome refused = readDocument(invalid);
    EXPECT_FALSE(refused.ok);
    EXPECT_NE(refused.error.find("Doc could not be validated"), std::string::npos) << refused.error;
    ASSERT_NE(refused.document, nullptr);
    EXPECT_EQ(count(*refused.document->getRoot()).elements, kDepth);
}

// --- Copying ---

TEST(DepthTest, ACopyHoldsTheSameAndLinksAsCopiesDo) {
    Document document(readElement(deepText()).release(), new Dtd("a"));
    Element& root = *document.getRoot();
    {
        Element copy(root);
        EXPECT_TRUE(same(root, copy));
        EXPECT_EQ(count(copy, nullptr).linkedElements, kDepth) << "the copies of elements link to nothing";
        EXPECT_EQ(count(copy, document.getDtd()).linkedTexts, kDepth) << "those of texts keep their link";
    }
    {
        const std::unique_ptr<Object> copy(root.clone());
        EXPECT_TRUE(same(root, *copy->toElement()));
        EXPECT_EQ(copy->getParent(), nullptr);
        const Object* middle = atLevel(copy->toElement(), kHalf);
        EXPECT_EQ(middle->getParent(), atLevel(copy->toElement(), kHalf - 1));
    }
    const Document copy(document);
    EXPECT_TRUE(same(root, *copy.getRoot()));
    const std::unique_ptr<Object> clone(copy.clone());
    const Tree tree = count(*clone->toDocument()->getRoot(), clone->toDocument()->getDtd());
    EXPECT_EQ(tree.linkedElements, kDepth);
    EXPECT_EQ(tree.linkedTexts, kDepth);
}

// --- Changing and destroying ---

TEST(DepthTest, AChangeInTheDepthsMarksAndUnlinksAllAbove) {
    Document document(readElement(deepText()).release(), new Dtd("a"));
    Element& root = *document.getRoot();
    textOf(document);
    EXPECT_EQ(count(root).dirty, 0);

    Element* deepest = atLevel(&root, kDepth - 1);
    deepest->setAttribute("k", "w");
    const Tree tree = count(root, document.getDtd());
    EXPECT_EQ(tree.dirty, kDepth);
    EXPECT_EQ(tree.linkedElements, 0);
    EXPECT_EQ(tree.linkedTexts, kDepth);
    EXPECT_TRUE(NodeTestAccess::dirty(document));
}

TEST(DepthTest, APartTakenOutInTheMiddleOutlivesTheRestAndTheRestOutlivesIt) {
    for (const bool partGoesFirst : {false, true}) {
        SCOPED_TRACE(partGoesFirst ? "the part goes first" : "the rest goes first");
        auto document = std::make_unique<Document>(readElement(deepText()).release(), new Dtd("a"));
        Element* middle = atLevel(document->getRoot(), kHalf);
        std::unique_ptr<Object> part(middle->extractChild(1));
        ASSERT_NE(part, nullptr);
        EXPECT_EQ(part->getParent(), nullptr);
        const Tree tree = count(*part->toElement(), nullptr);
        EXPECT_EQ(tree.elements, kDepth - kHalf - 1);
        EXPECT_EQ(tree.linkedElements, tree.elements);
        EXPECT_EQ(tree.linkedTexts, tree.texts);

        if (partGoesFirst) {
            part.reset();
            EXPECT_EQ(count(*document->getRoot()).elements, kHalf + 1);
        } else {
            document.reset();
            EXPECT_TRUE(textOf(*part) == deepText(kDepth - kHalf - 1));
        }
    }
}

TEST(DepthTest, ADeepTreeIsDestroyedInPieces) {
    const std::size_t before = bytesInUse();
    {
        std::unique_ptr<Element> root = readElement(deepText());
        atLevel(root.get(), kDepth - 2)->killChildren();
        EXPECT_EQ(count(*root).elements, kDepth - 1);
        atLevel(root.get(), kHalf)->killChildren();
        EXPECT_EQ(count(*root).elements, kHalf + 1);

        Element* upper = atLevel(root.get(), kHalf / 2);
        Object* lower = upper->getChild(1);
        EXPECT_EQ(upper->extractChild(lower), lower);
        upper->insertChild(upper->getChild(0), lower);
        EXPECT_EQ(upper->getChild(0), lower);
        upper->setCharData("y");
        EXPECT_EQ(upper->getCharData(), "y");
        EXPECT_EQ(count(*root).elements, kHalf + 1);
        delete upper->extractChild(0);
        EXPECT_EQ(count(*root).elements, kHalf / 2 + 1);
    }
    if (!kSanitized) {
        EXPECT_LE(bytesInUse(), before + kSlack);
    }
}

TEST(DepthTest, ADeepTreeGetsTheLinkOfTheElementThatItIsAddedTo) {
    Dtd dtd("a");
    for (const bool inserted : {false, true}) {
        Element root("r");
        root.setDtd(&dtd);
        Object* tree = readElement(deepText()).release();
        if (inserted) {
            root.insertChild(nullptr, tree);
        } else {
            root.addChild(tree);
        }
        const Tree linked = count(*tree->toElement(), &dtd);
        EXPECT_EQ(linked.linkedElements, kDepth);
        EXPECT_EQ(linked.linkedTexts, kDepth);
        EXPECT_EQ(NodeTestAccess::dtd(root), nullptr) << "it was changed";
    }
}

// --- Groups in content models ---

// Both models take b, then c as often as there are groups, or b or c alone.
std::string nestedSequence(int groups) { return repeated("(", groups) + "b" + repeated(", c)", groups); }
std::string nestedChoice(int groups) { return repeated("(", groups) + "b" + repeated(" | c)", groups); }
std::string choiceNestedAtItsEnd(int groups) { return repeated("(c | ", groups) + "b" + repeated(")", groups); }

const char kLeaves[] = "<!ELEMENT b EMPTY><!ELEMENT c EMPTY><!ELEMENT d EMPTY>";

std::unique_ptr<Element> elementWith(const std::string& first, int others) {
    return readElement("<a>" + first + repeated("<c/>", others) + "</a>");
}

TEST(DepthTest, NestedGroupsMatchAsTheirParticlesDo) {
    const auto brackets = [](const char* inner, const char* end) {
        return repeated("(", kGroups) + inner + repeated(end, kGroups);
    };
    struct Children {
        const char* first;
        int others;  // so many c behind it
        bool valid;
    };
    const struct {
        const char* name;
        std::string model;
        std::vector<Children> children;
    } kCases[] = {
        {"sequence",
         nestedSequence(kGroups),
         {{"<b/>", kGroups, true}, {"<b/>", kGroups - 1, false}, {"<b/>", kGroups + 1, false}, {"", kGroups, false}}},
        {"choice",
         nestedChoice(kGroups),
         {{"<b/>", 0, true}, {"<c/>", 0, true}, {"<d/>", 0, false}, {"<b/>", 1, false}}},
        {"choice nested at its end", choiceNestedAtItsEnd(kGroups), {{"<b/>", 0, true}, {"<d/>", 0, false}}},
        {"once", brackets("b", ")"), {{"<b/>", 0, true}, {"", 0, false}, {"<b/>", 1, false}}},
        {"optional", brackets("b", ")?"), {{"<b/>", 0, true}, {"", 0, true}, {"<d/>", 0, false}}},
        {"any number", brackets("c", ")*"), {{"", 1000, true}, {"", 0, true}, {"<d/>", 0, false}}},
        {"one or more", brackets("c", ")+"), {{"", 1000, true}, {"", 0, false}, {"<d/>", 0, false}}},
    };
    for (const auto& c : kCases) {
        const std::unique_ptr<Dtd> dtd = readDtd("<!ELEMENT a " + c.model + ">" + kLeaves, "a");
        for (const Children& children : c.children) {
            SCOPED_TRACE(c.name + std::string(": ") + children.first + " and " + std::to_string(children.others));
            EXPECT_EQ(dtd->validate(elementWith(children.first, children.others).get()), children.valid);
        }
    }
}

TEST(DepthTest, NestedGroupsAreWrittenReadAndCopied) {
    for (const std::string& model : {nestedSequence(kGroups), nestedChoice(kGroups), choiceNestedAtItsEnd(kGroups)}) {
        SCOPED_TRACE(model.substr(model.size() - 10));
        const std::string declarations = "<!ELEMENT a " + model + ">\n<!ELEMENT b EMPTY>\n<!ELEMENT c EMPTY>\n";
        const std::string written = "<!DOCTYPE a [\n" + declarations + "]>\n";
        std::unique_ptr<Dtd> dtd = readDtd(declarations, "a");
        EXPECT_TRUE(textOf(*dtd) == written);

        Dtd merged("a");
        merged.merge(*dtd, true);
        const std::unique_ptr<Object> clone(dtd->clone());
        dtd.reset();
        EXPECT_TRUE(textOf(merged) == written);
        EXPECT_TRUE(textOf(*clone) == written);

        const bool sequence = model == nestedSequence(kGroups);
        const std::unique_ptr<Element> element = elementWith("<b/>", sequence ? kGroups : 0);
        EXPECT_TRUE(merged.validate(element.get()));
        EXPECT_TRUE(clone->toDtd()->validate(element.get()));
    }
}

TEST(DepthTest, NestedGroupsAreReadFromEverySource) {
    const std::string text = "<!DOCTYPE a [<!ELEMENT a " + nestedChoice(kGroups) + ">" + kLeaves + "]><a><b/></a>";
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        EXPECT_EQ(treeOf(text, source), "a(b)");
    }
}

TEST(DepthTest, NestedGroupsThatFailInTheDepthsLeaveNothingBehind) {
    const struct {
        const char* name;
        std::string text;
        const char* error;
    } kCases[] = {
        {"ends half way", "<!ELEMENT a " + repeated("(", kGroups) + "b", "Unexpected end of stream"},
        {"an empty group", "<!ELEMENT a " + repeated("(", kGroups) + ")", "unexpected \")\""},
        {"both separators", "<!ELEMENT a " + repeated("(b, ", kGroups) + "c | d)", "unexpected \"|\""},
        {"ends on the way out", "<!ELEMENT a " + nestedChoice(kGroups).substr(0, 4 * static_cast<std::size_t>(kGroups)),
         "Unexpected end of stream"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::size_t before = bytesInUse();
        {
            StringInStream in(c.text);
            DTDReader reader("a");
            EXPECT_FALSE(reader.parse(in));
            EXPECT_NE(reader.getErrorMessage().find(c.error), std::string::npos) << reader.getErrorMessage();
        }
        if (!kSanitized) {
            EXPECT_LE(bytesInUse(), before + kSlack);
        }
    }
}

TEST(DepthTest, GroupsNestedByHandAreCopiedWrittenAndMatched) {
    Dtd dtd("a");
    CpSpec* particle = new NameSpec(&dtd, "b");
    for (int i = 0; i < kGroups; ++i) {
        if (i % 2 == 0) {
            auto* sequence = new SeqSpec(&dtd);
            sequence->add(particle, REP_ONCE);
            sequence->add("c", REP_ZERO_OR_MORE);
            particle = sequence;
        } else {
            auto* choice = new ChoiceSpec(&dtd);
            choice->addChoice(particle, REP_ONE_OR_MORE);
            choice->addChoice("d", REP_ONCE);
            particle = choice;
        }
    }
    dtd.addElementDecl("a", particle, REP_ONCE);
    dtd.addElementDecl("b", new EmptySpec(&dtd));
    dtd.addElementDecl("c", new EmptySpec(&dtd));
    dtd.addElementDecl("d", new EmptySpec(&dtd));

    const Dtd copy(dtd);
    EXPECT_TRUE(textOf(copy) == textOf(dtd));
    for (const Dtd* each : std::initializer_list<const Dtd*>{&dtd, &copy}) {
        EXPECT_TRUE(each->validate(elementWith("<b/>", 3).get()));
        EXPECT_TRUE(each->validate(elementWith("<d/>", 3).get()));
        EXPECT_FALSE(each->validate(elementWith("", 3).get()));
    }
}

}  // namespace
}  // namespace Xml::test
