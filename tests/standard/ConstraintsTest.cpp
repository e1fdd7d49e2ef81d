// Reads docs/standard-constraints.md and asks every oracle of its documents. What the page says is right; where an
// oracle says something else, the page has a mark with the clause of the recommendation that the oracle is wrong by.
//
// To ask one more reader, add it to kOracles. One that names the rule of a refusal is compared by that too.
#include "standard/ConstraintsPage.h"
#include "standard/Oracles.h"
#include "xml/standard/internal/Rules.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

const Oracle kOracles[] = {
    {"Expat", askExpat, true},
    {"libxml2", askLibXml2, true},
    {"the reader", askReader, false},
};

const std::string kProductions = "Productions of XML 1.0";
const std::string kConstraints = "Well-formedness constraints of XML 1.0";
const std::string kNamespaceProductions = "Productions of Namespaces in XML 1.0";
const std::string kNamespaceConstraints = "Constraints of Namespaces in XML 1.0";
const std::string kMore = "More documents";

// The sections of the page in which each rule has one row. In the others a rule may have several.
const std::set<std::string> kOneRowForEach = {kProductions, kConstraints, kNamespaceProductions, kNamespaceConstraints};

Question questionOf(const ConstraintRow& row, const PageDocument& document, bool namespaces) {
    Question question;
    question.namespaces = namespaces;
    if (row.setting == Setting::Whole) {
        question.document = document.bytes;
        return question;
    }
    question.document = row.setting == Setting::ExternalSubset
                            ? "<!DOCTYPE a SYSTEM \"a.dtd\"><a/>"
                            : "<!DOCTYPE a [<!ENTITY b SYSTEM \"b.xml\">]><a>&b;</a>";
    question.external = document.bytes;
    return question;
}

// Marks by what they are of, each with whether something asked for it.
class Marks {
public:
    Marks() {
        for (const OracleMark& mark : constraintsPage().marks) {
            EXPECT_TRUE(asked.emplace(Key(mark.oracle, mark.document.cell), 0).second)
                << "line " << mark.line << ": the mark stands twice";
        }
    }

    bool has(const Oracle& oracle, const PageDocument& document) {
        const auto mark = asked.find(Key(oracle.name, document.cell));
        if (mark == asked.end()) return false;
        ++mark->second;
        return true;
    }

    void expectAllAsked() const {
        for (const auto& mark : asked)
            EXPECT_GT(mark.second, 0) << mark.first.first << " is never asked of " << mark.first.second;
    }

private:
    using Key = std::pair<std::string, std::string>;
    std::map<Key, int> asked;
};

// Asks all oracles of one document. A marked oracle must see it otherwise than the page: a mark is there for a reason.
void askAll(const ConstraintRow& row, const PageDocument& document, bool isAccepted, bool namespaces, Marks& marks) {
    for (const Oracle& oracle : kOracles) {
        if (row.setting != Setting::Whole && !oracle.readsExternals) continue;
        const Verdict verdict = oracle.ask(questionOf(row, document, namespaces));
        const bool isMarked = marks.has(oracle, document);
        EXPECT_EQ(verdict.isAccepted, isAccepted != isMarked)
            << "line " << row.line << ": " << oracle.name << (namespaces ? "" : " without namespaces") << " of "
            << document.cell << (isMarked ? ", which has a mark: " : ": ")
            << (verdict.isAccepted ? "accepted" : verdict.message);
        if (!isAccepted && !isMarked && verdict.rule) {
            EXPECT_EQ(*verdict.rule, row.fallsUnder) << "line " << row.line << ": " << document.cell;
        }
    }
}

TEST(ConstraintsTest, HasEveryDocumentReadAsItSays) {
    Marks marks;
    for (const ConstraintRow& row : constraintsPage().rows) {
        if (row.accepted) {
            askAll(row, *row.accepted, true, true, marks);
            askAll(row, *row.accepted, true, false, marks);
        }
        if (row.refused) askAll(row, *row.refused, false, true, marks);
    }
    marks.expectAllAsked();
}

// What XML forbids is forbidden with and without namespaces; what Namespaces forbid is well-formed XML.
TEST(ConstraintsTest, RefusesByNamespacesOnlyWhatXmlAllows) {
    Marks marks;
    for (const ConstraintRow& row : constraintsPage().rows) {
        if (!row.refused) continue;
        for (const Oracle& oracle : kOracles) {
            if (row.setting != Setting::Whole && !oracle.readsExternals) continue;
            const bool isMarked = marks.has(oracle, *row.refused);
            const Verdict verdict = oracle.ask(questionOf(row, *row.refused, false));
            EXPECT_EQ(verdict.isAccepted, row.isOfNamespaces() || isMarked)
                << "line " << row.line << ": " << oracle.name << " of " << row.refused->cell << ": " << verdict.message;
        }
    }
}

std::vector<std::string> rulesIn(const std::string& heading) {
    std::vector<std::string> rules;
    for (const ConstraintRow& row : constraintsPage().rows) {
        if (row.heading == heading) rules.push_back(row.rule);
    }
    return rules;
}

// The numbers in brackets in the column `where`, in their order.
std::vector<std::string> numbersIn(const std::string& heading) {
    std::vector<std::string> numbers;
    for (const ConstraintRow& row : constraintsPage().rows) {
        const std::size_t bracket = row.where.find('[');
        if (row.heading == heading && bracket != std::string::npos)
            numbers.push_back(row.where.substr(bracket + 1, row.where.find(']') - bracket - 1));
    }
    return numbers;
}

std::vector<std::string> upTo(int last, const std::set<int>& missing, const std::set<std::string>& lettered) {
    std::vector<std::string> numbers;
    for (int number = 1; number <= last; ++number) {
        if (missing.count(number) == 0) numbers.push_back(std::to_string(number));
        for (const char* letter : {"a", "b"}) {
            const std::string name = std::to_string(number) + letter;
            if (lettered.count(name) > 0) numbers.push_back(name);
        }
    }
    return numbers;
}

TEST(ConstraintsTest, HasARowForEveryProductionInTheOrderOfTheirNumbers) {
    // 33 to 38 and 79 are numbers of earlier editions, 5 and 6 of an earlier one of Namespaces.
    EXPECT_EQ(numbersIn(kProductions), upTo(89, {33, 34, 35, 36, 37, 38, 79}, {"4a", "28a", "28b"}));
    EXPECT_EQ(numbersIn(kNamespaceProductions), upTo(21, {5, 6}, {}));
}

TEST(ConstraintsTest, HasARowForEveryConstraint) {
    EXPECT_EQ(rulesIn(kConstraints),
              (std::vector<std::string>{"PEs in Internal Subset", "External Subset", "PE Between Declarations",
                                        "Element Type Match", "Unique Att Spec", "No External Entity References",
                                        "No < in Attribute Values", "Legal Character", "Entity Declared",
                                        "Parsed Entity", "No Recursion", "In DTD"}));
    EXPECT_EQ(rulesIn(kNamespaceConstraints),
              (std::vector<std::string>{"Reserved Prefixes and Namespace Names", "Prefix Declared",
                                        "No Prefix Undeclaring", "Attributes Unique"}));
}

TEST(ConstraintsTest, NamesARuleOnceWhereEachHasARow) {
    for (const std::string& heading : kOneRowForEach) {
        const auto rules = rulesIn(heading);
        EXPECT_FALSE(rules.empty()) << heading;
        EXPECT_EQ(std::set<std::string>(rules.begin(), rules.end()).size(), rules.size()) << heading;
    }
}

TEST(ConstraintsTest, HasRowsThatShowSomething) {
    for (const ConstraintRow& row : constraintsPage().rows) {
        SCOPED_TRACE("line " + std::to_string(row.line));
        EXPECT_FALSE(row.heading.empty());
        EXPECT_TRUE(row.isOfNamespaces() || row.where.rfind("XML ", 0) == 0) << row.where;
        if (!row.accepted || !row.refused) {
            EXPECT_FALSE(row.note.empty()) << "what is left out wants a reason";
        } else {
            EXPECT_NE(row.accepted->bytes, row.refused->bytes);
        }
    }
    for (const OracleMark& mark : constraintsPage().marks) EXPECT_FALSE(mark.clause.empty()) << "line " << mark.line;
}

TEST(ConstraintsTest, RefusesDocumentsUnderRulesThatHaveARow) {
    std::set<std::string> rules;
    for (const ConstraintRow& row : constraintsPage().rows) {
        if (row.heading != kMore) rules.insert(row.rule);
    }
    for (const ConstraintRow& row : constraintsPage().rows) {
        EXPECT_EQ(rules.count(row.rule), 1U) << "line " << row.line;
        if (row.refused) {
            EXPECT_EQ(rules.count(row.fallsUnder), 1U) << "line " << row.line << ": " << row.fallsUnder;
        }
    }
}

// The rules that the code can give are those that a refused document of the page falls under.
TEST(ConstraintsTest, RefusesDocumentsUnderTheRulesOfTheCode) {
    std::set<std::string> ofPage;
    for (const ConstraintRow& row : constraintsPage().rows) {
        if (row.refused && row.setting == Setting::Whole) ofPage.insert(row.fallsUnder);
    }
    const std::set<std::string> ofCode(std::begin(StandardRules::kAll), std::end(StandardRules::kAll));
    EXPECT_EQ(ofCode.size(), std::size(StandardRules::kAll)) << "a name stands twice";
    EXPECT_EQ(ofPage, ofCode);
}

TEST(ConstraintsTest, NamesWhatMayBeWellFormedAndIsRefused) {
    std::set<std::string> ofPage;
    for (const RefusalRow& row : constraintsPage().refusals) {
        EXPECT_TRUE(ofPage.insert(row.name).second) << row.name;
        EXPECT_FALSE(row.when.empty()) << row.name;
    }
    EXPECT_EQ(ofPage, std::set<std::string>(std::begin(StandardRules::kRefusals), std::end(StandardRules::kRefusals)));
}

// --- The notation of the page ---

ConstraintsPage pageWith(const std::string& cells) {
    return constraintsPageOf("## Here\n| rule | where | accepted | refused | note |\n|---|---|---|---|---|\n" + cells);
}

TEST(ConstraintsPageTest, ReadsDocumentsByteByByte) {
    const struct {
        const char* cell;
        std::string bytes;
    } kCases[] = {
        {"`<a/>`", "<a/>"},
        {"`<a>\\n\\r\\t\\\\</a>`", "<a>\n\r\t\\</a>"},
        {"`a\\|b`", "a|b"},
        {"`\\xFF\\x00`", std::string("\xFF\0", 2)},
        {"`\\u{7F}\\u{E4}\\u{20AC}\\u{10FFFF}`", "\x7F\xC3\xA4\xE2\x82\xAC\xF4\x8F\xBF\xBF"},
        {"`a\\u{20AC}\\u{10000}\\xFF` as UTF-16LE", std::string("a\0\xAC\x20\x00\xD8\x00\xDC\xFF", 9)},
        {"`a\\u{20AC}\\u{10FFFF}` as UTF-16BE", std::string("\0a\x20\xAC\xDB\xFF\xDF\xFF", 8)},
    };
    for (const auto& c : kCases) {
        const auto page = pageWith(std::string("| `S` | XML 1 | ") + c.cell + " | - | why |\n");
        ASSERT_EQ(page.rows.size(), 1U);
        EXPECT_EQ(page.rows[0].accepted->bytes, c.bytes) << c.cell;
        EXPECT_FALSE(page.rows[0].refused);
    }
}

TEST(ConstraintsPageTest, ReadsTheRuleThatARefusedDocumentFallsUnder) {
    const auto page = pageWith("| `S` | XML 1 | `a` | `b` under `Eq` | why |\n| `Eq` | XML 1 | `a` | `b` | |\n");
    ASSERT_EQ(page.rows.size(), 2U);
    EXPECT_EQ(page.rows[0].fallsUnder, "Eq");
    EXPECT_EQ(page.rows[0].heading, "Here");
    EXPECT_EQ(page.rows[1].fallsUnder, "Eq");
    EXPECT_EQ(page.rows[1].line, 5U);
}

TEST(ConstraintsPageTest, ReadsNothingThatIsNotOfTheForm) {
    const char* const kLines[] = {
        "| `S` | XML 1 | `a` | `b` |\n",
        "| S | XML 1 | `a` | `b` | |\n",
        "| `S` | XML 1 | a | `b` | |\n",
        "| `S` | XML 1 | `a` | | |\n",
        "| `S` | XML 1 | `a` under `S` | `b` | |\n",
        "| `S` | XML 1 | `\\q` | `b` | |\n",
        "| `S` | XML 1 | `\xC3\xA4` | `b` | |\n",
        "| `S` | XML 1 | `a` as UTF-8 | `b` | |\n",
    };
    for (const char* line : kLines) EXPECT_THROW(pageWith(line), std::runtime_error) << line;
}

}  // namespace
}  // namespace Xml::test
