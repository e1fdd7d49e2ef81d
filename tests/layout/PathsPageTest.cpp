// Reads docs/paths.md and does what it says. Every table of the page has a column `path` and a column `result`, and
// each of its rows is a case; the notation of results is explained at the top of the page.
#include "orvsys/Localization.h"
#include "orvsys/Uni16.h"
#include "support/Messages.h"
#include "support/Pattern.h"
#include "support/Places.h"
#include "support/Sources.h"
#include "support/Tables.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

// --- The page ---

// One row of a table: its cells by the header of their column.
struct Row {
    std::size_t line = 0;
    std::map<std::string, std::string> cells;

    bool has(const std::string& column) const {
        const auto cell = cells.find(column);
        return cell != cells.end() && !cell->second.empty();
    }
    const std::string& operator[](const std::string& column) const { return cells.at(column); }
};

struct Table {
    std::size_t line = 0;
    std::vector<std::string> header;
    std::vector<Row> rows;

    bool has(const std::string& column) const {
        return std::find(header.begin(), header.end(), column) != header.end();
    }
};

struct Page {
    std::vector<Table> tables;
    std::map<std::string, std::vector<std::string>> blocks;  // of code, by their language; the first of each

    const Table& tableWith(const std::string& column) const {
        const auto table = std::find_if(tables.begin(), tables.end(), [&](const Table& t) { return t.has(column); });
        if (table == tables.end()) throw std::runtime_error("no table with a column " + column);
        return *table;
    }
};

Page readPage() {
    Page page;
    std::istringstream text(readFile(sourceFolder() + "/docs/paths.md"));
    bool inTable = false;
    bool inBlock = false;
    std::vector<std::string> unused;
    std::vector<std::string>* block = &unused;
    std::size_t number = 0;
    for (std::string line; std::getline(text, line);) {
        ++number;
        if (line.rfind("```", 0) == 0) {
            inBlock = !inBlock;
            const std::string language = line.substr(3);
            block = inBlock && page.blocks.count(language) == 0 ? &page.blocks[language] : &unused;
            continue;
        }
        if (inBlock) {
            block->push_back(line);
            continue;
        }
        if (line.rfind('|', 0) != 0) {
            inTable = false;
        } else if (!inTable) {
            inTable = true;
            page.tables.push_back({number, cellsOf(line), {}});
        } else if (line.rfind("|---", 0) != 0) {
            Table& table = page.tables.back();
            const std::vector<std::string> cells = cellsOf(line);
            if (cells.size() != table.header.size())
                throw std::runtime_error("line " + std::to_string(number) + " has not the cells of its table");
            Row row;
            row.line = number;
            for (std::size_t i = 0; i < cells.size(); ++i) row.cells[table.header[i]] = cells[i];
            table.rows.push_back(row);
        }
    }
    return page;
}

const Page& page() {
    static const Page thePage = readPage();
    return thePage;
}

// The code that a cell begins with, without its quotes, repeated where the cell says how often: `[` 1,001 times.
std::string codeIn(const std::string& cell) {
    static const Pattern form("`([^`]+)`(?: ([0-9,]+) times)?.*");
    const Pattern::Groups parts = form.match(cell);
    if (parts.empty()) throw std::runtime_error("no code in the cell: " + cell);
    std::string times = parts[2];
    times.erase(std::remove(times.begin(), times.end(), ','), times.end());
    std::string code;
    for (int i = times.empty() ? 1 : std::stoi(times); i > 0; --i) code += parts[1];
    return code;
}

const char* const kUnraised = "nothing raises it";

// Whether the path of a row is a path and not something said about one.
bool isPath(const Row& row) { return row["path"] != kUnraised && row["path"].rfind("`GetValue(", 0) != 0; }

// What the path of a row is asked under: `a` after `XPath::setWorkLimit(1)`.
class LimitOf {
public:
    explicit LimitOf(const Row& row) : before(XPath::setWorkLimit(limitIn(row["path"]))) {}
    ~LimitOf() { XPath::setWorkLimit(before); }
    LimitOf(const LimitOf&) = delete;
    LimitOf& operator=(const LimitOf&) = delete;

private:
    static std::int64_t limitIn(const std::string& cell) {
        static const Pattern form(".* after `XPath::setWorkLimit\\(([0-9]+)\\)`");
        const Pattern::Groups parts = form.match(cell);
        return !parts.empty() ? std::stoll(parts[1]) : 0;
    }

    const std::int64_t before;
};

// Calls visit(row, path) for each path of the page.
template <class Visit>
void forEachPath(Visit visit) {
    for (const Table& table : page().tables) {
        for (const Row& row : table.rows) {
            if (!isPath(row)) continue;
            const LimitOf limit(row);
            visit(row, codeIn(row["path"]));
        }
    }
}

// --- What the library says, in the notation of the page ---

Document* garden() {
    static const Outcome outcome = [] {
        std::string text;
        for (const std::string& line : page().blocks.at("xml")) text += line + "\n";
        return readDocument(text);
    }();
    if (!outcome.ok) throw std::runtime_error("the tree of the page: " + outcome.error);
    return outcome.document.get();
}

std::string shortOf(Object* node) {
    if (node->isDocument()) return "/";
    if (node->isAttribute()) return "@" + node->toAttribute()->getName() + "=" + node->toAttribute()->getValue();
    if (!node->isElement()) return "'" + node->toString() + "'";
    const Attribute* const id = node->toElement()->getAttribute("id");
    return node->toElement()->getName() + (id != nullptr ? "#" + id->getValue() : "");
}

// The code of an error, and the text after the arrow of its message: "2: shed".
std::string errorIn(XPath& query) {
    const std::string arrow = " --> ";
    const std::string message = narrow(query.GetErrorString());
    const std::size_t at = message.find(arrow);
    return std::to_string(query.GetErrorCode()) +
           (at == std::string::npos ? "" : ": " + message.substr(at + arrow.size()));
}

std::string noted(XPath& query) { return query.GetErrorCode() == XPath::NONE ? "" : " (" + errorIn(query) + ")"; }

// What a row says of its path is said by `result`; the other columns, where a table has them, by `tags` and `syntax`.
struct Answer {
    std::string result;
    std::string tags;
    std::string syntax;
};

Answer ask(const std::string& context, const std::string& path) {
    XPath query(garden());
    if (!context.empty()) query.GetValues(wide(context));
    Answer answer;

    const unsigned before = query.GetNrOfResults();
    answer.syntax = query.SyntaxOK(wide(path)) ? "yes" : "error " + errorIn(query);
    EXPECT_EQ(query.GetNrOfResults(), before);

    XPath twin(garden());
    if (!context.empty()) twin.GetValues(wide(context));
    const bool ok = twin.FindNodes(wide(path));

    const unsigned count = query.GetValues(wide(path));
    EXPECT_EQ(count, ok ? twin.GetNrOfResults() : 0);
    if (!ok) {
        answer.result = "error " + errorIn(query);
        return answer;
    }
    const std::string note = noted(query);  // asking for a text resets the code
    for (unsigned i = 0; i < count; ++i) {
        const XPath::ResultItem item = query.GetResult(i);
        const std::string text = item.kind == 0 ? std::string() : narrow(query.GetValue(i, -1));
        answer.result += item.kind == 0 ? shortOf(item.node) : item.kind == 1 ? "\"" + text + "\"" : text;
        answer.result += i + 1 < count ? " " : "";
        answer.tags += std::to_string(item.contextTag) + (i + 1 < count ? " " : "");
    }
    if (count == 0) answer.result = "none";
    answer.result += note;
    return answer;
}

std::string askForText(const std::string& path, int token) {
    XPath query(garden());
    const std::string text = narrow(query.GetValue(wide(path), token));
    if (query.GetErrorCode() == XPath::INDEX_OUT_OF_BOUNDS) return "error " + errorIn(query);
    return "\"" + text + "\"" + noted(query);
}

std::string contextOf(const Row& row) { return row.has("context") ? codeIn(row["context"]) : ""; }

// --- Its tables ---

TEST(PathsPageTest, HasExamplesInEveryTableAndNoFewerThanItHad) {
    std::size_t rows = 0;
    for (const Table& table : page().tables) {
        SCOPED_TRACE(table.line);
        EXPECT_TRUE(table.has("path"));
        EXPECT_TRUE(table.has("result"));
        EXPECT_GE(table.rows.size(), 2U);
        rows += table.rows.size();
    }
    EXPECT_GE(page().tables.size(), 27U);
    EXPECT_GE(rows, 300U);
}

TEST(PathsPageTest, GivesForEveryPathTheResultThatStandsBesideIt) {
    const MessageCollector quiet;
    forEachPath([](const Row& row, const std::string& path) {
        SCOPED_TRACE("line " + std::to_string(row.line));
        EXPECT_EQ(row["result"], "`" + codeIn(row["result"]) + "`");  // and nothing after it that is not compared
        if (row.has("token")) {
            EXPECT_EQ(askForText(path, std::stoi(row["token"])), codeIn(row["result"]));
            return;
        }
        const Answer answer = ask(contextOf(row), path);
        EXPECT_EQ(answer.result, codeIn(row["result"]));
        if (row.has("tags")) {
            EXPECT_EQ(answer.tags, codeIn(row["tags"]));
        }
        if (row.has("SyntaxOK")) {
            EXPECT_EQ(answer.syntax, codeIn(row["SyntaxOK"]));
        }
    });
}

TEST(PathsPageTest, ShowsEveryAxis) {
    std::set<std::string> missing = {"@", "/.", "..", "//"};
    for (const char* const axis :
         {"attribute", "child", "descendant", "parent", "ancestor", "following-sibling", "preceding-sibling",
          "following", "preceding", "descendant-or-self", "ancestor-or-self", "self"})
        missing.insert(std::string(axis) + "::");
    forEachPath([&](const Row& row, const std::string& path) {
        if (codeIn(row["result"]).rfind("error", 0) == 0) return;
        for (auto wanted = missing.begin(); wanted != missing.end();) {
            const std::size_t at = path.find(*wanted);
            // The names of some axes end with those of others.
            const bool isThere = at != std::string::npos && (at == 0 || path[at - 1] != '-');
            wanted = isThere ? missing.erase(wanted) : std::next(wanted);
        }
    });
    EXPECT_EQ(missing, std::set<std::string>());
}

TEST(PathsPageTest, ShowsEveryKindTestAndNameTest) {
    std::vector<std::pair<std::string, Pattern>> missing;
    for (const char* const test :
         {"[/:@]node\\(\\)", "[/:@]element\\(\\)", "[/:@]attribute\\(\\)", "[/:@]text\\(\\)",
          "[/:@]document-node\\(\\)", "[/:@]node\\(\\w+\\)", "[/:@]element\\(\\w+\\)", "[/:@]attribute\\(\\w+\\)",
          "/text$", "/\\*$", "/\\w+$", "/\\w+:\\w+$", "[/@]\\w+:\\*$", "/\\*:\\w+$"})
        missing.emplace_back(test, Pattern(test));
    forEachPath([&](const Row& row, const std::string& path) {
        if (codeIn(row["result"]).rfind("error", 0) == 0) return;
        missing.erase(
            std::remove_if(missing.begin(), missing.end(), [&](const auto& test) { return test.second.isIn(path); }),
            missing.end());
    });
    for (const auto& test : missing) ADD_FAILURE() << test.first;
}

TEST(PathsPageTest, ShowsEveryOperatorInItsRow) {
    std::multiset<std::string> shown;
    for (const Row& row : page().tableWith("operator").rows) {
        SCOPED_TRACE(row.line);
        const std::string op = codeIn(row["operator"]);
        const std::string path = codeIn(row["path"]);
        const std::size_t at = path.find(" " + op + " ");
        EXPECT_NE(at, std::string::npos);
        EXPECT_EQ(codeIn(row["result"]).find("error"), std::string::npos);
        shown.insert(op);
    }
    EXPECT_EQ(shown, (std::multiset<std::string>{"eq", "=", "ne", "!=", "le", "<=", "lt", "<", "ge", ">=", "gt", ">",
                                                 "+", "-", "div", "*"}));
}

// --- The program of the page ---

// A line with single blanks and none at its ends.
std::string squeezed(const std::string& line) { return trimmed(Pattern(" +").replaceIn(line, " ")); }

TEST(PathsPageTest, TellsWhatItsProgramFinds) {
    Document* const document = garden();
    std::vector<std::string> used;
    const auto use = [&](const OrvSys::Uni16String& text) { used.push_back(narrow(text)); };

    Xml::XPath query(document);  // stands on that node
    const unsigned peas = query.GetValues(u"//pea[@n > 2]");
    for (unsigned i = 0; i < peas; ++i) use(query.GetValue(i, -1));  // green, sugar, dwarf
    query.GetValues(u"@id");                                         // of those three: results are the next context
    Xml::Object* id = query.GetResult(0).node;
    use(query.GetValue(u"/garden/bed/@sun", 1));  // the first result, its second word: part
    if (!query.SyntaxOK(u"//nodes")) use(query.GetErrorString());

    EXPECT_EQ(used, (std::vector<std::string>{"green", "sugar", "dwarf", "part",
                                              "The opening parenthesis of a kind test is missing --> nodes"}));
    EXPECT_EQ(shortOf(id), "@id=2");

    std::set<std::string> linesHere;
    std::istringstream source(readFile(sourceFolder() + "/tests/layout/PathsPageTest.cpp"));
    for (std::string line; std::getline(source, line);) linesHere.insert(squeezed(line));
    EXPECT_GE(page().blocks.at("cpp").size(), 6U);
    for (const std::string& line : page().blocks.at("cpp")) EXPECT_EQ(linesHere.count(squeezed(line)), 1U) << line;
}

// --- Its table of codes ---

struct Enumerator {
    XPath::ErrorCode code;
    const char* name;
};

#define ENUMERATOR(name) \
    { XPath::name, #name }
constexpr Enumerator kEnumerators[] = {
    ENUMERATOR(NONE),
    ENUMERATOR(INDEX_OUT_OF_BOUNDS),
    ENUMERATOR(NODE_NOT_FOUND),
    ENUMERATOR(NODE_CONTAINS_NO_DATA),
    ENUMERATOR(DOUBLE_SLASH_AT_THE_END_NOT_ALLOWED),
    ENUMERATOR(NO_XPATH_SPECIFIED),
    ENUMERATOR(ILLEGAL_CHAR_AFTER_ATTRIBUTEVALUE),
    ENUMERATOR(ILLEGAL_CHAR_AFTER_FUNCTION),
    ENUMERATOR(ILLEGAL_CHAR_AFTER_KINDTEST),
    ENUMERATOR(ILLEGAL_CHAR_IN_NUMBER),
    ENUMERATOR(ILLEGAL_CHAR_AFTER_PREDICATE),
    ENUMERATOR(NO_VALID_ATTRIBUTE_NAME),
    ENUMERATOR(NO_VALID_NAME_OR_TEST),
    ENUMERATOR(RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES),
    ENUMERATOR(SLASH_AT_END_NOT_ALLOWED),
    ENUMERATOR(NO_VALID_AXIS),
    ENUMERATOR(NO_VALID_INITIAL_AXIS),
    ENUMERATOR(NO_VALID_COMPARISON_OPERATOR),
    ENUMERATOR(MISSING_QUOTE_BEFORE_ATTRIBUTE_VALUE),
    ENUMERATOR(MISSING_QUOTE_AFTER_ATTRIBUTE_VALUE),
    ENUMERATOR(MISSING_CLOSING_BRACKET_AFTER_PREDICATE),
    ENUMERATOR(MISSING_CLOSING_PARENTHESE_AFTER_FUNCTION),
    ENUMERATOR(MISSING_OPENING_PARENTHESE_AFTER_FUNCTION),
    ENUMERATOR(MISSING_CLOSING_PARENTHESE_AFTER_KIND_TEST),
    ENUMERATOR(MISSING_OPENING_PARENTHESE_AFTER_KIND_TEST),
    ENUMERATOR(FIRST_LAST_OR_NUMBER_AFTER_POSITION_EXPECTED),
    ENUMERATOR(CONTEXT_IS_NOT_A_NODE),
    ENUMERATOR(EXPRESSION_NESTED_TOO_DEEPLY),
    ENUMERATOR(EXPRESSION_TOO_COSTLY),
};
#undef ENUMERATOR

TEST(PathsPageTest, ListsEveryCodeWithItsEnumeratorAndItsEnglishText) {
    const std::vector<Row>& rows = page().tableWith("code").rows;
    ASSERT_EQ(rows.size(), std::size(kEnumerators));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].line);
        const std::string name = kEnumerators[i].name;
        EXPECT_EQ(static_cast<std::size_t>(kEnumerators[i].code), i);
        EXPECT_EQ(rows[i]["code"], std::to_string(i));
        EXPECT_EQ(codeIn(rows[i]["enumerator of `Xml::XPath`"]), name);

        std::string key = "xpat/xerr/" + name;
        std::replace(key.begin(), key.end(), '_', ' ');
        EXPECT_EQ(codeIn(rows[i]["text"]), narrow(OrvSys::Localization::GetString(key, "XPath", u"none installed")));
    }
}

TEST(PathsPageTest, RaisesEachCodeWithItsTextInItsRow) {
    const MessageCollector quiet;
    std::set<std::string> unraised;
    for (const Row& row : page().tableWith("code").rows) {
        SCOPED_TRACE(row.line);
        if (row["path"] == kUnraised) {
            unraised.insert(row["code"]);
            EXPECT_FALSE(row.has("result"));
            continue;
        }
        const std::string path = codeIn(row["path"]);
        const LimitOf limit(row);
        XPath query(garden());
        query.GetValues(wide(contextOf(row)));
        if (isPath(row)) {
            query.GetValues(wide(path));
        } else {
            ASSERT_EQ(path, "GetValue(1, -1)");
            EXPECT_EQ(query.GetNrOfResults(), 1U);
            EXPECT_EQ(query.GetValue(1U, -1), u"");
            EXPECT_EQ("error " + errorIn(query), codeIn(row["result"]));
        }
        EXPECT_EQ(std::to_string(query.GetErrorCode()), row["code"]);
        const std::string error = errorIn(query);
        const std::size_t colon = error.find(": ");
        EXPECT_EQ(narrow(query.GetErrorString()),
                  codeIn(row["text"]) + (colon == std::string::npos ? "" : " --> " + error.substr(colon + 2)));
    }
    EXPECT_EQ(unraised, (std::set<std::string>{"3", "6", "11", "16", "17", "18", "19", "25"}));
}

TEST(PathsPageTest, NamesPathsThatLoseTheirErrorWithAnyOfTheirCharacters) {
    const MessageCollector quiet;
    for (const Row& row : page().tableWith("code").rows) {
        if (!isPath(row) || row["code"] == "0" || row["code"] == "5") continue;
        SCOPED_TRACE(row.line);
        const std::string path = codeIn(row["path"]);
        const LimitOf limit(row);
        for (std::size_t i = 0; i < path.size(); ++i) {
            XPath query(garden());
            query.GetValues(wide(contextOf(row)));
            query.GetValues(wide(std::string(path).erase(i, 1)));
            EXPECT_NE(std::to_string(query.GetErrorCode()), row["code"]) << "without character " << i;
        }
    }
}

}  // namespace
}  // namespace Xml::test
