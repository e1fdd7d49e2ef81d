#pragma once

#include "standard/PageDocument.h"
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// docs/standard-constraints.md as its tests read it. The notation of documents is explained at the top of the page.
namespace Xml::test {

// What the documents of a table are.
enum class Setting { Whole, ExternalSubset, ExternalEntity };

struct ConstraintRow {
    std::size_t line = 0;
    std::string heading;  // of the section that the table stands in
    Setting setting = Setting::Whole;
    std::string rule, where, note;
    std::optional<PageDocument> accepted, refused;
    std::string fallsUnder;  // the rule that the refused document falls under; empty without one

    bool isOfNamespaces() const { return where.rfind("Namespaces", 0) == 0; }
};

// A row of the table of documents that an oracle does not see as the recommendation has it.
struct OracleMark {
    std::size_t line = 0;
    std::string oracle;
    PageDocument document;
    std::string clause;
};

// A row of the table of what is refused and may be well formed.
struct RefusalRow {
    std::string name, when;
};

struct ConstraintsPage {
    std::vector<ConstraintRow> rows;
    std::vector<OracleMark> marks;
    std::vector<RefusalRow> refusals;
};

// The page of the checkout. Throws std::runtime_error, which names the line, where the text is not of the form.
const ConstraintsPage& constraintsPage();

// A page of that text.
ConstraintsPage constraintsPageOf(const std::string& text);

}  // namespace Xml::test
