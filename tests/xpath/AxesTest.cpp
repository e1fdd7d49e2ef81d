// Where the steps of a path lead: axes and their orders, node tests, what is kept by predicates, which step is named
// when nothing is found.
#include "support/Messages.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/Dtd.h"
#include "xml/xpath/XPath.h"
#include "xpath/Queries.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {

namespace {

using OrvSys::Uni16String;

// In document order: r a1 b1 't1' c1 b2 b3 a2 a3 b4 't2'.
const char* const kText =
    "<r i='r'>"
    "<a i='a1'><b i='b1'>t1</b><c i='c1'><b i='b2'/></c></a>"
    "<b i='b3'/>"
    "<a i='a2'><a i='a3'><b i='b4'/></a>t2</a>"
    "</r>";

TEST(AxesTest, LeadFromOneNodeInTheOrderOfTheDocument) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"child of the document", u"child::*", "r", u"/"},
        {"child of an element", u"child::*", "a1 b3 a2", u"/r"},
        {"children that are text", u"child::*", "a3 't2'", u"//*[@i='a2']"},
        {"child of one without", u"child::*", "| 2: child::*", u"//*[@i='b4']"},

        {"descendant of the document", u"descendant::*", "r a1 b1 't1' c1 b2 b3 a2 a3 b4 't2'", u"/"},
        {"descendant of an element", u"descendant::*", "b1 't1' c1 b2", u"//*[@i='a1']"},
        {"descendant of one without", u"descendant::*", "| 2: descendant::*", u"//*[@i='b4']"},
        {"descendant-or-self of the document", u"descendant-or-self::*", "/ r a1 b1 't1' c1 b2 b3 a2 a3 b4 't2'", u"/"},
        {"descendant-or-self of an element", u"descendant-or-self::*", "a2 a3 b4 't2'", u"//*[@i='a2']"},
        {"descendant-or-self of text", u"descendant-or-self::*", "'t2'", u"//text()[. = 't2']"},

        {"self of the document", u"self::*", "/", u"/"},
        {"self of an element", u"self::*", "b2", u"//*[@i='b2']"},

        {"parent of an element", u"parent::*", "c1", u"//*[@i='b2']"},
        {"parent of the root", u"parent::*", "/", u"/r"},
        {"parent of the document", u"parent::*", "| 2: parent::*", u"/"},
        {"parent of text", u"parent::*", "a2", u"//text()[. = 't2']"},
        {"ancestor, the outermost first", u"ancestor::*", "/ r a1 c1", u"//*[@i='b2']"},
        {"ancestor of the root", u"ancestor::*", "/", u"/r"},
        {"ancestor of the document", u"ancestor::*", "| 2: ancestor::*", u"/"},
        {"ancestor of text", u"ancestor::*", "/ r a2", u"//text()[. = 't2']"},
        {"ancestor-or-self, itself last", u"ancestor-or-self::*", "/ r a1 c1 b2", u"//*[@i='b2']"},
        {"ancestor-or-self of the document", u"ancestor-or-self::*", "/", u"/"},

        {"following-sibling", u"following-sibling::*", "b3 a2", u"//*[@i='a1']"},
        {"following-sibling that is text", u"following-sibling::*", "'t2'", u"//*[@i='a3']"},
        {"following-sibling of the last", u"following-sibling::*", "| 2: following-sibling::*", u"//*[@i='a2']"},
        {"following-sibling of text", u"following-sibling::*", "| 2: following-sibling::*", u"//text()[. = 't2']"},
        {"following-sibling of the root", u"following-sibling::*", "| 2: following-sibling::*", u"/r"},
        {"following-sibling of the document", u"following-sibling::*", "| 2: following-sibling::*", u"/"},
        {"preceding-sibling, the first first", u"preceding-sibling::*", "a1 b3", u"//*[@i='a2']"},
        {"preceding-sibling of the first", u"preceding-sibling::*", "| 2: preceding-sibling::*", u"//*[@i='a1']"},
        {"preceding-sibling of text", u"preceding-sibling::*", "a3", u"//text()[. = 't2']"},
        {"preceding-sibling of the root", u"preceding-sibling::*", "| 2: preceding-sibling::*", u"/r"},
        {"preceding-sibling of the document", u"preceding-sibling::*", "| 2: preceding-sibling::*", u"/"},

        {"following", u"following::*", "b3 a2 a3 b4 't2'", u"//*[@i='a1']"},
        {"following ends with the parent", u"following::*", "c1 b2", u"//*[@i='b1']"},
        {"following of a last child", u"following::*", "| 2: following::*", u"//*[@i='b2']"},
        {"following in the middle", u"following::*", "a2 a3 b4 't2'", u"//*[@i='b3']"},
        {"following that is text", u"following::*", "'t2'", u"//*[@i='a3']"},
        {"following of text", u"following::*", "| 2: following::*", u"//text()[. = 't1']"},
        {"following of the root", u"following::*", "| 2: following::*", u"/r"},
        {"following of the document", u"following::*", "| 2: following::*", u"/"},
        {"following by name", u"following::b", "b4", u"//*[@i='b3']"},

        {"preceding", u"preceding::*", "a1 b1 't1' c1 b2", u"//*[@i='b3']"},
        {"preceding without the ancestors", u"preceding::*", "a1 b1 't1' c1 b2 b3", u"//*[@i='b4']"},
        {"preceding inside the own branch", u"preceding::*", "b1 't1'", u"//*[@i='b2']"},
        {"preceding of text", u"preceding::*", "a1 b1 't1' c1 b2 b3 a3 b4", u"//text()[. = 't2']"},
        {"preceding of the first", u"preceding::*", "| 2: preceding::*", u"//*[@i='b1']"},
        {"preceding of the root", u"preceding::*", "| 2: preceding::*", u"/r"},
        {"preceding of the document", u"preceding::*", "a1 b1 't1' c1 b2 b3 a2 a3 b4 't2'", u"/"},
        {"preceding by name", u"preceding::b", "b1 b2 b3", u"//*[@i='b4']"},

        {"attribute", u"attribute::*", "@i=b2", u"//*[@i='b2']"},
        {"attribute of text", u"attribute::*", "| 2: attribute::*", u"//text()[. = 't1']"},
        {"attribute of the document", u"attribute::*", "| 2: attribute::*", u"/"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, KnowOfAnAttributeItsElementAndWhatIsAboveIt) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"self", u"self::*", "@i=b2", u"//*[@i='b2']/@i"},
        {"the dot", u".", "@i=b2", u"//*[@i='b2']/@i"},
        {"parent", u"parent::*", "b2", u"//*[@i='b2']/@i"},
        {"ancestor", u"ancestor::*", "/ r a1 c1 b2", u"//*[@i='b2']/@i"},
        {"ancestor-or-self", u"ancestor-or-self::*", "/ r a1 c1 b2 @i=b2", u"//*[@i='b2']/@i"},
        {"descendant", u"descendant::*", "| 2: descendant::*", u"//*[@i='b2']/@i"},
        {"descendant-or-self", u"descendant-or-self::*", "@i=b2", u"//*[@i='b2']/@i"},
        {"child", u"child::*", "| 2: child::*", u"//*[@i='b2']/@i"},
        {"attribute", u"attribute::*", "| 2: attribute::*", u"//*[@i='b2']/@i"},
        {"following-sibling", u"following-sibling::*", "| 2: following-sibling::*", u"//*[@i='a1']/@i"},
        {"preceding-sibling", u"preceding-sibling::*", "| 2: preceding-sibling::*", u"//*[@i='a2']/@i"},
        {"following", u"following::*", "| 2: following::*", u"//*[@i='a1']/@i"},
        {"preceding, which never meets it", u"preceding::*", "a1 b1 't1' c1 b2 b3 b4 't2'", u"//*[@i='a3']/@i"},
        {"preceding of one of the root", u"preceding::*", "a1 b1 't1' c1 b2 b3 a2 a3 b4 't2'", u"/r/@i"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, KnowOfADocumentTypeItselfAndTheDocument) {
    const Tree tree("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r i CDATA #IMPLIED>]><r i='r'><a i='a'/>t<b i='b'/></r>");
    Object* dtd = tree.document()->getDtd();
    ASSERT_NE(dtd, nullptr);
    const PathCase kCases[] = {
        {"self", u"self::*", "dtd"},
        {"the dot", u".", "dtd"},
        {"self as a node", u"self::node()", "dtd"},
        {"self as an element", u"self::element()", "| 2: self::element()"},
        {"self by the name of its type", u"self::r", "| 2: self::r"},
        {"parent", u"parent::*", "| 2: parent::*"},
        {"the dots", u"..", "| 2: .."},
        {"ancestor", u"ancestor::*", "/"},
        {"ancestor-or-self", u"ancestor-or-self::*", "/ dtd"},
        {"child", u"child::*", "| 2: child::*"},
        {"descendant", u"descendant::*", "| 2: descendant::*"},
        {"descendant-or-self", u"descendant-or-self::*", "dtd"},
        {"attribute", u"@*", "| 2: @*"},
        {"following-sibling", u"following-sibling::*", "| 2: following-sibling::*"},
        {"preceding-sibling", u"preceding-sibling::*", "| 2: preceding-sibling::*"},
        {"following", u"following::*", "| 2: following::*"},
        {"preceding", u"preceding::*", "a 't' b"},
        {"no axis leads to it", u"//.", "/ r a 't' b"},
    };
    expectAnswers(dtd, kCases);
}

TEST(AxesTest, PassOverCommentsAndInstructionsAndTakeSectionsForText) {
    const Tree tree("<r i='r'><a i='a'><b i='b'/></a></r>");
    Element* const a = tree["a"];
    a->insertChild(a->getChild(0), new Comment("a"));
    a->insertChild(a->getChild(0), new Instruction("a", "b"));
    a->addChild(new CDataSection("1 < 2"));
    a->addChild(new Comment("1"));
    tree.root()->addChild(new Instruction("b", ""));
    const PathCase kCases[] = {
        {"children", u"/r/a/node()", "b '1 &lt; 2'"},
        {"the last", u"/r/a/node()[last()]", "'1 &lt; 2'"},
        {"texts", u"//text()", "'1 &lt; 2'"},
        {"all nodes", u"//.", "/ r a b '1 &lt; 2'"},
        {"all children", u"//*", "r a b '1 &lt; 2'"},
        {"descendants", u"/descendant::node()", "r a b '1 &lt; 2'"},
        {"siblings before", u"//text()/preceding-sibling::node()", "b"},
        {"siblings after", u"//b/following-sibling::node()", "'1 &lt; 2'"},
        {"none after the last", u"//a/following-sibling::node()", "| 2: following-sibling::node()"},
        {"all before", u"//text()/preceding::node()", "b"},
        {"by value", u"//*[. = '1 < 2']", "a '1 &lt; 2'"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, GiveTheNodesOfSeveralContextsOnceInTheOrderOfTheirFirstDiscovery) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"all b", u"//b", "b3 b1 b2 b4"},
        {"as their axis alone has them", u"/descendant::b", "b1 b2 b3 b4"},
        {"all nodes", u"//.", "/ r a1 b1 't1' c1 b2 b3 a2 a3 b4 't2'"},
        {"all children", u"//*", "r a1 b3 a2 b1 c1 't1' b2 a3 't2' b4"},
        {"all a by themselves", u"//self::a", "a1 a2 a3"},
        {"b below nested a", u"//a//b", "b1 b2 b4"},
        {"from a step's nodes", u"/r/a//b", "b1 b2 b4"},
        {"texts", u"//text()", "'t1' 't2'"},
        {"parents of all", u"//..", "/ r a1 b1 c1 a2 a3"},
        {"parents of some", u"//b/..", "r a1 c1 a3"},
        {"ancestors", u"//b/ancestor::*", "/ r a1 c1 a2 a3"},
        {"ancestors by name", u"//b/ancestor::a", "a1 a2 a3"},
        {"ancestors and selves", u"//b/ancestor-or-self::*", "/ r b3 a1 b1 c1 b2 a2 a3 b4"},
        {"following siblings", u"//b/following-sibling::*", "a2 c1"},
        {"of neighbours", u"/r/*/following-sibling::*", "b3 a2"},
        {"preceding siblings", u"/r/*/preceding-sibling::*", "a1 b3"},
        {"following", u"//b/following::*", "a2 a3 b4 't2' c1 b2"},
        {"preceding", u"//b/preceding::b", "b1 b2 b3"},
        {"preceding of all", u"//b/preceding::*", "a1 b1 't1' c1 b2 b3"},
        {"descendants of nested nodes", u"//a/descendant::*", "b1 't1' c1 b2 a3 b4 't2'"},
        {"and selves", u"//a/descendant-or-self::*", "a1 b1 't1' c1 b2 a2 a3 b4 't2'"},
        {"inner contexts before outer ones", u"/descendant::b/..", "a1 c1 r a3"},
        {"descendants and selves of these", u"/descendant::b/../descendant-or-self::*",
         "a1 b1 't1' c1 b2 r b3 a2 a3 b4 't2'"},
        {"children of these", u"/descendant::b/../*", "b1 c1 b2 a1 b3 a2 b4"},
        {"ancestors and selves of these", u"/descendant::b/../ancestor-or-self::*", "/ r a1 c1 a2 a3"},
        {"what is before these", u"/descendant::b/../preceding::*", "b1 't1' a1 c1 b2 b3"},
        {"what is after these", u"/descendant::b/../following::*", "b3 a2 a3 b4 't2'"},
        {"later siblings before earlier ones", u"//b/following-sibling::*/ancestor-or-self::a", "a2 a1"},
        {"siblings after these", u"//b/following-sibling::*/ancestor-or-self::a/following-sibling::*", "b3 a2"},
        {"siblings before these", u"//b/following-sibling::*/ancestor-or-self::a/preceding-sibling::*", "a1 b3"},
        {"all before these", u"//b/following-sibling::*/ancestor-or-self::a/preceding::*", "a1 b1 't1' c1 b2 b3"},
        {"all after these", u"//b/following-sibling::*/ancestor-or-self::a/following::*", "b3 a2 a3 b4 't2'"},
        {"children of overlapping contexts", u"/descendant-or-self::*/child::b", "b3 b1 b2 b4"},
        {"attributes", u"//a/@i", "@i=a1 @i=a2 @i=a3"},
        {"elements of attributes", u"//@i/..", "r a1 b1 c1 b2 b3 a2 a3 b4"},
        {"selves of repeated contexts", u"//b/../b", "b3 b1 b2 b4"},
        {"two slashes twice", u"//a//.", "a1 b1 't1' c1 b2 a2 a3 b4 't2'"},
        {"two slashes from attributes", u"//b/@i//.", "@i=b3 @i=b1 @i=b2 @i=b4"},
    };
    expectAnswers(tree.document(), kCases);

    const Tree small("<r><a><b i='inner'/></a><b i='outer'/></r>");
    EXPECT_EQ(answer(small.document(), u"//b"), "outer inner");
    EXPECT_EQ(answer(small.document(), u"/descendant::b"), "inner outer");
}

// Elements of one name and of several, side by side and one in the other, with texts alone and among others.
TEST(AxesTest, GoThroughWhatIsBelowSeveralNodesOnce) {
    const Tree tree(
        "<r i='r'><x i='x1'><y i='y1'>t</y><x i='x2'><y i='y2'/><z><x i='x3'>t<y i='y3'>t</y></x></z></x></x>"
        "<x i='x4'>t</x><z i='z1'><x i='x5'><x i='x6'>t</x></x></z></r>");
    const PathCase kCases[] = {
        {"of one name, in each other", u"//x//y", "y1 y2 y3"},
        {"and the same name again", u"//x//x", "x2 x3 x6"},
        {"of two names", u"/r/*//x", "x2 x3 x5 x6"},
        {"the inner ones first", u"//z/x/ancestor-or-self::x//y", "y1 y2 y3"},
        {"texts below them", u"//x//text()", "'t' 't' 't' 't' 't'"},
        {"texts below them and elements", u"//x//node()", "y1 x2 't' y2 z x3 't' y3 't' 't' x6 't'"},
        {"as a test", u"//x[.//y]", "x1 x2 x3"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, StartFromEachNodeOfTheQueryInTurn) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"one step", u"b", "b1 b4", u"//a"},
        {"two steps, the last without nodes for the last", u"*/b", "b2 b4 | 2: b", u"//a"},
        {"two slashes", u".//b", "b1 b2", u"//*[@i='a1']"},
        {"two slashes from several", u".//b", "b1 b2 b4", u"//a"},
        {"siblings", u"following-sibling::*", "b3 a2 't2'", u"//a"},
        {"a path from the document", u"/r/b", "b3", u"//a"},
        {"two slashes from the document", u"//c", "c1", u"//a"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, TestNodesByKindAndName) {
    const Tree tree(
        "<r i='r' q:b='3' b='2' a='1' B='4'>"
        "<p:x i='px'/><q:x i='qx'/><x i='x'/>one<p:y i='py'/><X i='X'/><p:q:x i='pqx'/><:x i='cx'/><p: i='pc'/>"
        "</r>");
    const PathCase kCases[] = {
        {"any node", u"*", "px qx x 'one' py X pqx cx pc", u"/r"},
        {"any node in words", u"node()", "px qx x 'one' py X pqx cx pc", u"/r"},
        {"any node with a star", u"node(*)", "px qx x 'one' py X pqx cx pc", u"/r"},
        {"any node in one word", u"node", "px qx x 'one' py X pqx cx pc", u"/r"},
        {"a name", u"x", "x", u"/r"},
        {"a name in capitals", u"X", "X", u"/r"},
        {"a name with a prefix", u"p:x", "px", u"/r"},
        {"a name with any prefix, the first colon counts", u"*:x", "px qx cx", u"/r"},
        {"a prefix with any name", u"p:*", "px py pqx pc", u"/r"},
        {"a prefix that is none", u"x:*", "| 2: x:*", u"/r"},
        {"a prefix in capitals", u"P:*", "| 2: P:*", u"/r"},
        {"a name's beginning", u"p", "| 2: p", u"/r"},
        {"a name's end", u"*:y", "py", u"/r"},
        {"a node by name", u"node(x)", "x", u"/r"},
        {"a node by any prefix", u"node(*:x)", "px qx cx", u"/r"},
        {"a node by prefix", u"node(p:*)", "px py pqx pc", u"/r"},
        {"elements", u"element()", "px qx x py X pqx cx pc", u"/r"},
        {"elements with a star", u"element(*)", "px qx x py X pqx cx pc", u"/r"},
        {"an element by name", u"element(x)", "x", u"/r"},
        {"elements by any prefix", u"element(*:x)", "px qx cx", u"/r"},
        {"elements by prefix", u"element(p:*)", "px py pqx pc", u"/r"},
        {"text", u"text()", "'one'", u"/r"},
        {"text, whatever name is given", u"text(zzz)", "'one'", u"/r"},
        {"text has no name", u"one", "| 2: one", u"/r"},
        {"no attributes among children", u"attribute()", "| 2: attribute()", u"/r"},
        {"no documents among children", u"document-node()", "| 2: document-node()", u"/r"},

        {"attributes in the order of their names", u"@*", "@B=4 @a=1 @b=2 @i=r @q:b=3", u"/r"},
        {"the same in words", u"attribute::node()", "@B=4 @a=1 @b=2 @i=r @q:b=3", u"/r"},
        {"attributes as such", u"@attribute()", "@B=4 @a=1 @b=2 @i=r @q:b=3", u"/r"},
        {"an attribute by name", u"@b", "@b=2", u"/r"},
        {"in other words", u"attribute::attribute(b)", "@b=2", u"/r"},
        {"and others", u"@node(b)", "@b=2", u"/r"},
        {"an attribute with any prefix", u"@*:b", "@q:b=3", u"/r"},
        {"attributes by prefix", u"@q:*", "@q:b=3", u"/r"},
        {"with prefix and name", u"@q:b", "@q:b=3", u"/r"},
        {"no elements among attributes", u"@element()", "| 2: @element()", u"/r"},
        {"no text among attributes", u"@text()", "| 2: @text()", u"/r"},
        {"no such attribute", u"@c", "| 2: @c", u"/r"},

        {"the document", u"self::document-node()", "/", u"/"},
        {"the document, whatever name is given", u"ancestor::document-node(zzz)", "/", u"/r"},
        {"the document among ancestors by any name", u"ancestor::*", "/", u"/r"},
        {"the document has no name", u"self::r", "| 2: self::r", u"/"},
        {"it is no element", u"self::element()", "| 2: self::element()", u"/"},
        {"nor text", u"self::text()", "| 2: self::text()", u"/"},
        {"an element is no document", u"self::document-node()", "| 2: self::document-node()", u"/r"},
        {"an element itself by name", u"self::x", "x | 2: self::x", u"/r/*"},
        {"an attribute itself by name", u"self::b", "@b=2", u"/r/@b"},
        {"a parent by name", u"parent::r", "r", u"/r/x"},
        {"a parent by another name", u"parent::x", "| 2: parent::x", u"/r/x"},
        {"a parent by kind", u"parent::element()", "r", u"/r/@b"},
        {"a parent that is the document", u"parent::document-node()", "/", u"/r"},
        {"a parent with no name", u"parent::r", "| 2: parent::r", u"/r"},
        {"all elements", u"/descendant::element()", "r px qx x py X pqx cx pc"},
        {"all attributes by kind", u"//attribute()", "| 2: attribute()"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, CompareNamesAs16BitTextWhole) {
    Document document(new Element("r"), nullptr);
    Element& root = *document.getRoot();
    {
        const MessageCollector diagnostics;  // these are no names
        root.setAttribute("caf\xC3\xA9", DataHolder("1"));
        root.setAttribute("\xC5\x81:\xC5\x82", DataHolder("2"));
        root.setAttribute("", DataHolder("3"));
    }
    root.setAttribute("long-name-of-many-letters", DataHolder("4"));
    const PathCase kCases[] = {
        {"all", u"/r/@*", "@=3 @caf\xC3\xA9=1 @long-name-of-many-letters=4 @\xC5\x81:\xC5\x82=2"},
        {"a letter beyond ASCII is none in a name test", u"/r/@caf\u00E9", "| failed 12: caf\xC3\xA9"},
        {"its neighbour by low byte matches nothing", u"/r/@caf\u0165", "| 2: @caf\xC5\xA5"},
        {"letters by low byte match themselves", u"/r/@\u0141:\u0142", "@\xC5\x81:\xC5\x82=2"},
        {"after any prefix", u"/r/@*:\u0142", "@\xC5\x81:\xC5\x82=2"},
        {"before any name", u"/r/@\u0141:*", "@\xC5\x81:\xC5\x82=2"},
        {"not their low bytes", u"/r/@A:B", "| 2: @A:B"},
        {"a long one", u"/r/@long-name-of-many-letters", "@long-name-of-many-letters=4"},
        {"cut short", u"/r/@long-name-of-many-letter", "| 2: @long-name-of-many-letter"},
        {"made longer", u"/r/@long-name-of-many-letterss", "| 2: @long-name-of-many-letterss"},
    };
    expectAnswers(&document, kCases);
}

TEST(AxesTest, KeepTheNodesForWhichAPredicateHasAValue) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"with a child", u"/r/a[b]", "a1"},
        {"with a grandchild", u"/r/*[*/b]", "a1 a2"},
        {"with an attribute", u"/r/*[@i]", "a1 b3 a2"},
        {"with a descendant", u"/r/*[.//b]", "a1 a2"},
        {"with text", u"/r/*[text()]", "a2"},
        {"with a parent", u"//b[parent::a]", "b1 b4"},
        {"with a sibling", u"//b[following-sibling::a]", "b3"},
        {"with something after it", u"//b[following::b]", "b3 b1"},
        {"with something before it", u"//b[preceding::c]", "b3 b4"},
        {"with an ancestor", u"//b[ancestor::c]", "b2"},
        {"with itself", u"//*[self::c]", "c1"},
        {"with the dot", u"/r/*[.]", "a1 b3 a2"},
        {"with a nested predicate", u"//*[a[b]]", "r a2"},
        {"with two", u"//a[b][c]", "a1"},
        {"in the one or the other order", u"//a[c][b]", "a1"},
        {"the same parent for each", u"/r/*[../b]", "a1 b3 a2"},
        {"the second", u"/r/*[position() = 2]", "b3"},
        {"the last", u"/r/*[last()]", "a2"},
        {"all by a place alone", u"/r/*[position()]", "a1 b3 a2"},
        {"also where it is nought", u"/r/*[position() - 1]", "a1 b3 a2"},
        {"some by place", u"/r/*[position() > 1]", "b3 a2"},
        {"the first of these", u"/r/*[position() > 1][position() = 1]", "b3"},
        {"the last of these", u"/r/*[position() < 3][last()]", "b3"},
        {"the place is that in the whole step", u"//b[position() = 1]", "b3"},
        {"so is the last", u"//b[last()]", "b4"},
        {"also after several contexts", u"//a/b[position() = 2]", "b4"},
        {"the last by its number", u"/r/*[last() = 3]", "a2"},
        {"none by another number", u"/r/*[last() = 2]", "| 2: *[last() = 2]"},
        {"a number alone keeps none", u"/r/*[1]", "| 2: *[1]"},
        {"a literal keeps none", u"/r/*['x']", "| 2: *['x']"},
        {"a true comparison of literals keeps none", u"/r/*[1 = 1]", "| 2: *[1 = 1]"},
        {"a false one too", u"/r/*[1 = 2]", "| 2: *[1 = 2]"},
        {"a path from the document keeps none", u"/r/*[/r]", "| 2: *[/r]"},
        {"not even of many nodes", u"/r/*[//b]", "| 2: *[//b]"},
        {"nor compared with a literal", u"/r/*[/r/@i = 'r']", "| 2: *[/r/@i = 'r']"},
        {"but compared with a value of the node", u"//b[@i = /r/b/@i]", "b3"},
        {"on either side", u"//b[/r/b/@i = @i]", "b3"},
        {"unless it finds more than one", u"//b[@i = //b/@i]", "| 2: b[@i = //b/@i]"},
        {"on an attribute", u"//@i[. = 'b2']", "@i=b2"},
        {"on text", u"//text()[. = 't2']", "'t2'"},
        {"on the document", u"/.[r]", "/"},
        {"on two slashes and a dot", u"//.[b]", "r a1 c1 a3"},
        {"steps after it go on from what is kept", u"/r/a[b]/c/b", "b2"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, CountBackwardsInTheFirstPredicateOfFiveAxes) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        // / r a2 a3
        {"the nearest ancestor", u"ancestor::*[position() = 1]", "a3", u"//b[@i='b4']"},
        {"the farthest", u"ancestor::*[position() = 4]", "/", u"//b[@i='b4']"},
        {"the last is the first of the list", u"ancestor::*[last()]", "/", u"//b[@i='b4']"},
        {"whose number is 1", u"ancestor::*[last() = 1]", "/", u"//b[@i='b4']"},
        {"and not that of all", u"ancestor::*[last() = 4]", "| 2: *[last() = 4]", u"//b[@i='b4']"},
        {"it is at the highest place", u"ancestor::*[position() = last()]", "| 2: *[position() = last()]",
         u"//b[@i='b4']"},
        {"unless it is alone", u"ancestor::a[b][position() = last()]", "a3", u"//b[@i='b4']"},
        {"alone", u"parent::*[position() = last()]", "a3", u"//b[@i='b4']"},
        {"the order of the list stays", u"ancestor::*[position() < 3]", "a2 a3", u"//b[@i='b4']"},
        {"with a calculation", u"ancestor::*[position() + 1 = 2]", "a3", u"//b[@i='b4']"},
        {"not in the second predicate", u"ancestor::*[*][position() = 1]", "/", u"//b[@i='b4']"},
        {"nor the last in it", u"ancestor::*[*][last()]", "a3", u"//b[@i='b4']"},
        {"not in a predicate within the first", u"ancestor::*[*[position() = 3]]", "r", u"//b[@i='b4']"},
        {"but in one with an axis of its own", u"ancestor::*[self::a][../*[last()]/ancestor::*[position() = 3]]", "a3",
         u"//b[@i='b4']"},
        {"ancestor-or-self", u"ancestor-or-self::*[position() = 1]", "b4", u"//b[@i='b4']"},
        {"its last", u"ancestor-or-self::*[last()]", "/", u"//b[@i='b4']"},
        {"preceding-sibling", u"preceding-sibling::*[position() = 1]", "b3", u"/r/a[last()]"},
        {"its last", u"preceding-sibling::*[last()]", "a1", u"/r/a[last()]"},
        {"preceding", u"preceding::*[position() = 1]", "b2", u"/r/b"},
        {"its last", u"preceding::*[last()]", "a1", u"/r/b"},
        {"by number", u"preceding::*[position() = 3]", "'t1'", u"/r/b"},
        // r a1 c1 a3
        {"parent, over all contexts", u"//b/parent::*[position() = 1]", "a3"},
        {"its last", u"//b/parent::*[last()]", "r"},
        {"the two dots", u"//b/..[position() = 2]", "c1"},
        {"the last of the two dots", u"//b/..[last()]", "r"},
        {"ancestors of several contexts", u"//b/ancestor::a[position() = 1]", "a3"},

        {"child counts forwards", u"child::*[position() = 1]", "a1", u"/r"},
        {"attribute", u"/descendant::*/@i[position() = 1]", "@i=r"},
        {"descendant", u"descendant::*[position() = 1]", "b1", u"/r/a[b]"},
        {"descendant-or-self", u"descendant-or-self::*[position() = 1]", "a1", u"/r/a[b]"},
        {"following-sibling", u"following-sibling::*[position() = 1]", "b3", u"/r/a[b]"},
        {"following", u"following::*[position() = 1]", "b3", u"/r/a[b]"},
        {"self", u"//b/self::*[position() = 1]", "b3"},
        {"the dot", u"//b/.[last()]", "b4"},
        {"two slashes", u"//a[position() = 1]", "a1"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, NameTheDeepestStepWithoutNodes) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"the first", u"/nope", "| 2: nope"},
        {"of a relative path", u"nope", "| 2: nope"},
        {"the second", u"/r/nope", "| 2: nope"},
        {"the third", u"/r/a/nope", "| 2: nope"},
        {"one before others", u"/r/nope/x/y", "| 2: nope"},
        {"after two slashes", u"//nope", "| 2: nope"},
        {"after two slashes and others", u"//nope/x", "| 2: nope"},
        {"with its axis", u"/r/child::nope", "| 2: child::nope"},
        {"with another axis", u"/r/following-sibling::*/x", "| 2: following-sibling::*"},
        {"with its sign", u"/r/@nope", "| 2: @nope"},
        {"a kind test", u"/r/text()", "| 2: text()"},
        {"a kind test with a name", u"/r/element( nope )", "| 2: element(nope)"},
        {"the dots", u"/..", "| 2: .."},
        {"without its predicates", u"/r/nope[x][1]", "| 2: nope"},
        {"without white space", u"/r/ child :: no pe ", "| 2: child::nope"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, NameAStepWithAllItsPredicatesWhereTheseKeepNothing) {
    const Tree tree("<r i='r'><x i='x1' k='1'/><x i='x2'/><y i='y1'/><y i='y2' k='1'/><z i='z'><w i='w'>t</w></z></r>");
    const PathCase kCases[] = {
        {"one", u"/r/x[1]", "| 2: x[1]"},
        {"two", u"/r/x[1][@i]", "| 2: x[1][@i]"},
        {"the second keeps nothing", u"/r/x[@i][1]", "| 2: x[@i][1]"},
        {"without the axis", u"/r/child::x[1]", "| 2: x[1]"},
        {"without the sign", u"/r/@i[. = 'zz']", "| 2: i[. = 'zz']"},
        {"as they are written", u"/r/x[ 1  =  1 ] [ 2 ]", "| 2: x[ 1  =  1 ][ 2 ]"},
        {"a star", u"/r/*[@i='zz']", "| 2: *[@i='zz']"},
        {"a kind test", u"/r/element( x )[1]", "| 2: element(x)[1]"},
        {"a kind test alone", u"/r/z/w/text()[1]", "| 2: text()[1]"},
        {"the dot", u"/r/.[1]", "| 2: node()[1]"},
        {"the dots", u"/r/x/..[1]", "| 2: node()[1]"},
        {"before another step", u"/r/x[1]/y", "| 2: x[1]"},
        {"after two slashes", u"//x[1]", "| 2: x[1]"},
        {"a step of the predicate", u"/r/x[nope]", "| 2: nope"},
        {"before another step", u"/r/x[nope]/x", "| 2: nope"},
        {"a deeper step of the predicate", u"/r/z[w/nope]", "| 2: nope"},
        {"the deepest of two contexts, the first", u"/r/*[w/nope]", "| 2: nope"},
        {"a step of a nested predicate", u"/r/z[w[nope]]", "| 2: nope"},
        {"the predicate within the predicate", u"/r/z[w[1]]", "| 2: w[1]"},
        {"a comparison that failed", u"/r/z[w = 'u']", "| 2: z[w = 'u']"},
        {"a value that the last node lacks", u"/r/x[@k = 9]", "| 2: @k"},
        {"a value that the first node lacks", u"/r/y[@k = 9]", "| 2: y[@k = 9]"},
        {"a place", u"/r/x[position() = 9]", "| 2: x[position() = 9]"},
        {"a path from the document in it", u"/r/x[/r]", "| 2: x[/r]"},
        {"its step without nodes", u"/r/x[/r/zip]", "| 2: zip"},
        {"its first step is no deeper than the predicate's", u"/r/nope[/zip]", "| 2: nope"},
        {"its second is", u"/r/nope[/r/zip]", "| 2: zip"},
        {"one that finds something takes the step's name", u"/r/nope[/r]", "| 2: nope[/r]"},
        {"one with two slashes", u"/r/nope[//zip]", "| 2: zip"},
        {"of two paths the deeper", u"/r/x/nope = /zip", "| 2: nope"},
        {"of two paths the first when they are as deep", u"/zip = /zap", "| 2: zip"},
        {"of two paths the deeper, after", u"/zip = //zap", "| 2: zap"},
        {"a path that finds something clears it", u"/zip = /r/z/w", ""},
        {"but not one before it", u"/r/z/w = /zip", "| 2: zip"},
        {"nothing is named where all steps have nodes", u"/r/z/w = 'u'", ""},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(AxesTest, ForgetAStepWithoutNodesAsSoonAsAnotherHasSome) {
    const Tree tree("<r i='r'><x i='x1'><y i='y1'/></x><x i='x2'/></r>");
    const PathCase kCases[] = {
        {"a predicate that holds for some", u"/r/x[y]", "x1"},
        {"a predicate that holds for the first", u"/r/x[y]/y", "y1"},
        {"the last context has none", u"y", "y1 | 2: y", u"/r/x"},
        {"the first context has none", u"*/..", "x1", u"/r/x[last()]/preceding-sibling::*"},
    };
    expectAnswers(tree.document(), kCases);

    const Tree turned("<r i='r'><x i='x1'/><x i='x2'><y i='y1'/></x></r>");
    EXPECT_EQ(answer(turned.document(), u"y", u"/r/x"), "y1");
    EXPECT_EQ(answer(turned.document(), u"y/z", u"/r/x"), "| 2: z");
    EXPECT_EQ(answer(turned.document(), u"y/.. = y", u"/r/x"), "x2");
}

TEST(AxesTest, WalkTreesOfAnyDepth) {
    constexpr int kDepth = 100000;
    std::string text = "<r n='1'>";
    for (int i = 2; i < kDepth; ++i) text += "<b n='1'>";
    text += "<b/>";
    for (int i = 2; i < kDepth; ++i) text += "<c/></b>";
    const Tree tree(text + "<c/></r>");
    struct Case {
        const char16_t* path;
        unsigned count;
    } const kCases[] = {
        {u"//b", kDepth - 1},
        {u"//c", kDepth - 1},
        {u"//@n", kDepth - 1},
        {u"/descendant-or-self::*", 2 * kDepth},
        {u"//b/..", kDepth - 1},
        {u"//b/ancestor::*", kDepth},
        {u"//b/ancestor-or-self::b", kDepth - 1},
        {u"//b//c", kDepth - 2},
        {u"//b/following-sibling::*", kDepth - 1},
        {u"//c/preceding-sibling::*", kDepth - 1},
        {u"//b/following::c", kDepth - 1},
        {u"//c/preceding::b", kDepth - 1},
        {u"//c/preceding::*[position() = 1]", 1},
        {u"//b/self::node()/descendant::b", kDepth - 2},
        {u"//b[c]", kDepth - 2},
        {u"//b[@n > 1]", 0},
        {u"//*[../@n = 1]", 2 * kDepth - 2},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(narrow(c.path));
        XPath query(tree.document());
        EXPECT_EQ(query.GetValues(c.path), c.count);
    }
}

}  // namespace

}  // namespace Xml::test
