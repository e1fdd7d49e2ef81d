#include "support/Messages.h"
#include "support/Pattern.h"
#include "support/Places.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace Xml::test {
namespace {

std::string sourcePath(const std::string& name) { return sourceFolder() + "/" + name; }

// The cells of the rows of the table below a heading, its header left out: the code in each cell, or the cell as it
// stands.
using Row = std::vector<std::string>;
std::vector<Row> tableBelow(const std::string& heading, const std::string& firstCell) {
    std::istringstream page(readFile(sourcePath("docs/errors.md")));
    std::vector<Row> rows;
    bool inSection = false;
    bool inTable = false;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("## ", 0) == 0) inSection = line == "## " + heading;
        if (!inSection) continue;
        if (line.rfind("| " + firstCell + " |", 0) == 0) inTable = true;
        if (line.empty() || line[0] != '|') inTable = false;
        if (!inTable) continue;
        line = Pattern("\\\\\\|").replaceIn(line, "\x01");
        Row row;
        std::istringstream cells(line.substr(1));
        for (std::string cell; std::getline(cells, cell, '|');) {
            std::replace(cell.begin(), cell.end(), '\x01', '|');
            const Pattern::Groups code = Pattern("`([^`]*)`").find(cell);
            row.push_back(code.empty() ? cell : code[1]);
        }
        rows.push_back(row);
    }
    if (rows.size() < 3) throw std::runtime_error("no table below " + heading);
    return {rows.begin() + 2, rows.end()};
}

// The message without its position in front and its class after.
std::string plainText(const std::string& message) {
    const Pattern::Groups parts = Pattern("\\(line = \\d+, column = \\d+\\) (.*) <\\w+>").match(message);
    return parts.empty() ? message : parts[1];
}

TEST(ErrorsPageTest, NamesTheTextThatEachInputOfTheReaderTableGives) {
    const MessageCollector quiet;
    for (const Row& row : tableBelow("Texts of readers", "text")) {
        SCOPED_TRACE(row[1]);
        for (const Source source : kPromptSources) {
            const Outcome outcome = readDocument(row[1], source);
            EXPECT_FALSE(outcome.ok);
            EXPECT_EQ(plainText(outcome.error), row[0]);
        }
    }
}

TEST(ErrorsPageTest, NamesTheNoteThatEachInputOfTheNotesTableLeaves) {
    for (const Row& row : tableBelow("Texts of readers", "note")) {
        SCOPED_TRACE(row[1]);
        const Outcome outcome = readDocument(row[1]);
        EXPECT_TRUE(outcome.ok);
        EXPECT_EQ(plainText(outcome.error), row[0]);
    }
}

TEST(ErrorsPageTest, ListsInputsThatFailWithoutAText) {
    const MessageCollector quiet;
    for (const Row& row : tableBelow("Silent failures", "what")) {
        SCOPED_TRACE(row[1]);
        const Outcome outcome = readDocument(row[1]);
        EXPECT_FALSE(outcome.ok);
        EXPECT_EQ(outcome.error, "");
    }
}

TEST(ErrorsPageTest, ListsTheDiagnosticsThatStandInTheSources) {
    std::set<std::string> listed;
    for (const Row& row : tableBelow("Diagnostics", "text")) listed.insert(row[0]);

    std::set<std::string> found;
    const Pattern literal("\"(<[A-Z][A-Za-z:]*::[A-Za-z]+> [^\"]*)\"");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sourcePath("xml"))) {
        if (entry.path().extension() != ".cpp") continue;
        const std::string text = readFile(entry.path().string());
        for (const Pattern::Groups& one : literal.findAll(text)) found.insert(one[1]);
    }
    EXPECT_EQ(listed, found);
}

}  // namespace
}  // namespace Xml::test
