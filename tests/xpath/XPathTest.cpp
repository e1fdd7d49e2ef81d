// The query object: what it stands on, what its operations give, keep and reset, texts of results and of errors.
#include "orvsys/Localization.h"
#include "support/Messages.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/xpath/XPath.h"
#include "xpath/Queries.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

using OrvSys::Localization;
using OrvSys::Uni16String;

static_assert(!std::is_copy_constructible_v<XPath> && !std::is_copy_assignable_v<XPath>);
static_assert(!std::is_convertible_v<Object*, XPath>, "a node must not turn into a query by itself");

const char* const kText =
    "<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r i CDATA #IMPLIED>]>"
    "<r i='r'>"
    "<x i='x1' w='a  b c'><n i='n1'>1</n><n i='n2'>2</n></x>"
    "<x i='x2' w=''>t &lt; u</x>"
    "<y i='y' w='one'><e/>after<e/>again</y>"
    "</r>";

// The kinds of node that a query is made over, by name.
std::vector<std::pair<std::string, Object*>> nodesInside(const Tree& tree) {
    return {
        {"document", tree.document()},     {"root", tree.root()},
        {"deep element", tree["n2"]},      {"attribute", tree["x1"]->getAttribute("w")},
        {"text", tree["x2"]->getChild(0)}, {"document type", tree.document()->getDtd()},
    };
}

// And those above which there is no document. The tree is owned here.
struct Outside {
    Element element{"top"};
    Dtd dtd{"top"};

    Outside() {
        element.setAttribute("w", DataHolder("one two"));
        auto* child = new Element("x", DataHolder("text"));
        element.addChild(child);
        element.addChild(new Element("y"));
    }
    std::vector<std::pair<std::string, Object*>> nodes() {
        return {
            {"detached element", &element},
            {"its child", element.getChild(0)},
            {"its attribute", element.getAttribute("w")},
            {"its text", element.getChild(0)->toElement()->getChild(0)},
            {"a document type alone", &dtd},
            {"nothing", nullptr},
        };
    }
};

TEST(XPathTest, StandsOnTheNodeThatItIsMadeOver) {
    const Tree tree(kText);
    Outside outside;
    auto nodes = nodesInside(tree);
    for (const auto& node : outside.nodes()) nodes.push_back(node);
    for (const auto& [name, node] : nodes) {
        SCOPED_TRACE(name);
        XPath query(node);
        ASSERT_EQ(query.GetNrOfResults(), 1u);
        EXPECT_EQ(query.GetResult(0).kind, 0);
        EXPECT_EQ(query.GetResult(0).node, node);
        EXPECT_EQ(query.GetResult(0).contextTag, -1);
        EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
        EXPECT_EQ(errorIn(query), "");
    }
}

TEST(XPathTest, TakesTheTextOfItsOwnResultForAPath) {
    const Tree tree("<root><some><long><enough>text</enough></long></some></root>");
    XPath query(tree.document());
    const std::u16string paths[] = {u"'/root'", u"'/root/some/long/enough'", u"'/root/some/long[enough = \"text\"]'"};
    for (const std::u16string& path : paths) {
        ASSERT_EQ(query.GetValues(path.c_str()), 1U);
        EXPECT_EQ(query.GetValues(query.GetResult(0).string), 1U);
        EXPECT_EQ(query.GetResult(0).kind, 0);
    }
}

TEST(XPathTest, FindsTheDocumentAboveWhateverNodeItStandsOn) {
    const Tree tree(kText);
    for (const auto& [name, node] : nodesInside(tree)) {
        SCOPED_TRACE(name);
        EXPECT_EQ(answer(node, u"/"), "/");
        EXPECT_EQ(answer(node, u"/r/y"), "y");
        EXPECT_EQ(answer(node, u"."), shortOf(node));
        XPath query(node);
        ASSERT_EQ(query.GetValues(u"/"), 1u);
        EXPECT_EQ(query.GetResult(0).node, tree.document());
    }
}

TEST(XPathTest, FindsAndReportsNothingWithoutADocumentAboveItsNode) {
    Outside outside;
    const Tree emptied(kText);
    const std::unique_ptr<Element> extracted(emptied.document()->extractRoot());
    auto nodes = outside.nodes();
    nodes.emplace_back("the root taken out of its document", extracted.get());
    for (const auto& [name, node] : nodes) {
        for (const char16_t* path : {u".", u"/", u"x", u"", u"x/", u"12a", u"1 + 1"}) {
            SCOPED_TRACE(name + ": " + narrow(path));
            XPath query(node);
            EXPECT_EQ(query.GetValues(path), 0u);
            EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
            EXPECT_EQ(narrow(query.GetValue(path, -1)), "");
            EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
            EXPECT_EQ(query.GetNrOfResults(), 1u) << "the node itself stays";

            // Nothing is reset either.
            query.GetValue(7u, -1);
            EXPECT_EQ(query.GetValues(path), 0u);
            EXPECT_EQ(narrow(query.GetValue(path, 0)), "");
            EXPECT_EQ(query.GetErrorCode(), XPath::INDEX_OUT_OF_BOUNDS);
        }
    }
}

TEST(XPathTest, FollowsRelativePathsFromADetachedNodeWhenAskedDirectly) {
    Outside outside;
    struct Case {
        const char16_t* path;
        bool found;
        const char* results;
    } const kCases[] = {
        {u"x", true, "x"},
        {u"*", true, "x y"},
        {u"x/text()", true, "'text'"},
        {u"@w", true, "@w=one two"},
        {u".//y", true, "y"},
        {u"y/preceding-sibling::*", true, "x"},
        {u"x/following-sibling::*", true, "y"},
        {u"x/text()/ancestor-or-self::*", true, "top x 'text'"},
        {u"..", true, ""},
        {u"x/following::*", true, ""},
        {u"y/preceding::*", true, ""},
        {u"/", false, ""},
        {u"/top", false, ""},
        {u"//x", false, ""},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(narrow(c.path));
        XPath query(&outside.element);
        EXPECT_EQ(query.FindNodes(c.path), c.found);
        EXPECT_EQ(resultsOf(query), c.results);
        if (!c.found) {
            EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
        }
    }
    for (const char16_t* path : {u"x", u"/", u"/r", u".", u".."}) {
        SCOPED_TRACE(narrow(path));
        XPath query(nullptr);
        EXPECT_FALSE(query.FindNodes(path));
        EXPECT_EQ(query.GetNrOfResults(), 0u);
        EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
    }
}

TEST(XPathTest, TakesAPathOfNothingButWhiteSpaceForNone) {
    const Tree tree(kText);
    for (const char16_t* path : {u"", u" ", u"   ", u"\t\n\r ", u"\u0120\u0109\u010A\u010D"}) {
        SCOPED_TRACE(narrow(path));
        EXPECT_EQ(answer(tree.document(), path), "| failed 5");
        EXPECT_EQ(answer(tree.document(), path, u"/r/x"), "| failed 5");
        EXPECT_EQ(syntax(tree.document(), path), "failed 5");
        EXPECT_EQ(syntax(tree.document(), path, u"/r/x"), "failed 5");

        XPath query(tree.document());
        EXPECT_FALSE(query.FindNodes(path));
        EXPECT_EQ(query.GetNrOfResults(), 0u);
        EXPECT_EQ(query.GetErrorString(),
                  Localization::GetString("xpat/xerr/NO XPATH SPECIFIED", "XPath", u"not installed"));
    }
}

TEST(XPathTest, RefusesARelativePathWithoutResultsToStartFrom) {
    const Tree tree(kText);
    struct Case {
        const char16_t* path;
        const char* error;
    } const kCases[] = {
        {u"x", "13: x"},           {u" x / y ", "13: x/y"},
        {u"x[ y ]", "13: x[ y ]"}, {u"1 + 1", "13: 1 + 1"},
        {u" a  =  b ", "13: a=b"}, {u"'lit  eral'", "13: 'lit  eral'"},
        {u"'open", "13: 'open'"},  {u"position()", "13: position()"},
        {u"x/", "13: x/"},         {u"a::b", "13: a::b"},
        {u"[", "13: ["},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(narrow(c.path));
        for (const char16_t* first : {u"/r/nope", u"", u"/r/x/"}) {
            XPath query(tree.document());
            EXPECT_EQ(query.GetValues(first), 0u);
            EXPECT_EQ(query.GetValues(c.path), 0u);
            EXPECT_EQ(errorIn(query), c.error);
            EXPECT_EQ(narrow(query.GetValue(c.path, -1)), "");
            EXPECT_EQ(errorIn(query), c.error);
            EXPECT_FALSE(query.SyntaxOK(c.path));
            EXPECT_EQ(errorIn(query), c.error);
            EXPECT_EQ(query.GetValues(u"/r/y"), 1u) << "a path from the document needs no context";
            EXPECT_EQ(errorIn(query), "");
        }
    }
    XPath query(tree.document());
    query.GetValues(u"/r/nope");
    query.GetValues(u"x");
    const Uni16String text = query.GetErrorString();
    EXPECT_EQ(narrow(text.substr(text.size() - 6)), " --> x");
}

TEST(XPathTest, MakesTheResultsOfAQueryTheContextOfTheNext) {
    const Tree tree(kText);
    struct Case {
        const char* name;
        std::vector<const char16_t*> paths;
        const char* answer;
    } const kCases[] = {
        {"from the document", {u"r"}, "r"},
        {"one step after the other", {u"r", u"x", u"n"}, "n1 n2 | 2: n"},
        {"all of several contexts", {u"/r/*", u"@i"}, "@i=x1 @i=x2 @i=y"},
        {"back up, each node once", {u"//n", u".."}, "x1"},
        {"from attributes", {u"/r/x/@w", u".."}, "x1 x2"},
        {"from text", {u"//text()", u"..", u".."}, "x1 r"},
        {"a path from the document forgets the context", {u"/r/x", u"/r/y"}, "y"},
        {"the document itself", {u"/r/x", u"/"}, "/"},
        {"and on from there", {u"/r/x", u"/", u"r/y"}, "y"},
        {"values do not stand in the way of paths from the document", {u"1 + 1", u"/r/y"}, "y"},
        {"nor of values", {u"1 + 1", u"3"}, "3#-1"},
        {"but of relative paths", {u"1 + 1", u"x"}, "| 26"},
        {"after which there is no context left", {u"1 + 1", u"x", u"x"}, "| 13: x"},
        {"an error leaves none", {u"/r/x", u"n::x", u"n"}, "| 13: n"},
        {"nor does finding nothing", {u"/r/x", u"nope", u"n"}, "| 13: n"},
        {"nor an empty path", {u"/r/x", u"", u"n"}, "| 13: n"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        XPath query(tree.document());
        unsigned count = 0;
        for (const char16_t* path : c.paths) count = query.GetValues(path);
        const std::string error = errorIn(query);
        EXPECT_EQ(resultsOf(query) + (error.empty() ? "" : (count > 0 ? " | " : "| ") + error), c.answer);
        EXPECT_EQ(count, query.GetNrOfResults());
    }
}

TEST(XPathTest, GivesTagsToValuesOfContextNodesAndNoneToNodes) {
    const Tree tree("<r i='r'><n>5</n><x i='x1'><n>1</n></x><x i='x2'><n>2</n></x></r>");
    const PathCase kCases[] = {
        {"a literal", u"'v'", "str(v)#-1"},
        {"a number", u"7", "7#-1"},
        {"a scalar sum", u"7 + 1", "8#-1"},
        {"a value of the one context node", u"n + 1", "6#0", u"/r"},
        {"the same on the right", u"1 + n", "6#0", u"/r"},
        {"a value that no context node had a part in", u"/r/n + 1", "6#-1", u"/r"},
        {"the same from two contexts", u"/r/n + 1", "6#-1", u"/r/x"},
        {"values of two context nodes", u"n + 1", "2#0 3#1", u"/r/x"},
        {"a place", u"position()", "1#0 2#1", u"/r/x"},
        {"the last", u"last()", "2#1", u"/r/x"},
        {"a literal that equals a value", u"1 = n", "1#0", u"/r/x"},
        {"a text that equals a value", u"'2' = n", "str(2)#1", u"/r/x"},
    };
    expectAnswers(tree.document(), kCases);

    for (const char16_t* path : {u"/r/x", u"x", u"//n", u"/", u"x/n", u"n = 5", u"/r/x/n = 2", u"//n = /r/n"}) {
        SCOPED_TRACE(narrow(path));
        XPath query(tree.root());
        ASSERT_GT(query.GetValues(path), 0u);
        for (unsigned i = 0; i < query.GetNrOfResults(); ++i) {
            EXPECT_EQ(query.GetResult(i).kind, 0);
            EXPECT_EQ(query.GetResult(i).contextTag, -1);
        }
    }
    XPath query(tree.document());
    ASSERT_EQ(query.GetValues(u"/r/x"), 2u);
    ASSERT_EQ(query.GetValues(u"n"), 2u);
    EXPECT_EQ(query.GetResult(0).contextTag, -1);
    EXPECT_EQ(query.GetResult(1).contextTag, -1);
}

TEST(XPathTest, GivesEachNodeOnceButEachValueOfEachContext) {
    const Tree tree("<r i='r' k='5'><x i='x1'/><x i='x2'/><x i='x3'/></r>");
    const PathCase kCases[] = {
        {"one parent", u"..", "r", u"/r/x"},
        {"one attribute of it", u"../@k", "@k=5", u"/r/x"},
        {"filtered", u"../@k = 5", "@k=5", u"/r/x"},
        {"a number for each", u"../@k + 1", "6#0 6#1 6#2", u"/r/x"},
        {"a literal for each", u"5 = ../@k", "5#0 5#1 5#2", u"/r/x"},
        {"siblings", u"following-sibling::*", "x2 x3 | 2: following-sibling::*", u"/r/x"},
        {"pairs", u"../@k + following-sibling::x/../@k", "10#0 10#1 | 2: following-sibling::x", u"/r/x"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(XPathTest, CutsTheValueOfAnAttributeIntoWords) {
    const Tree tree(
        "<r a='a  b c' lead='  x y' trail='x y  ' none='' blanks='   ' one='alone' tab='a\tb c' wide='&#x41;\xC3\xA9 "
        "z'>"
        "a  b c<e>p q</e></r>");
    struct Case {
        const char* name;
        const char16_t* path;
        int token;
        const char* value;
        XPath::ErrorCode error;
    } const kCases[] = {
        {"whole", u"/r/@a", -1, "a  b c", XPath::NONE},
        {"first", u"/r/@a", 0, "a", XPath::NONE},
        {"after a run of blanks", u"/r/@a", 1, "b", XPath::NONE},
        {"last", u"/r/@a", 2, "c", XPath::NONE},
        {"one too many", u"/r/@a", 3, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"far too many", u"/r/@a", 2147483647, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"below -1", u"/r/@a", -2, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"far below -1", u"/r/@a", -2147483647 - 1, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"leading blanks", u"/r/@lead", 0, "x", XPath::NONE},
        {"after leading blanks", u"/r/@lead", 1, "y", XPath::NONE},
        {"leading blanks make no word", u"/r/@lead", 2, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"whole with leading blanks", u"/r/@lead", -1, "  x y", XPath::NONE},
        {"before trailing blanks", u"/r/@trail", 1, "y", XPath::NONE},
        {"trailing blanks make no word", u"/r/@trail", 2, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"empty, whole", u"/r/@none", -1, "", XPath::NONE},
        {"empty, first word", u"/r/@none", 0, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"blanks, whole", u"/r/@blanks", -1, "   ", XPath::NONE},
        {"blanks, first word", u"/r/@blanks", 0, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"one word", u"/r/@one", 0, "alone", XPath::NONE},
        {"after it", u"/r/@one", 1, "", XPath::INDEX_OUT_OF_BOUNDS},
        {"a tab parts nothing", u"/r/@tab", 0, "a\tb", XPath::NONE},
        {"after the blank", u"/r/@tab", 1, "c", XPath::NONE},
        {"not only ASCII", u"/r/@wide", 0, "A\xC3\xA9", XPath::NONE},
        {"an element has no words", u"/r", 1, "a  b c", XPath::NONE},
        {"nor has text", u"/r/e/text()", 7, "p q", XPath::NONE},
        {"nor a literal", u"'p q'", 1, "p q", XPath::NONE},
        {"nor a number", u"7", 3, "7.000000", XPath::NONE},
        {"nor the document", u"/", 3, "", XPath::NONE},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        XPath query(tree.document());
        EXPECT_EQ(narrow(query.GetValue(c.path, c.token)), c.value);
        EXPECT_EQ(query.GetErrorCode(), c.error);

        XPath stepwise(tree.document());
        ASSERT_EQ(stepwise.GetValues(c.path), 1u);
        EXPECT_EQ(narrow(stepwise.GetValue(0u, c.token)), c.value);
        EXPECT_EQ(stepwise.GetErrorCode(), c.error);
        EXPECT_EQ(stepwise.GetNrOfResults(), 1u);
    }
}

TEST(XPathTest, KnowsNoResultAtOrPastTheEnd) {
    const Tree tree(kText);
    XPath query(tree.document());
    ASSERT_EQ(query.GetValues(u"/r/*"), 3u);
    for (unsigned index : {3u, 4u, 5u, 4294967295u}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(narrow(query.GetValue(index, -1)), "");
        EXPECT_EQ(query.GetErrorCode(), XPath::INDEX_OUT_OF_BOUNDS);
        EXPECT_EQ(query.GetErrorString(),
                  Localization::GetString("xpat/xerr/INDEX OUT OF BOUNDS", "XPath", u"not installed"));
        EXPECT_EQ(query.GetNrOfResults(), 3u);
    }
    EXPECT_EQ(narrow(query.GetValue(1u, -1)), "t < u");
    EXPECT_EQ(query.GetErrorCode(), XPath::NONE) << "an index that is there resets the error";

    XPath none(tree.document());
    EXPECT_EQ(none.GetValues(u"/r/nope"), 0u);
    EXPECT_EQ(narrow(none.GetValue(0u, -1)), "");
    EXPECT_EQ(none.GetErrorCode(), XPath::INDEX_OUT_OF_BOUNDS);
}

TEST(XPathTest, GivesTheTextOfNodes) {
    const Tree tree(
        "<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA #IMPLIED e CDATA #IMPLIED u CDATA #IMPLIED>"
        "<!ENTITY who \"w&#64;rld\">]>"
        "<r a='&lt;1&gt; &amp; &#x41;' e='' u='\xE2\x82\xAC \xF0\x9F\x98\x80'>"
        "<plain i='plain'>text</plain>"
        "<coded i='coded'>a &lt; &amp;amp; &who; &#66;</coded>"
        "<empty i='empty'/>"
        "<nested i='nested'><b>in</b></nested>"
        "<mixed i='mixed'><b>in</b>after<b/>again</mixed>"
        "<wide i='wide'>\xE2\x82\xAC \xF0\x9F\x98\x80 \xC3\xA9</wide>"
        "</r>");
    Outside outside;
    struct Case {
        const char* name;
        Object* node;
        const char16_t* text;
    } const kCases[] = {
        {"an attribute's value, unescaped", tree.root()->getAttribute("a"), u"<1> & A"},
        {"an empty value", tree.root()->getAttribute("e"), u""},
        {"a value beyond ASCII", tree.root()->getAttribute("u"), u"\u20AC \U0001F600"},
        {"text", tree["plain"]->getChild(0), u"text"},
        {"text decoded, with the entities of the document type", tree["coded"]->getChild(0), u"a < &amp; w@rld B"},
        {"text beyond ASCII", tree["wide"]->getChild(0), u"\u20AC \U0001F600 \u00E9"},
        {"an element's text", tree["plain"], u"text"},
        {"an element's decoded text", tree["coded"], u"a < &amp; w@rld B"},
        {"an element's first text among its children", tree["mixed"], u"after"},
        {"none of an element without children", tree["empty"], u""},
        {"none of an element with elements only", tree["nested"], u""},
        {"none of a root without text", tree.root(), u""},
        {"none of a document", tree.document(), u""},
        {"none of a document type", tree.document()->getDtd(), u""},
        {"a detached element's", outside.element.getChild(0), u"text"},
        {"none of no node", nullptr, u""},
    };
    XPath other(tree.document());
    other.GetValue(5u, -1);
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(narrow(std::as_const(other).GetValue(c.node)), narrow(c.text));
        EXPECT_EQ(other.GetErrorCode(), XPath::INDEX_OUT_OF_BOUNDS) << "asking for a node's text changes no error";
        XPath query(c.node);
        EXPECT_EQ(narrow(query.GetValue(0u, -1)), narrow(c.text));
        EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
    }
    const Uni16String wideText = other.GetValue(tree["wide"]);
    EXPECT_EQ(wideText, u"\u20AC \U0001F600 \u00E9") << "a character beyond 16 bits takes two units";
}

TEST(XPathTest, GivesTheTextOfTheFirstResultForAPath) {
    const Tree tree(kText);
    struct Case {
        const char* name;
        const char16_t* path;
        const char* value;
        const char* error;
    } const kCases[] = {
        {"one node", u"/r/y/@w", "one", ""},
        {"the first of several", u"//n", "1", ""},
        {"in the order of the results", u"/r/x[last()]", "t < u", ""},
        {"a string", u"'a b'", "a b", ""},
        {"a number", u"5 - 2", "3.000000", ""},
        {"nothing found", u"/r/nope", "", "2: nope"},
        {"an error", u"/r/x/", "", "14: x/"},
        {"a failure without a code", u"/r/1", "", ""},
        {"a value that is empty", u"/r/x[2 = position()]/@w", "", ""},
        {"no path", u"", "", "5"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        XPath query(tree.document());
        EXPECT_EQ(narrow(query.GetValue(c.path, -1)), c.value);
        EXPECT_EQ(errorIn(query), c.error);
    }
    // The results are there after it, all of them.
    XPath query(tree.document());
    query.GetValue(u"//n", -1);
    EXPECT_EQ(resultsOf(query), "n1 n2");
}

// A path for each code that a path can end in, and what stands after " --> "; null for codes without a suffix.
struct ErrorCase {
    XPath::ErrorCode code;
    const char* key;
    const char16_t* before;
    const char16_t* path;
    const char* suffix;
};
const Uni16String kTooDeep = repeated(u"[", 1001);
const ErrorCase kErrors[] = {
    {XPath::NONE, "NONE", u"", u"/r", nullptr},
    {XPath::NODE_NOT_FOUND, "NODE NOT FOUND", u"", u"/r/nope/x", "nope"},
    {XPath::DOUBLE_SLASH_AT_THE_END_NOT_ALLOWED, "DOUBLE SLASH AT THE END NOT ALLOWED", u"", u"/r//", "//"},
    {XPath::NO_XPATH_SPECIFIED, "NO XPATH SPECIFIED", u"", u" ", nullptr},
    {XPath::ILLEGAL_CHAR_AFTER_FUNCTION, "ILLEGAL CHAR AFTER FUNCTION", u"", u"position()x", "position()x"},
    {XPath::ILLEGAL_CHAR_AFTER_KINDTEST, "ILLEGAL CHAR AFTER KINDTEST", u"", u"/r/text()x", "text()x"},
    {XPath::ILLEGAL_CHAR_IN_NUMBER, "ILLEGAL CHAR IN NUMBER", u"", u"12a", "12a"},
    {XPath::ILLEGAL_CHAR_AFTER_PREDICATE, "ILLEGAL CHAR AFTER PREDICATE", u"", u"/r/x[n]y", "[n]"},
    {XPath::NO_VALID_NAME_OR_TEST, "NO VALID NAME OR TEST", u"", u"/r/*x", "*x"},
    {XPath::RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES,
     "RELATIVE XPATH EXPRESSION NOT ALLOWED WITHOUT CONTEXT NODES", u"/r/nope", u"x", "x"},
    {XPath::SLASH_AT_END_NOT_ALLOWED, "SLASH AT END NOT ALLOWED", u"", u"/r/x/", "x/"},
    {XPath::NO_VALID_AXIS, "NO VALID AXIS", u"", u"/r/up::x", "up::x"},
    {XPath::MISSING_CLOSING_BRACKET_AFTER_PREDICATE, "MISSING CLOSING BRACKET AFTER PREDICATE", u"", u"/r/x[n", "[n"},
    {XPath::MISSING_CLOSING_PARENTHESE_AFTER_FUNCTION, "MISSING CLOSING PARENTHESE AFTER FUNCTION", u"", u"last(",
     "last("},
    {XPath::MISSING_OPENING_PARENTHESE_AFTER_FUNCTION, "MISSING OPENING PARENTHESE AFTER FUNCTION", u"", u"last)",
     "last)"},
    {XPath::MISSING_CLOSING_PARENTHESE_AFTER_KIND_TEST, "MISSING CLOSING PARENTHESE AFTER KIND TEST", u"", u"/r/text(",
     "text("},
    {XPath::MISSING_OPENING_PARENTHESE_AFTER_KIND_TEST, "MISSING OPENING PARENTHESE AFTER KIND TEST", u"", u"/r/nodes",
     "nodes"},
    {XPath::CONTEXT_IS_NOT_A_NODE, "CONTEXT IS NOT A NODE", u"1 + 1", u"x", nullptr},
    {XPath::EXPRESSION_NESTED_TOO_DEEPLY, "EXPRESSION NESTED TOO DEEPLY", u"", kTooDeep.c_str(), nullptr},
};

// Puts a text in the place of an installed one while it lives.
class TextReplaced {
public:
    TextReplaced(const std::string& name, const Uni16String& text)
        : key("xpat/xerr/" + name), before(Localization::GetString(key, "XPath", {})) {
        Localization::SetString(key, "XPath", text);
    }
    ~TextReplaced() { Localization::SetString(key, "XPath", before); }
    TextReplaced(const TextReplaced&) = delete;
    TextReplaced& operator=(const TextReplaced&) = delete;

private:
    std::string key;
    Uni16String before;
};

TEST(XPathTest, NamesEachErrorByItsTextAndMostWithThePartOfThePathThatCausedIt) {
    const Tree tree(kText);
    for (const ErrorCase& c : kErrors) {
        SCOPED_TRACE(c.key);
        XPath query(tree.document());
        if (*c.before != u'\0') query.GetValues(c.before);
        query.GetValues(c.path);
        EXPECT_EQ(query.GetErrorCode(), c.code);
        const Uni16String installed =
            Localization::GetString(std::string("xpat/xerr/") + c.key, "XPath", u"not installed");
        const std::string expected = narrow(installed) + (c.suffix == nullptr ? "" : std::string(" --> ") + c.suffix);
        EXPECT_EQ(narrow(query.GetErrorString()), expected);
        EXPECT_EQ(narrow(query.GetErrorString()), expected) << "asking for the text changes nothing";
    }
}

TEST(XPathTest, TakesTheTextsOfErrorsFromThePlatformLayerWhenAsked) {
    const Tree tree(kText);
    for (const ErrorCase& c : kErrors) {
        SCOPED_TRACE(c.key);
        XPath query(tree.document());
        if (*c.before != u'\0') query.GetValues(c.before);
        query.GetValues(c.path);
        const Uni16String installed = query.GetErrorString();
        const std::string suffix = c.suffix == nullptr ? "" : std::string(" --> ") + c.suffix;
        {
            const TextReplaced replaced(c.key, u"Fehl\u00E9r");
            EXPECT_EQ(narrow(query.GetErrorString()), "Fehl\xC3\xA9r" + suffix);
        }
        {
            const TextReplaced replaced(c.key, u"");
            EXPECT_EQ(narrow(query.GetErrorString()), suffix);
        }
        EXPECT_EQ(narrow(query.GetErrorString()), narrow(installed));
    }
}

TEST(XPathTest, NumbersItsErrorCodesInTheOrderOfTheirTexts) {
    EXPECT_EQ(static_cast<int>(XPath::NONE), 0);
    EXPECT_EQ(static_cast<int>(XPath::NODE_CONTAINS_NO_DATA), 3);
    EXPECT_EQ(static_cast<int>(XPath::ILLEGAL_CHAR_AFTER_ATTRIBUTEVALUE), 6);
    EXPECT_EQ(static_cast<int>(XPath::NO_VALID_ATTRIBUTE_NAME), 11);
    EXPECT_EQ(static_cast<int>(XPath::NO_VALID_INITIAL_AXIS), 16);
    EXPECT_EQ(static_cast<int>(XPath::NO_VALID_COMPARISON_OPERATOR), 17);
    EXPECT_EQ(static_cast<int>(XPath::MISSING_QUOTE_BEFORE_ATTRIBUTE_VALUE), 18);
    EXPECT_EQ(static_cast<int>(XPath::MISSING_QUOTE_AFTER_ATTRIBUTE_VALUE), 19);
    EXPECT_EQ(static_cast<int>(XPath::FIRST_LAST_OR_NUMBER_AFTER_POSITION_EXPECTED), 25);
    EXPECT_EQ(static_cast<int>(XPath::CONTEXT_IS_NOT_A_NODE), 26);
    EXPECT_EQ(static_cast<int>(XPath::EXPRESSION_NESTED_TOO_DEEPLY), 27);
    EXPECT_EQ(static_cast<int>(XPath::EXPRESSION_TOO_COSTLY), 28);
}

// One operation of a chain and what the query holds after it.
struct Operation {
    enum Kind { Values, Value, Find, Syntax, Index } kind;
    const char16_t* path;
    const char* results;
    const char* error;
};

TEST(XPathTest, ResetsTheErrorOfBeforeWhereItSaysSoAndOnlyThere) {
    const Tree tree("<r i='r'><x i='x1'><y i='y1'/></x><x i='x2'/></r>");
    using Op = Operation;
    struct Case {
        const char* name;
        std::vector<Operation> operations;
    } const kCases[] = {
        {"GetValues resets", {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Values, u"/r", "r", ""}}},
        {"GetValue by path resets", {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Value, u"/r", "r", ""}}},
        {"GetValues resets also where it fails anew without a code",
         {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Values, u"/r/1", "", ""}}},
        {"SyntaxOK resets", {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Syntax, u"/r", "", ""}}},
        {"and leaves its own error", {{Op::Values, u"/r", "r", ""}, {Op::Syntax, u"/r/", "r", "14: r/"}}},
        {"which GetValues resets", {{Op::Syntax, u"/r/", "/", "14: r/"}, {Op::Values, u"/r", "r", ""}}},
        {"FindNodes resets no error of syntax",
         {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Find, u"/r", "r", "14: x/"}, {Op::Find, u"x", "x1 x2", "14: x/"}}},
        {"nor puts a step that finds nothing in its place",
         {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Find, u"/r/nope", "", "14: x/"}}},
        {"but another error", {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Find, u"/r/a::b", "", "15: a::b"}}},
        {"a failure without a code leaves the code of before",
         {{Op::Values, u"/r/x/", "", "14: x/"}, {Op::Find, u"/r/1", "", "14: x/"}}},
        {"a step that finds something takes back that another found nothing",
         {{Op::Values, u"/r/nope", "", "2: nope"}, {Op::Find, u"/r", "r", ""}}},
        {"the deeper of two steps without nodes stays named",
         {{Op::Values, u"/r/x/nope", "", "2: nope"}, {Op::Find, u"/zip", "", "2: nope"}}},
        {"unless a step before the new one found something",
         {{Op::Values, u"/r/x/nope", "", "2: nope"}, {Op::Find, u"/r/zip", "", "2: zip"}}},
        {"a document's node alone is found without a step",
         {{Op::Values, u"/r/nope", "", "2: nope"}, {Op::Find, u"/", "/", "2: nope"}}},
        {"the index resets the code",
         {{Op::Values, u"/r/x", "x1 x2", ""}, {Op::Values, u"y", "y1", "2: y"}, {Op::Index, nullptr, "y1", ""}}},
        {"but not the depth",
         {{Op::Values, u"/r/x", "x1 x2", ""},
          {Op::Values, u"y", "y1", "2: y"},
          {Op::Index, nullptr, "y1", ""},
          {Op::Find, u"nope", "", ""}}},
        {"which a step found before one that cannot be read takes back",
         {{Op::Values, u"//*", "r x1 x2 y1", ""},
          {Op::Find, u"*", "x1 x2 y1", "2: *"},
          {Op::Find, u"../a::b", "", "15: a::b"},
          {Op::Find, u"/r/x", "x1 x2", "15: a::b"},
          {Op::Index, nullptr, "x1 x2", ""},
          {Op::Find, u"nope", "", "2: nope"}}},
        {"but not one that cannot be read itself",
         {{Op::Values, u"//*", "r x1 x2 y1", ""},
          {Op::Find, u"*", "x1 x2 y1", "2: *"},
          {Op::Find, u"a::b/..", "", "15: a::b"},
          {Op::Find, u"/r/x", "x1 x2", "15: a::b"},
          {Op::Index, nullptr, "x1 x2", ""},
          {Op::Find, u"nope", "", ""}}},
        {"an index that is not there is an error that steps leave alone",
         {{Op::Values, u"/r/nope", "", "2: nope"}, {Op::Index, nullptr, "", "1"}, {Op::Find, u"/r/x", "x1 x2", "1"}}},
        {"after SyntaxOK FindNodes only checks",
         {{Op::Values, u"/r/x", "x1 x2", ""},
          {Op::Syntax, u"/r", "x1 x2", ""},
          {Op::Find, u"/r", "x1 x2", ""},
          {Op::Find, u"/", "x1 x2", ""},
          {Op::Find, u"nope", "x1 x2", ""},
          {Op::Find, u"", "x1 x2", "5"},
          {Op::Find, u"/r/", "x1 x2", "14: r/"},
          {Op::Index, nullptr, "x1 x2", ""},
          {Op::Find, u"y", "x1 x2", ""}}},
        {"until GetValues is called",
         {{Op::Syntax, u"/r", "/", ""}, {Op::Values, u"/r/x", "x1 x2", ""}, {Op::Find, u"y", "y1", "2: y"}}},
        {"or GetValue with a path",
         {{Op::Syntax, u"/r", "/", ""}, {Op::Value, u"/r", "r", ""}, {Op::Find, u"x", "x1 x2", ""}}},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        XPath query(tree.document());
        for (std::size_t i = 0; i < c.operations.size(); ++i) {
            const Operation& operation = c.operations[i];
            SCOPED_TRACE(i);
            switch (operation.kind) {
            case Op::Values: query.GetValues(operation.path); break;
            case Op::Value: query.GetValue(operation.path, -1); break;
            case Op::Find: query.FindNodes(operation.path); break;
            case Op::Syntax: query.SyntaxOK(operation.path); break;
            case Op::Index: query.GetValue(0u, -1); break;
            }
            EXPECT_EQ(resultsOf(query), operation.results);
            EXPECT_EQ(errorIn(query), operation.error);
        }
    }
}

TEST(XPathTest, LeavesTheResultsAloneWhereItOnlyChecks) {
    const Tree tree(kText);
    struct Case {
        const char16_t* path;
        const char* verdict;
    } const kCases[] = {
        {u"/r", "ok"},         {u"/", "ok"},
        {u"n", "ok"},          {u"nope/nope", "ok"},
        {u"//nope[@a]", "ok"}, {u"1 + 1", "ok"},
        {u"'a' = 'b'", "ok"},  {u"x[last()]", "ok"},
        {u"", "failed 5"},     {u"/r/", "failed 14: r/"},
        {u"/1", "failed 0"},   {u"x[12a]", "failed 9: 12a"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(narrow(c.path));
        EXPECT_EQ(syntax(tree.document(), c.path), c.verdict);
        EXPECT_EQ(syntax(tree.document(), c.path, u"/r/x"), c.verdict);
        EXPECT_EQ(syntax(tree["n1"], c.path, u"/r/x/@w"), c.verdict);
        EXPECT_EQ(syntax(tree["n1"], c.path, u"1 + 1"), c.verdict);

        XPath query(tree.document());
        query.GetValues(u"/r/x");
        query.SyntaxOK(c.path);
        EXPECT_EQ(query.GetValues(u"n"), 2u) << "they are still the context";
    }
}

TEST(XPathTest, ChecksPathsOverANodeOutsideADocument) {
    Outside outside;
    for (const char16_t* path : {u"x", u"nope/x[y]", u"/r/nope"}) EXPECT_EQ(syntax(&outside.element, path), "ok");
    EXPECT_EQ(syntax(&outside.element, u"x/"), "failed 14: x/");
    EXPECT_EQ(syntax(&outside.element, u""), "failed 5");
}

TEST(XPathTest, CopiesOfAResultTheFieldThatItsKindSelectsAndNoOther) {
    Element element("e");
    XPath::ResultItem whole;
    EXPECT_EQ(whole.contextTag, -1);
    EXPECT_EQ(whole.kind, 0);
    EXPECT_EQ(whole.node, nullptr);
    whole.contextTag = 4;
    whole.node = &element;
    whole.string = u"text";
    whole.number = 2.5;
    whole.boolean = true;
    for (std::int32_t kind = 0; kind < 4; ++kind) {
        SCOPED_TRACE(kind);
        whole.kind = kind;
        const XPath::ResultItem constructed(whole);
        XPath::ResultItem assigned;
        assigned = whole;
        for (const XPath::ResultItem* copy : {&constructed, static_cast<const XPath::ResultItem*>(&assigned)}) {
            EXPECT_EQ(copy->contextTag, 4);
            EXPECT_EQ(copy->kind, kind);
            EXPECT_EQ(copy->node, kind == 0 ? &element : nullptr);
            EXPECT_EQ(copy->string, kind == 1 ? u"text" : u"");
            EXPECT_EQ(copy->number, kind == 2 ? 2.5 : 0.0);
            EXPECT_EQ(copy->boolean, kind == 3);
        }
        XPath::ResultItem& self = assigned;
        assigned = self;
        EXPECT_EQ(assigned.string, kind == 1 ? u"text" : u"");
        EXPECT_EQ(assigned.contextTag, 4);
    }
}

TEST(XPathTest, ShowsOfAResultTheFieldOfItsKind) {
    const Tree tree(kText);
    XPath query(tree.document());
    ASSERT_EQ(query.GetValues(u"/r/x"), 2u);
    EXPECT_EQ(query.GetResult(0).node, tree["x1"]);
    EXPECT_EQ(query.GetResult(1).node, tree["x2"]);
    EXPECT_EQ(query.GetResult(0).node, tree["x1"]) << "in any order, as often as one likes";
    EXPECT_EQ(query.GetResult(0).string, u"");

    ASSERT_EQ(query.GetValues(u"'text'"), 1u);
    EXPECT_EQ(query.GetResult(0).kind, 1);
    EXPECT_EQ(query.GetResult(0).string, u"text");
    EXPECT_EQ(query.GetResult(0).node, nullptr);

    ASSERT_EQ(query.GetValues(u"2.5"), 1u);
    EXPECT_EQ(query.GetResult(0).kind, 2);
    EXPECT_EQ(query.GetResult(0).number, 2.5);
    EXPECT_EQ(query.GetResult(0).node, nullptr);
}

TEST(XPathTest, OnlyReadsTheTreeAndMindsNoOtherQueryOverIt) {
    const Tree tree(kText);
    const std::string before = dump(tree.document());
    MessageCollector diagnostics;
    XPath first(tree.document());
    XPath second(tree["x1"]);
    EXPECT_EQ(first.GetValues(u"//n[position() = 2]/ancestor::*[@w]"), 1u);
    EXPECT_EQ(second.GetValues(u"nope/"), 0u);
    EXPECT_EQ(resultsOf(first), "x1");
    EXPECT_EQ(errorIn(first), "");
    EXPECT_EQ(errorIn(second), "14: nope/");
    EXPECT_EQ(first.GetValues(u"//text()[. = 'after']/preceding::*/.."), 6u);
    for (const char16_t* path : {u"self::*", u"ancestor::*", u"//@*", u"//*[text() < 2]", u"/r/following::*"})
        first.GetValues(path);
    EXPECT_EQ(dump(tree.document()), before);
    EXPECT_TRUE(diagnostics.texts().empty()) << diagnostics.texts().front();
}

TEST(XPathTest, SeesTheTreeAsItIsWhenAsked) {
    const Tree tree("<r i='r'/>");
    XPath query(tree.document());
    EXPECT_EQ(query.GetValues(u"/r/x"), 0u);
    tree.root()->addElement("x", DataHolder("new"));
    EXPECT_EQ(narrow(query.GetValue(u"/r/x", -1)), "new");
    delete tree.document()->extractRoot();
    EXPECT_EQ(query.GetValues(u"/r"), 0u);
    EXPECT_EQ(errorIn(query), "2: r");
    EXPECT_EQ(query.GetValues(u"/"), 1u);
}

TEST(XPathTest, FindsTheDocumentAloneInADocumentWithoutARoot) {
    Document document(nullptr, nullptr);
    const PathCase kCases[] = {
        {"itself", u"/", "/"},
        {"no root", u"/*", "| 2: *"},
        {"nothing anywhere", u"//r", "| 2: r"},
        {"itself below and here", u"//.", "/"},
        {"nothing before", u"preceding::*", "| 2: preceding::*"},
        {"nothing after", u"following::*", "| 2: following::*"},
        {"numbers", u"1 + 1", "2#-1"},
    };
    expectAnswers(&document, kCases);
}

}  // namespace

}  // namespace Xml::test
