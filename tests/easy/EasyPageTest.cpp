// Reads docs/easy.md and asks the paths of its table, and docs/coming-from.md, whose calls are those of a program. The
// blocks of code are those of programs too, which a test of the pages of XML 1.0 compares.
#include "support/Places.h"
#include "support/Sources.h"
#include "support/Tables.h"
#include "xml/easy/Ask.h"
#include "xml/easy/Trees.h"
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// Without the quotes of code, and what stands after them.
std::string codeIn(const std::string& cell) {
    const std::size_t end = cell.find('`', 1);
    return !cell.empty() && cell[0] == '`' && end != std::string::npos ? cell.substr(1, end - 1) : std::string();
}

TEST(EasyPageTest, SaysOfEveryPathWhatIsWrongWithIt) {
    std::istringstream page(readFile(sourceFolder() + "/docs/easy.md"));
    const auto document = makeDocument("r");
    bool isInTable = false;
    int rows = 0;
    for (std::string line; std::getline(page, line);) {
        if (line == "| path | problem |") isInTable = true;
        if (line.rfind('|', 0) != 0) isInTable = false;
        if (!isInTable || line.rfind("| `", 0) != 0) continue;
        const std::vector<std::string> cells = cellsOf(line);
        ASSERT_EQ(cells.size(), 2u) << line;
        SCOPED_TRACE(line);
        const auto found = ask(*document, codeIn(cells[0]));
        const std::string problem = found.problem() ? found.problem()->toString() : "";
        EXPECT_EQ(problem, codeIn(cells[1]));
        EXPECT_EQ(problem.empty(), cells[1].rfind("none", 0) == 0);
        ++rows;
    }
    EXPECT_GE(rows, 17);
}

TEST(ComingFromPageTest, HasCallsOfThisLibraryThatCompile) {
    const std::string program = readFile(sourceFolder() + "/examples/coming_from.cpp");
    std::istringstream page(readFile(sourceFolder() + "/docs/coming-from.md"));
    int calls = 0;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind('|', 0) != 0 || line.rfind("|---", 0) == 0 || line.rfind("| task", 0) == 0) continue;
        const std::vector<std::string> cells = cellsOf(line);
        ASSERT_EQ(cells.size(), 5u) << line;
        std::string rest = cells[4];
        ASSERT_FALSE(codeIn(rest).empty()) << line;
        for (std::string call = codeIn(rest); !call.empty(); call = codeIn(rest)) {
            EXPECT_NE(program.find(call), std::string::npos) << call;
            rest = trimmed(rest.substr(call.size() + 2));
            if (rest.rfind(',', 0) == 0) rest = trimmed(rest.substr(1));
            ++calls;
        }
        EXPECT_EQ(rest, "") << line;
    }
    EXPECT_GE(calls, 35);
}

}  // namespace
}  // namespace Xml::test
