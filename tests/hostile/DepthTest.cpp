// Depth costs heap, never stack: everything here runs with 256 KiB of stack, on documents and trees that are nested far
// deeper than any recursion could go. Depth in which an operation is quadratic would not end before the time is up.
//
// To add a case: an input that is read is a row of DocumentsAreReadFromEverySource; an operation on a tree is a row of
// kDeepChecks.
#include "hostile/Inputs.h"
#include "support/NodeTestAccess.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

constexpr int kDepth = kMillion;
constexpr int kHalf = kDepth / 2;
constexpr int kMany = kMillion / 10;
constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {400 * kMiB};

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

// --- Reading ---

// What document() says, and whether what is written is what was read.
std::string asWritten(InStream& source) {
    DocumentReader reader;
    if (!reader.parse(source)) return reader.getErrorMessage();
    const bool same = textOf(*reader.getDocument()) == kHeader + deepText() + "\n";
    return factsOf(*reader.getDocument()->getRoot()) + (same ? ", written as it was" : ", written as something else");
}

// What document() says, which must have made none.
std::string noDocument(InStream& source) {
    DocumentReader reader;
    if (reader.parse(source) || reader.getDocument() != nullptr) return "a document";
    return reader.getErrorMessage();
}

TEST(HostileDepthTest, DocumentsAreReadFromEverySource) {
    const std::string half = deepText().substr(0, static_cast<std::size_t>(kDepth) * 2);  // as far as level kHalf
    expectOutcomes({
        {"levels", [] { return repeated("<a>", kDepth) + repeated("</a>", kDepth); }, document, facts(kDepth, kDepth),
         kLarge},
        {"levels with text", [] { return deepText(); }, asWritten,
         facts(kDepth, kDepth, 1, kDepth, kDepth + 1) + ", written as it was", Bounds{600 * kMiB}},
        {"levels between comments",
         [] { return repeated("<a><!--<a>-->", kMany) + repeated("<!--</a>--></a>", kMany); }, document,
         facts(kMany, kMany), kLarge},
        {"levels of start tags that never end", [] { return repeated("<a b='<' ", kDepth); }, document, "silent"},
        {"levels that never end", [&] { return half; }, noDocument, ended<ElementReader>(2 * kDepth), kLarge},
        {"levels and a wrong end", [&] { return half + "</b>"; }, noDocument,
         failed<ElementReader>(2 * kDepth + 3, "\"a\" expected"), kLarge},
        {"levels and unconsumed markup", [&] { return half + "<?x?>"; }, noDocument,
         failed<ElementReader>(2 * kDepth + 2, "unexpected markup \"<?\""), kLarge},
        {"levels and an unfinished tag", [&] { return half + "<b c="; }, noDocument,
         ended<ElementReader>(2 * kDepth + 5), kLarge},
    });
}

TEST(HostileDepthTest, AFailureInTheDepthsKeepsTheRootWithoutItsUnfinishedChildren) {
    expectToHold({{"half a document", [] {
                       StringInStream in(repeated("<a>x", kHalf));
                       ElementReader reader;
                       EXPECT_FALSE(reader.parse(in));
                       ASSERT_NE(reader.getRoot(), nullptr);
                       EXPECT_EQ(dump(reader.getRoot()), "a('x')");
                   }}});
}

TEST(HostileDepthTest, ElementsInElementsAreIndentedByTheirLevel) {
    expectToHold({{"from every source", [] {
                       // Indentation is quadratic in the depth by rule, so this is not as deep.
                       constexpr int kLevels = 1'000;
                       std::string indented;
                       for (int i = 0; i < kLevels; ++i) indented += repeated("\t", i) + "<a>\n";
                       indented += repeated("\t", kLevels) + "<z/>\n";
                       for (int i = kLevels; i-- > 0;) indented += repeated("\t", i) + "</a>" + (i > 0 ? "\n" : "");
                       for (const Source source : kAllSources) {
                           const Outcome outcome =
                               readDocument(repeated("<a>", kLevels) + "<z/>" + repeated("</a>", kLevels), source);
                           ASSERT_TRUE(outcome.ok) << outcome.error;
                           EXPECT_EQ(textOf(*outcome.document), kHeader + indented + "\n") << source;
                           const Outcome again = readDocument(textOf(*outcome.document), source);
                           ASSERT_TRUE(again.ok) << again.error;
                           EXPECT_TRUE(same(*again.document->getRoot(), *outcome.document->getRoot()));
                       }
                   }}});
}

TEST(HostileDepthTest, ADocumentWithItsDocumentTypeIsValidatedAsItIsRead) {
    expectToHold(
        {{"accepted and refused", [] {
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
          }}});
}

// --- Trees ---

// Each check is handed the tree of deepText() and leaves it, or another one that was read from that text.
void isWrittenAlikeToEverySink(std::unique_ptr<Element>& tree) {
    const std::string text = kHeader + deepText() + "\n";
    Document document(tree.release(), nullptr);
    {
        BareOutStream out;
        document.toStream(out);
        EXPECT_TRUE(out.text == text);
    }
    const std::string path = scratchPath("deep.xml");
    {
        std::ofstream file;
        FileOutStream out(path, &file);
        document.toStream(out);
    }
    EXPECT_TRUE(readFile(path) == text);
    {
        FileSpecOutStream out{OrvSys::FileSpec(path)};
        document.toStream(out);
    }
    EXPECT_TRUE(readFile(path) == text);
    std::remove(path.c_str());
    tree.reset(document.extractRoot());
}

void readsBackAsTheSameTree(std::unique_ptr<Element>& tree) {
    const std::unique_ptr<Element> again = readElement(textOf(*tree));
    EXPECT_TRUE(same(*tree, *again));
}

void isPassedOverUnchangedAndWrittenAgainWhenChanged(std::unique_ptr<Element>& tree) {
    const bool before = Object::setRWOptimization(true);
    BareOutStream out;
    tree->toStream(out);
    const std::size_t size = out.text.size();
    EXPECT_EQ(count(*tree).dirty, 0);

    out.setPosition(0);
    tree->toStream(out);
    EXPECT_EQ(out.text.size(), size);
    EXPECT_EQ(out.getPosition(), static_cast<int>(size));

    atLevel(tree.get(), kDepth - 1)->getChild(0)->toCharData()->setData("y");
    EXPECT_EQ(count(*tree).dirty, kDepth + 1) << "all elements and that text";
    out.setPosition(0);
    tree->toStream(out);
    EXPECT_GT(out.text.size(), size);
    EXPECT_EQ(out.getPosition(), static_cast<int>(size));
    Object::setRWOptimization(before);
    atLevel(tree.get(), kDepth - 1)->getChild(0)->toCharData()->setData("x");
}

void isSearchedToTheDeepestElement(std::unique_ptr<Element>& tree) {
    Document document(tree.release(), nullptr);
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
    root.findAndSetElementCharData("z", "x");
    tree.reset(document.extractRoot());
}

void isLinkedAndUnlinked(std::unique_ptr<Element>& tree) {
    Document document(tree.release(), new Dtd("a"));
    Element& root = *document.getRoot();
    const Attribute* attribute = atLevel(&root, kDepth - 1)->getAttribute("k");
    Tree counted = count(root, document.getDtd());
    EXPECT_EQ(counted.linkedElements, kDepth);
    EXPECT_EQ(counted.linkedTexts, kDepth);
    EXPECT_EQ(NodeTestAccess::dtd(*attribute), document.getDtd());

    const std::unique_ptr<Dtd> dtd(document.extractDtd());
    counted = count(root, nullptr);
    EXPECT_EQ(counted.linkedElements, kDepth);
    EXPECT_EQ(counted.linkedTexts, kDepth);
    EXPECT_EQ(NodeTestAccess::dtd(*attribute), nullptr);

    root.setDtd(dtd.get());
    tree.reset(document.extractRoot());
    EXPECT_EQ(count(*tree, nullptr).linkedElements, kDepth);
    EXPECT_EQ(NodeTestAccess::dtd(*attribute), nullptr);
}

void isValidatedAndLinkedAsItsModelsSay(std::unique_ptr<Element>& tree) {
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
    for (const auto& c : kCases) {
        const std::unique_ptr<Dtd> dtd = readDtd(c.dtd, "a");
        tree->setDtd(nullptr);
        EXPECT_EQ(dtd->validate(tree.get()), c.valid) << c.name;
        const Tree counted = count(*tree, dtd.get());
        EXPECT_EQ(counted.linkedElements, c.linkedElements) << c.name;
        EXPECT_EQ(counted.linkedTexts, c.linkedTexts) << c.name;
    }
    tree->setDtd(nullptr);
}

void isCopiedWithTheLinksThatCopiesHave(std::unique_ptr<Element>& tree) {
    Document document(tree.release(), new Dtd("a"));
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
    const Tree counted = count(*clone->toDocument()->getRoot(), clone->toDocument()->getDtd());
    EXPECT_EQ(counted.linkedElements, kDepth);
    EXPECT_EQ(counted.linkedTexts, kDepth);
    tree.reset(document.extractRoot());
}

void isMarkedAndUnlinkedByAChangeInTheDepths(std::unique_ptr<Element>& tree) {
    Document document(tree.release(), new Dtd("a"));
    Element& root = *document.getRoot();
    textOf(document);
    EXPECT_EQ(count(root).dirty, 0);

    Element* deepest = atLevel(&root, kDepth - 1);
    deepest->setAttribute("k", "w");
    const Tree counted = count(root, document.getDtd());
    EXPECT_EQ(counted.dirty, kDepth);
    EXPECT_EQ(counted.linkedElements, 0);
    EXPECT_EQ(counted.linkedTexts, kDepth);
    EXPECT_TRUE(NodeTestAccess::dirty(document));
    deepest->setAttribute("k", "v");
    tree.reset(document.extractRoot());
}

void getsTheLinkOfTheElementThatItIsAddedTo(std::unique_ptr<Element>& tree) {
    Dtd dtd("a");
    for (const bool inserted : {false, true}) {
        Element root("r");
        root.setDtd(&dtd);
        Object* added = tree.release();
        if (inserted) {
            root.insertChild(nullptr, added);
        } else {
            root.addChild(added);
        }
        const Tree linked = count(*added->toElement(), &dtd);
        EXPECT_EQ(linked.linkedElements, kDepth);
        EXPECT_EQ(linked.linkedTexts, kDepth);
        EXPECT_EQ(NodeTestAccess::dtd(root), nullptr) << "it was changed";
        tree.reset(root.extractChild(0)->toElement());
    }
}

void livesOnInPartsOfWhichEitherGoesFirst(std::unique_ptr<Element>& tree) {
    for (const bool partGoesFirst : {false, true}) {
        auto document = std::make_unique<Document>(tree.release(), new Dtd("a"));
        Element* middle = atLevel(document->getRoot(), kHalf);
        std::unique_ptr<Object> part(middle->extractChild(1));
        ASSERT_NE(part, nullptr);
        EXPECT_EQ(part->getParent(), nullptr);
        const Tree counted = count(*part->toElement(), nullptr);
        EXPECT_EQ(counted.elements, kDepth - kHalf - 1);
        EXPECT_EQ(counted.linkedElements, counted.elements);
        EXPECT_EQ(counted.linkedTexts, counted.texts);

        if (partGoesFirst) {
            part.reset();
            EXPECT_EQ(count(*document->getRoot()).elements, kHalf + 1);
        } else {
            document.reset();
            EXPECT_TRUE(textOf(*part) == deepText(kDepth - kHalf - 1));
        }
        tree = readElement(deepText());
    }
}

void isDestroyedInPieces(std::unique_ptr<Element>& tree) {
    atLevel(tree.get(), kDepth - 2)->killChildren();
    EXPECT_EQ(count(*tree).elements, kDepth - 1);
    atLevel(tree.get(), kHalf)->killChildren();
    EXPECT_EQ(count(*tree).elements, kHalf + 1);

    Element* upper = atLevel(tree.get(), kHalf / 2);
    Object* lower = upper->getChild(1);
    EXPECT_EQ(upper->extractChild(lower), lower);
    upper->insertChild(upper->getChild(0), lower);
    EXPECT_EQ(upper->getChild(0), lower);
    upper->setCharData("y");
    EXPECT_EQ(upper->getCharData(), "y");
    EXPECT_EQ(count(*tree).elements, kHalf + 1);
    delete upper->extractChild(0);
    EXPECT_EQ(count(*tree).elements, kHalf / 2 + 1);
    tree = readElement(deepText());
}

struct DeepCheck {
    const char* name;
    void (*check)(std::unique_ptr<Element>& tree);
};

const DeepCheck kDeepChecks[] = {
    // The first, as it wants a tree that was never written.
    {"is passed over unchanged, and written again when changed", isPassedOverUnchangedAndWrittenAgainWhenChanged},
    {"is written alike to every sink", isWrittenAlikeToEverySink},
    {"reads back as the same tree", readsBackAsTheSameTree},
    {"is searched to the deepest element", isSearchedToTheDeepestElement},
    {"is linked and unlinked", isLinkedAndUnlinked},
    {"is validated and linked as its models say", isValidatedAndLinkedAsItsModelsSay},
    {"is copied with the links that copies have", isCopiedWithTheLinksThatCopiesHave},
    {"is marked and unlinked by a change in the depths", isMarkedAndUnlinkedByAChangeInTheDepths},
    {"gets the link of the element that it is added to", getsTheLinkOfTheElementThatItIsAddedTo},
    {"lives on in parts, of which either goes first", livesOnInPartsOfWhichEitherGoesFirst},
    {"is destroyed in pieces", isDestroyedInPieces},
};

// One process for all, since to read the tree takes longer than most of them.
TEST(HostileDepthTest, ADeepTreeStandsEveryOperation) {
    const auto job = [] {
        std::unique_ptr<Element> tree = readElement(deepText());
        std::string failures;
        for (const DeepCheck& c : kDeepChecks) {
            nowAt(c.name);
            const std::string failed = failuresOf([&] { c.check(tree); });
            if (!failed.empty()) failures += std::string(c.name) + ": " + failed;
        }
        return failures;
    };
    EXPECT_EQ(runGuarded(job, Bounds{std::size_t{2} << 30}), "");
}

TEST(HostileDepthTest, AlternativesThatBeginAlikeDecideEveryElementOnce) {
    expectToHold({{"in a deep tree", [] {
                       // Each level is met by two alternatives, of which the second fits: decided anew, that is two to
                       // the depth.
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
                           const bool listed = model.find("ATTLIST") != std::string::npos;
                           const std::unique_ptr<Dtd> dtd =
                               readDtd(model + "<!ELEMENT b EMPTY><!ELEMENT c EMPTY>", "a");
                           root->setDtd(nullptr);
                           EXPECT_TRUE(dtd->validate(root.get())) << model;
                           EXPECT_EQ(count(*root, dtd.get()).linkedElements, listed ? 2 * kDepth - 1 : 0);

                           deepest->addElement("b", "");
                           EXPECT_FALSE(dtd->validate(root.get())) << "b is empty, and this one has a text";
                           deepest->killChildren();
                       }
                   }}});
}

// <a>x<a>x ... <z>x</z> ... </a></a>: `depth` times a and a z at the bottom.
std::string textAround(int depth) { return repeated("<a>x", depth) + "<z>x</z>" + repeated("</a>", depth); }

void expectAnswersOfDepth(Element& root, int depth) {
    const std::string text = textAround(depth);
    EXPECT_TRUE(textOf(root) == text);

    Element* bottom = root.findElement("z");
    ASSERT_NE(bottom, nullptr);
    EXPECT_EQ(root.findElement("a", depth - 2), bottom->getParent());
    EXPECT_EQ(root.findElement("a", depth - 1), nullptr);
    int n = 2 * depth;
    EXPECT_EQ(root.findElement("a", &n), nullptr);
    EXPECT_EQ(n, depth + 1);
    EXPECT_EQ(root.findElementByAttribute("none", "", depth - 1), bottom);
    std::vector<Element*> found;
    root.findAllElements("a", found);
    EXPECT_EQ(found.size(), static_cast<std::size_t>(depth - 1));
    EXPECT_EQ(root.findElementCharData("z"), "x");

    const Dtd dtd("d");
    root.setDtd(&dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*bottom), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*bottom->getChild(0)), &dtd);
    {
        Element copy(root);
        EXPECT_TRUE(textOf(copy) == text);
        const Element* bottomOfCopy = copy.findElement("z");
        ASSERT_NE(bottomOfCopy, nullptr);
        EXPECT_NE(bottomOfCopy, bottom);
        EXPECT_EQ(NodeTestAccess::dtd(*bottomOfCopy), nullptr);
        EXPECT_EQ(NodeTestAccess::dtd(*bottomOfCopy->getChild(0)), &dtd);

        Element holder("h");
        holder.addChild(copy.extractChild(1));
        EXPECT_EQ(NodeTestAccess::dtd(*bottomOfCopy->getChild(0)), nullptr);
        holder.killChildren();
        EXPECT_EQ(copy.getChildCount(), 1);
    }
    EXPECT_FALSE(NodeTestAccess::dirty(root));
    bottom->setCharData("y");
    EXPECT_TRUE(NodeTestAccess::dirty(root));
    EXPECT_EQ(NodeTestAccess::dtd(root), nullptr);
    EXPECT_EQ(root.findElementCharData("z"), "y");
    root.setDtd(nullptr);
}

TEST(HostileDepthTest, TreesOfAnyOriginAreFoundLinkedCopiedWrittenAndDestroyed) {
    expectToHold({
        {"built from the top down",
         [] {
             constexpr int kLevels = 6000;  // each step marks the whole way up
             Element root("a", "x");
             Element* innermost = &root;
             for (int i = 1; i <= kLevels; ++i) {
                 auto* child = new Element(i == kLevels ? "z" : "a", "x");
                 innermost->addChild(child);
                 innermost = child;
             }
             expectAnswersOfDepth(root, kLevels);
         }},
        {"read",
         [] {
             constexpr int kLevels = 100000;
             Outcome outcome = readDocument(textAround(kLevels));
             ASSERT_TRUE(outcome.ok) << outcome.error;
             expectAnswersOfDepth(*outcome.document->getRoot(), kLevels);
             const Document copy(*outcome.document);
             EXPECT_TRUE(textOf(copy) == "<?xml version = \"1.0\" ?>\n" + textOf(*outcome.document->getRoot()) + "\n");
         }},
        {"wide",
         [] {
             constexpr int kWidth = 50000;
             Element root("r");
             for (int i = 0; i < kWidth; ++i) root.addChild(new Element(i % 2 == 0 ? "a" : "b"));
             EXPECT_EQ(root.getElement(kWidth - 1), root.getChild(kWidth - 1));
             EXPECT_EQ(root.getElement("a", kWidth / 2 - 1), root.getChild(kWidth - 2));
             EXPECT_EQ(root.findElement("b", kWidth / 2), nullptr);
             const Element copy(root);
             EXPECT_EQ(copy.getChildCount(), kWidth);
             EXPECT_TRUE(textOf(copy) == "<r>\n" + repeated("\t<a/>\n\t<b/>\n", kWidth / 2) + "</r>");
             root.setDtd(nullptr);
             root.killChildren();
             EXPECT_EQ(root.getChildCount(), 0);
         }},
    });
}

}  // namespace
}  // namespace Xml::test
