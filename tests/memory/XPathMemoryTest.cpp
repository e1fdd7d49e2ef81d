// Path queries while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "orvsys/Uni16.h"
#include "support/Places.h"
#include "support/QueriesFromHeap.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

namespace Xml::test {

namespace {

struct Query {
    OrvSys::Uni16String context;  // asked before, from the document
    OrvSys::Uni16String path;
};

// The cells of a row of a table.
std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream row(line);
    for (std::string cell; std::getline(row, cell, '|');) {
        const std::size_t begin = cell.find('`');
        const std::size_t end = cell.find('`', begin + 1);
        const std::string code = end < cell.size() ? cell.substr(begin + 1, end - begin - 1) : "";
        cells.push_back(!code.empty() ? code : cell.substr(0, cell.find_last_not_of(' ') + 1));
    }
    return cells;
}

// The lines between the first line that is `begin` and the next that is `end`.
std::string blockOf(const std::string& begin, const std::string& end, std::istream& page) {
    std::string text;
    std::string line;
    while (std::getline(page, line) && line != begin) continue;
    while (std::getline(page, line) && line != end) text += line + "\n";
    return text;
}

std::istringstream openPage() { return std::istringstream(readFile(sourceFolder() + "/docs/paths.md")); }

// All paths of the page of the language, each error among them.
std::vector<Query> queriesOfThePage() {
    std::istringstream page = openPage();
    std::vector<Query> queries;
    std::vector<std::string> header;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind('|', 0) != 0) {
            header.clear();
            continue;
        }
        const auto cells = cellsOf(line);
        if (header.empty()) {
            header = cells;
            continue;
        }
        const auto cellUnder = [&](const std::string& column) {
            const auto place = static_cast<std::size_t>(
                std::find_if(header.begin(), header.end(), [&](const auto& h) { return h.find(column) == 1; }) -
                header.begin());
            return place < cells.size() && line.rfind("|---", 0) != 0 ? cells[place] : std::string();
        };
        const std::string path = cellUnder("path");
        if (!path.empty() && path.rfind("GetValue(", 0) != 0)
            queries.push_back({OrvSys::UTF8ToUni16Char(cellUnder("context")), OrvSys::UTF8ToUni16Char(path)});
    }
    return queries;
}

// Beside those: what needs more memory than the small tree of the page asks for, and what it has no example of.
const Query kMoreQueries[] = {

    {u"", u"'a literal that is longer than any string holds'"},
    {u"", u"'\U0001F331 and \u00e9 in a literal that is longer than any string holds' = //pea"},
    {u"", u"//*[.//*[..//*[@id > 2][position() > 1]]]"},
    {u"//*", u"ancestor-or-self::*"},
    {u"//*", u"preceding::*"},
    {u"//*", u"following::*[position() > 2]"},
    {u"//*", u"preceding-sibling::*"},
    {u"//*", u"..//@id"},
    {u"//*", u"@id * 2 + @id div 3"},
    {u"//*", u"@id = ..//@id"},
    {u"//bed", u"*/@id != .//*/@id"},
    {u"//bed", u".//* = .//*"},
    {u"//pea[position() < 3]", u"/garden//pea[@n > 2]/@n"},
    {u"", u"//a-name-of-an-element-that-is-not-there-at-all/and-one-more"},
    {u"", u"//a-name-of-an-element-that-is-not-there-at-all[@and-one-more = 'value']"},
    {u"", u"//pea[@n = 'value that is not closed at all]"},
    {u"", u"//pea[@n = 3][@this-one-is-not-closed"},
    {u"", u"//pea[@n = 3]this-is-behind-the-predicate"},
    {u"", u"  "},
    {u"", OrvSys::Uni16String(1'001, u'[')},
};

std::string textOf(const OrvSys::Uni16String& text) { return OrvSys::Uni16CharToPlatformCString(text); }

// What a query has to say: its results as they are, and the error.
struct Answer {
    std::string results;
    std::string error;
};

Answer answerOf(XPath& query) {
    std::ostringstream results;
    for (unsigned i = 0; i < query.GetNrOfResults(); ++i) {
        const XPath::ResultItem& item = query.GetResult(i);
        results << item.kind << " " << item.contextTag << " " << (item.node != nullptr ? dump(item.node) : "-") << " "
                << textOf(item.string) << " " << item.number << " " << item.boolean << "\n";
    }
    return {results.str(), std::to_string(query.GetErrorCode()) + " " + textOf(query.GetErrorString())};
}

class XPathMemoryTest : public ::testing::Test {
protected:
    XPathMemoryTest() {
        std::istringstream page = openPage();
        document = documentOf(blockOf("```xml", "```", page));
        queries = queriesOfThePage();
        queries.insert(queries.end(), std::begin(kMoreQueries), std::end(kMoreQueries));
    }

    // Asks for the context of a query, whatever comes of it.
    void goTo(XPath& query, const Query& asked) const {
        if (!asked.context.empty()) query.GetValues(asked.context);
    }

    std::unique_ptr<Document> document;
    std::vector<Query> queries;
    QueriesFromHeap fromHeap;
};

}  // namespace

TEST_F(XPathMemoryTest, AQueryThatCouldNotBeAnsweredIsAnsweredTheNextTime) {
    EXPECT_GT(queries.size(), 200U);
    const std::string tree = dump(document.get());
    ASSERT_NE(tree, "null");
    for (const auto& asked : queries) {
        SCOPED_TRACE(textOf(asked.context) + " then " + textOf(asked.path).substr(0, 80));
        Answer expected;
        {
            XPath query(document.get());
            goTo(query, asked);
            query.GetValues(asked.path);
            expected = answerOf(query);
        }
        forEachFailingAllocation([&](Attempt& attempt) {
            XPath query(document.get());
            goTo(query, asked);
            const Answer before = answerOf(query);
            if (!attempt([&] { query.GetValues(asked.path); })) {
                // Never half of an answer, nor the code of one error with the text of another.
                const Answer now = answerOf(query);
                EXPECT_TRUE(now.results.empty() || now.results == before.results || now.results == expected.results)
                    << now.results;
                EXPECT_TRUE(now.error == "0 No error occurred" || now.error == before.error ||
                            now.error == expected.error)
                    << now.error;
                query.GetValues(u"/");
                goTo(query, asked);
                query.GetValues(asked.path);
            }
            const Answer answer = answerOf(query);
            EXPECT_EQ(answer.results, expected.results);
            EXPECT_EQ(answer.error, expected.error);
        });
    }
    EXPECT_EQ(dump(document.get()), tree);
    expectUsable(*document);
}

// As queries are made: what is short is taken apart without the heap.
TEST_F(XPathMemoryTest, ALongPathThatCouldNotBeTakenApartIsTakenApartTheNextTime) {
    QueryMemory::isFromHeap = false;
    OrvSys::Uni16String path = u"//pea";
    for (int i = 0; i < 50; ++i) path += u"[ @n != 'a text that is nowhere' ]/../pea[ position() > 0 ]";
    XPath whole(document.get());
    whole.GetValues(path);
    const Answer expected = answerOf(whole);
    EXPECT_EQ(whole.GetNrOfResults(), 4U);
    forEachFailingAllocation([&](Attempt& attempt) {
        XPath query(document.get());
        if (!attempt([&] { query.GetValues(path); })) query.GetValues(path);
        const Answer answer = answerOf(query);
        EXPECT_EQ(answer.results, expected.results);
        EXPECT_EQ(answer.error, expected.error);
    });
}

TEST_F(XPathMemoryTest, ACheckThatCouldNotBeMadeLeavesTheResults) {
    for (const auto& asked : queries) {
        SCOPED_TRACE(textOf(asked.path).substr(0, 80));
        const OrvSys::Uni16String before = u"//pea/@n + 1";
        XPath whole(document.get());
        whole.GetValues(before);
        const bool expected = whole.SyntaxOK(asked.path);
        forEachFailingAllocation([&](Attempt& attempt) {
            XPath query(document.get());
            query.GetValues(before);
            bool ok = !expected;
            if (!attempt([&] { ok = query.SyntaxOK(asked.path); })) ok = query.SyntaxOK(asked.path);
            EXPECT_EQ(ok, expected);
            EXPECT_EQ(query.GetNrOfResults(), 4U);
            EXPECT_EQ(query.GetResult(1).number, 13);
        });
    }
}

TEST_F(XPathMemoryTest, NoTextOfAResultIsWrongForLackOfMemory) {
    document->getRoot()->addElement("long", kLong + " & more");
    document->getRoot()->setAttribute("sun-and-shade", "full-sun-for-the-whole-day and-shade-for-the-whole-night");
    const std::string more = kLong + " & more";
    using Ask = std::function<OrvSys::Uni16String(XPath&)>;
    struct Case {
        const char* name;
        OrvSys::Uni16String path;  // asked before
        Ask ask;
        std::string expected;
    };
    const Case kCases[] = {
        {"by path", u"/", [](XPath& query) { return query.GetValue(u"//long", -1); }, more},
        {"of an element", u"//long", [](XPath& query) { return query.GetValue(0U, -1); }, more},
        {"of a node", u"//long", [](XPath& query) { return query.GetValue(query.GetResult(0).node); }, more},
        {"a word", u"/garden/@sun-and-shade", [](XPath& query) { return query.GetValue(0U, 1); },
         "and-shade-for-the-whole-night"},
        {"of a string", u"'a literal that is longer than any string holds'",
         [](XPath& query) { return query.GetValue(0U, -1); }, "a literal that is longer than any string holds"},
        {"of a number", u"1000000000 * 1000000000", [](XPath& query) { return query.GetValue(0U, -1); },
         "1000000000000000000.000000"},
        {"of an error", u"//no-such-element-anywhere", [](XPath& query) { return query.GetErrorString(); },
         "No node matches the path --> no-such-element-anywhere"},
        {"a result", u"//long/text()",
         [](XPath& query) {
             const XPath::ResultItem item = query.GetResult(0);
             return query.GetValue(item.node);
         },
         more},
        {"a copied result", u"'a literal that is longer than any string holds'",
         [](XPath& query) { return XPath::ResultItem(query.GetResult(0)).string; },
         "a literal that is longer than any string holds"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&](Attempt& attempt) {
            XPath query(document.get());
            query.FindNodes(c.path);
            OrvSys::Uni16String text;
            if (!attempt([&] { text = c.ask(query); })) text = c.ask(query);
            EXPECT_EQ(textOf(text), c.expected);
        });
    }
}

TEST_F(XPathMemoryTest, AQueryObjectThatCannotBeMadeLeavesNothingBehind) {
    forEachFailingAllocation([this](Attempt& attempt) {
        std::unique_ptr<XPath> query;
        if (attempt([&] { query = std::make_unique<XPath>(document->getRoot()); })) {
            EXPECT_EQ(query->GetNrOfResults(), 1U);
            EXPECT_EQ(query->GetResult(0).node, document->getRoot());
        }
    });
}

}  // namespace Xml::test
