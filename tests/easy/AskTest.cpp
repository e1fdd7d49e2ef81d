#include "xml/easy/Ask.h"

#include "support/Dice.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Trees.h"
#include "xml/easy/Values.h"
#include "xml/standard/Read.h"
#include "xml/xpath/XPath.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>

namespace Xml::test {
namespace {

std::unique_ptr<Document> garden() {
    ReadResult result = readText(
        "<garden><bed id='1' w='40g'><pea n='3'>green</pea><pea n='12'>sugar</pea><!--c--></bed>"
        "<gr\xC3\xB6\xC3\x9F"
        "e \xC3\xA4='\xE2\x82\xAC'><p:\xE4\xB8\xAD xmlns:p='u' n='7'/></gr\xC3\xB6\xC3\x9F"
        "e></garden>");
    EXPECT_TRUE(result) << result.message();
    return result.take();
}

// Names and values of what is found, the values that are made, or the problem.
std::string answer(const Object& from, const std::string& path) {
    const Selection<const Object> found = ask(from, path);
    if (found.problem()) {
        EXPECT_TRUE(found.empty());
        EXPECT_EQ(found.count(), 0u);
        EXPECT_EQ(found.text(0), "");
        return found.problem()->toString();
    }
    std::string text;
    for (std::size_t i = 0; i < found.count(); ++i) {
        const Object* const node = found.empty() ? nullptr : &found[i];
        if (i > 0) text += ' ';
        if (node == nullptr) {
            text += '"' + found.text(i) + '"';
        } else if (node->isDocument()) {
            text += '/';
        } else if (node->isAttribute()) {
            text += '@' + std::string(nameOf(*node)) + '=' + found.text(i);
        } else {
            text += node->isElement() ? std::string(nameOf(*node)) : '\'' + found.text(i) + '\'';
        }
    }
    return text;
}

TEST(AskTest, FindsWhatPathsDo) {
    const auto document = garden();
    const struct {
        const char* path;
        const char* answer;
    } kCases[] = {
        {"/", "/"},
        {"/garden/bed/pea/@n", "@n=3 @n=12"},
        {"//pea[@n = 12]", "pea"},
        {"//pea[. = 'sugar']/text()", "'sugar'"},
        {"/gar den / bed / @id", "@id=1"},
        {"//shed", ""},
        {"//pea[@n > 99]", ""},
        {"//pea/@n * 2", "\"6.000000\" \"24.000000\""},
        {"'text'", "\"text\""},
        {"1 = 2", ""},
        {"//gr\xC3\xB6\xC3\x9F"
         "e",
         "gr\xC3\xB6\xC3\x9F"
         "e"},
        {"//@\xC3\xA4", "@\xC3\xA4=\xE2\x82\xAC"},
        {"//*[@\xC3\xA4 = '\xE2\x82\xAC']",
         "gr\xC3\xB6\xC3\x9F"
         "e"},
        {"//*[@\xC3\xA4 = '\xE2\x82\xAD']", ""},
        {"//p:\xE4\xB8\xAD/@n", "@n=7"},
        {"//*:\xE4\xB8\xAD", "p:\xE4\xB8\xAD"},
        {"//p:*", "p:\xE4\xB8\xAD"},
        {"//element(p:\xE4\xB8\xAD)", "p:\xE4\xB8\xAD"},
        {"//gr\xC3\xB6\xC3\x9F", ""},
        {"//gr\xC3\xB6 \xC3\x9F"
         "e",
         "gr\xC3\xB6\xC3\x9F"
         "e"},
        {"//\xC4\xA0", ""},  // a letter, though its number ends as that of a blank
        {"'\xC4\xA0'", "\"\xC4\xA0\""},
        {"'it''s'", "\"it's\""},
        {"''''", "\"'\""},
        {"''", "\"\""},
        {"\"say \"\"hi\"\"\"", "\"say \"hi\"\""},
        {"//pea[position() = 2]", "pea"},
        {"//pea[or = and][ or/and - mod ][@or]", ""},
        {"//pea[@n  div 2 = 'a or b' ]", ""},
        {"/garden/or der", ""},
        {"//pea[last()]", "pea"},
        {"//pea[@n = //p:*/@n]", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(answer(*document, c.path), c.answer);
    }
}

TEST(AskTest, SaysWhereAPathIsWrong) {
    const auto document = garden();
    const std::string kName = "This is neither a valid name nor a valid node test: ";
    const std::string kNothing = "This is neither a step nor a literal nor a number";
    const std::string kMissing = "A step or an operand is missing";
    const std::string kWord = "Words are operators as eq, ne, le, lt, ge, gt, div between blanks only";
    const std::string kConstant =
        "A predicate keeps the nodes that it asks something of, and this one asks nothing of them";
    const struct {
        const char* path;
        std::string problem;  // after the line and ": error: "
    } kCases[] = {
        {"", "1:1: error: The path is empty"},
        {"  ", "1:1: error: The path is empty"},
        {"'pod", "1:1: error: The closing quote of a literal is missing"},
        {"//pea[. = \"pod]", "1:11: error: The closing quote of a literal is missing"},
        {"'pod's", "1:6: error: Nothing may follow a literal but an operator"},
        {"//pea[. = 'pod' x]", "1:17: error: Nothing may follow a literal but an operator"},
        {"//pea[. = 'a' and @n]", "1:15: error: Nothing may follow a literal but an operator"},
        {"'a'[1]", "1:4: error: Nothing may follow a literal but an operator"},
        {"2 =", "1:4: error: " + kMissing},
        {"= 2", "1:1: error: " + kMissing},
        {"//pea[]", "1:7: error: " + kMissing},
        {"//pea[/]", "1:8: error: " + kMissing},
        {"//pea[@n = ]", "1:12: error: " + kMissing},
        {"$x", "1:1: error: " + kNothing},
        {"-5", "1:1: error: " + kNothing},
        {"//pea[@n or @x]", "1:10: error: " + kWord},
        {"//pea[@n and x]", "1:10: error: " + kWord},
        {"//pea[ 2 mod @n ]", "1:10: error: " + kWord},
        {"//pea[@n eq 2 or(@x)]", "1:15: error: " + kWord},
        {"//pea[@n\tdiv 2 = 1]", "1:10: error: " + kWord},
        {"//pea[. = 'a or b'][@n \n  or]", "2:3: error: " + kWord},
        {"//gr\xC3\xBC and x", "1:7: error: " + kWord},
        {"//7up", "1:3: error: " + kNothing},
        {"/shed/7up", "1:7: error: " + kNothing},
        {"(//pea)[1]", "1:1: error: This is neither a step nor a literal nor a number"},
        {"//pea[2]", "1:7: error: " + kConstant},
        {"//shed[2]", "1:8: error: " + kConstant},
        {"//pea['x']", "1:7: error: " + kConstant},
        {"//pea[1 = 1]", "1:7: error: " + kConstant},
        {"//pea[1 + 1]", "1:7: error: " + kConstant},
        {"//pea[//bed]", "1:7: error: " + kConstant},
        {"//pea[//bed = 'x']", "1:7: error: " + kConstant},
        {"//bed[pea[1]]", "1:11: error: " + kConstant},
        {"//pea[ @n ][ 2 ]", "1:14: error: " + kConstant},
        {"//*x", "1:3: error: " + kName + "*x"},
        {"/shed/*x", "1:7: error: " + kName + "*x"},
        {"/shed[*x]", "1:7: error: " + kName + "*x"},
        {"/garden/foo::bed", "1:9: error: This is not a valid axis: foo::bed"},
        {"//nodes", "1:3: error: The opening parenthesis of a kind test is missing: nodes"},
        {"//pea[", "1:6: error: The closing bracket of a predicate is missing"},
        {"//pea[@n[. = 1]", "1:6: error: The closing bracket of a predicate is missing"},
        {"//pea]", "1:6: error: This bracket closes nothing"},
        {"//pea[']']]", "1:11: error: This bracket closes nothing"},
        {"//", "1:3: error: A path must not end with a double slash: //"},
        {"garden/", "1:1: error: A path must not end with a slash: garden/"},
        {"12a", "1:1: error: A number contains an illegal character: 12a"},
        {"//\xC3\x97", "1:3: error: This character belongs to no name, and stands in no literal"},
        {"//\xC3\xB6[. = \xC2\xA0'x']", "1:9: error: This character belongs to no name, and stands in no literal"},
        {"//\xC2\xB7x", "1:3: error: This is no name of XML"},
        {"//p:\xC2\xB7", "1:3: error: This is no name of XML"},
        {"//\xC3\xB6/*:\xC2\xB7", "1:5: error: This is no name of XML"},
        {"//\xFF", "1:3: error: This is not UTF-8"},
        {"'\xC3", "1:2: error: This is not UTF-8"},
        {"//pea\n[@n = 3]\n[2]", "3:2: error: " + kConstant},
        {"'\xC3\xB6' x", "1:5: error: Nothing may follow a literal but an operator"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(answer(*document, c.path), c.problem);
    }
    const auto found = ask(*document, "//\xC3\xB6[. = 'x'][2]");
    ASSERT_TRUE(found.problem());
    EXPECT_EQ(found.problem()->kind, Problem::Kind::BadPath);
    EXPECT_EQ(found.problem()->place.offset, 14);
    EXPECT_EQ(found.problem()->place.column, 14);
    EXPECT_EQ(found.problem()->excerpt, "//\xC3\xB6[. = 'x'][2]\n             ^");
}

TEST(AskTest, WhatIsTooMuchIsALimit) {
    const auto document = garden();
    std::string nested = "//pea";
    for (int i = 0; i < 1001; ++i) nested += "[pea";
    nested += std::string(1001, ']');
    ASSERT_TRUE(ask(*document, nested).problem());
    EXPECT_EQ(ask(*document, nested).problem()->kind, Problem::Kind::Limit);
    XPath::setWorkLimit(1);
    const auto found = ask(*document, "//pea");
    XPath::setWorkLimit(0);
    ASSERT_TRUE(found.problem());
    EXPECT_EQ(found.problem()->kind, Problem::Kind::Limit);
    EXPECT_EQ(found.problem()->text, "The expression is too costly");
    EXPECT_EQ(ask(*document, "//pea").size(), 2u);
}

TEST(AskTest, PartsOfTreesAndTreesWithoutDocumentAreAsked) {
    const auto document = garden();
    Element& bed = *document->getRoot()->getElement(0);
    EXPECT_EQ(answer(bed, "pea/@n"), "@n=3 @n=12");
    EXPECT_EQ(answer(bed, "/garden/bed/@id"), "@id=1");
    EXPECT_EQ(answer(*bed.getAttribute("id"), ".."), "bed");
    EXPECT_EQ(answer(*bed.getElement(0)->getChild(0), "."), "'green'");
    const auto part = detach(bed);
    EXPECT_EQ(answer(*part, "pea/@n"), "@n=3 @n=12");
    EXPECT_EQ(answer(*part, "/bed/pea[@n = 3]"), "pea");
    EXPECT_EQ(answer(*part, "/pea"), "");
    EXPECT_EQ(answer(*part, "//pea"), "pea pea");
    EXPECT_EQ(answer(*part->getElement(1), "/bed/@id"), "@id=1");
    EXPECT_EQ(answer(*part->getElement(1), "preceding::*"), "pea 'green'");
    EXPECT_EQ(answer(*part->getElement(0), "following::pea"), "pea");
    EXPECT_EQ(answer(*part->getElement(0), "ancestor::*"), "bed");
    // There is no document to be found.
    EXPECT_EQ(answer(*part, "/"), "");
    EXPECT_EQ(answer(*part, ".."), "");
    EXPECT_EQ(answer(*part, "//node()[@id]"), "bed");
    EXPECT_EQ(answer(*part, "/descendant-or-self::document-node()"), "");
    EXPECT_EQ(part->getParent(), nullptr);

    CharData text("alone");
    EXPECT_EQ(answer(text, "."), "'alone'");
    EXPECT_EQ(answer(text, "//*"), "");
    EXPECT_EQ(answer(Attribute("k", "v"), "."), "@k=v");
    EXPECT_EQ(answer(Document(nullptr, nullptr), "//*"), "");
    EXPECT_EQ(answer(Document(nullptr, nullptr), "/"), "/");
}

TEST(AskTest, GivesNodesOfTheTypeThatItIsAskedFrom) {
    const auto document = garden();
    static_assert(std::is_same_v<decltype(ask(*document, "/")), Selection<Object>>);
    static_assert(
        std::is_same_v<decltype(ask(static_cast<const Element&>(*document->getRoot()), "/")), Selection<const Object>>);
    static_assert(std::is_base_of_v<Range<Object>, Selection<Object>>);
    for (Object& pea : ask(*document, "//pea")) setValue(*asElement(pea), "n", 5);
    EXPECT_EQ(answer(*document, "//pea/@n"), "@n=5 @n=5");
    EXPECT_EQ(ask(*document, "//bed").text(0), "greensugar");
    EXPECT_EQ(ask(*document, "//bed").text(1), "");
    EXPECT_EQ(ask(*document, "//pea/@n * 2").count(), 2u);
    EXPECT_TRUE(ask(*document, "//pea/@n * 2").empty());
}

TEST(AskTest, LiteralsHoldAnyText) {
    EXPECT_EQ(literal("x"), "'x'");
    EXPECT_EQ(literal(""), "''");
    EXPECT_EQ(literal("it's"), "\"it's\"");
    EXPECT_EQ(literal("say \"hi\""), "'say \"hi\"'");
    EXPECT_EQ(literal("it's \"x\""), "\"it's \"\"x\"\"\"");
    Dice dice(11);
    const char* const kPieces[] = {
        "'", "\"", "''", "\"\"", "x", "]", "[", " = ", "\xC3\xB6", "\n", "/", "&amp;", "\xF0\x9F\x98\x80", "\xC4\xA7"};
    const auto document = makeDocument("r");
    Element& element = append(*document->getRoot(), "a");
    append(*document->getRoot(), "a");
    for (int round = 0; round < rounds(3000); ++round) {
        std::string text;
        for (std::size_t i = dice.below(6); i-- > 0;) text += dice.any(kPieces);
        setValue(element, "k", text);
        setText(element, text);
        const auto found = ask(*document, "//a[@k = " + literal(text) + "][@k]");
        ASSERT_FALSE(found.problem()) << text << found.problem()->toString();
        ASSERT_EQ(found.first(), &element) << text;
        ASSERT_EQ(found.size(), 1u);
        ASSERT_EQ(ask(*document, literal(text)).text(0), text);
        ASSERT_TRUE(ask(*document, "//a[@k = " + literal(text + "x") + "]").empty());
    }
}

}  // namespace
}  // namespace Xml::test
