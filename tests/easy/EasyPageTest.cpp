// Reads docs/easy.md and asks the paths of its table. Its blocks of code are those of a program of examples/, which a
// test of the pages of XML 1.0 compares.
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

}  // namespace
}  // namespace Xml::test
