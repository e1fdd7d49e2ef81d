#include "standard/ConstraintsPage.h"

#include "support/Pattern.h"
#include "support/Places.h"
#include "support/Sources.h"
#include "support/Tables.h"
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Xml::test {

namespace {

using Cells = std::vector<std::string>;

// --- Documents ---

// A cell with a document, and of a refused one perhaps: under `rule`.
struct DocumentCell {
    PageDocument document;
    std::string under;
};

std::optional<DocumentCell> documentIn(const std::string& cell) {
    static const Pattern form("(.*?)(?: under `([^`]+)`)?");
    if (cell == "-") return std::nullopt;
    const Pattern::Groups parts = form.match(cell);
    return DocumentCell{pageDocumentOf(parts[1]), parts[2]};
}

// --- Rows ---

std::string nameIn(const std::string& cell) {
    static const Pattern form("`([^`]+)`");
    const Pattern::Groups parts = form.match(cell);
    if (parts.empty()) throw std::runtime_error("not the name of a rule: " + cell);
    return parts[1];
}

const Cells kRefusalHeader = {"refused under", "when"};
const Cells kMarkHeader = {"oracle", "document", "clause"};

Cells rowHeader(Setting setting) {
    const std::string as = setting == Setting::ExternalSubset   ? " as external subset"
                           : setting == Setting::ExternalEntity ? " as external entity"
                                                                : "";
    return {"rule", "where", "accepted" + as, "refused" + as, "note"};
}

std::optional<Setting> settingOf(const Cells& header) {
    for (const Setting setting : {Setting::Whole, Setting::ExternalSubset, Setting::ExternalEntity}) {
        if (header == rowHeader(setting)) return setting;
    }
    return std::nullopt;
}

ConstraintRow rowOf(const Cells& cells, const std::string& heading, Setting setting) {
    ConstraintRow row;
    row.heading = heading;
    row.setting = setting;
    row.rule = nameIn(cells[0]);
    row.where = cells[1];
    row.note = cells[4];
    const auto accepted = documentIn(cells[2]);
    const auto refused = documentIn(cells[3]);
    if (accepted) {
        if (!accepted->under.empty()) throw std::runtime_error("what is accepted falls under no rule");
        row.accepted = accepted->document;
    }
    if (refused) {
        row.refused = refused->document;
        row.fallsUnder = refused->under.empty() ? row.rule : refused->under;
    }
    return row;
}

OracleMark markOf(const Cells& cells) {
    const auto document = documentIn(cells[1]);
    if (!document) throw std::runtime_error("a mark without a document");
    OracleMark mark;
    mark.oracle = cells[0];
    mark.document = document->document;
    mark.clause = cells[2];
    return mark;
}

// Reads the page line by line; a table is known by its header.
class PageReader {
public:
    void take(const std::string& line, std::size_t number) {
        if (line.rfind('|', 0) != 0) {
            header.clear();
            if (line.rfind("## ", 0) == 0) heading = line.substr(3);
            return;
        }
        const Cells cells = cellsOf(line);
        if (header.empty()) {
            header = cells;
        } else if (line.rfind("|---", 0) != 0) {
            if (cells.size() != header.size()) throw std::runtime_error("not the cells of the table");
            takeRow(cells, number);
        }
    }

    ConstraintsPage page;

private:
    void takeRow(const Cells& cells, std::size_t number) {
        if (const auto setting = settingOf(header)) {
            page.rows.push_back(rowOf(cells, heading, *setting));
            page.rows.back().line = number;
        } else if (header == kRefusalHeader) {
            page.refusals.push_back({nameIn(cells[0]), cells[1]});
        } else if (header == kMarkHeader) {
            page.marks.push_back(markOf(cells));
            page.marks.back().line = number;
        }
    }

    std::string heading;
    Cells header;
};

}  // namespace

ConstraintsPage constraintsPageOf(const std::string& text) {
    PageReader reader;
    std::istringstream lines(text);
    std::size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        try {
            reader.take(line, number);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
        }
    }
    return std::move(reader.page);
}

const ConstraintsPage& constraintsPage() {
    static const ConstraintsPage page = constraintsPageOf(readFile(sourceFolder() + "/docs/standard-constraints.md"));
    return page;
}

}  // namespace Xml::test
