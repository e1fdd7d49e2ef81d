#include "support/Tables.h"

namespace Xml::test {

std::string trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::string cell;
    for (std::size_t at = 1; at < line.size(); ++at) {
        if (line[at] == '|') {
            cells.push_back(trimmed(cell));
            cell.clear();
        } else {
            if (line.compare(at, 2, "\\|") == 0) ++at;
            cell += line[at];
        }
    }
    return cells;
}

}  // namespace Xml::test
